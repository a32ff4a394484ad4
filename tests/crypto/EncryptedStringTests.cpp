// VEncryptedString: which form it seals in and how it opens each stored form,
// the older fixed-key one included. Malformed texts are refused in
// PassphraseFormTests.cpp, in one table for every form.

#include <gtest/gtest.h>

#include "ConfigMessages.h"
#include "CryptoTestVectors.h"
#include "VBlowfishString.h"
#include "VCipherBlowfish.h"
#include "VEncryptedString.h"

namespace {

const VUnicodeString Name(L"Password V2");

VRefPtr<IPassphraseProvider> Provider(const wchar_t* passphrase) {
    return VRefPtr<IPassphraseProvider>::Adopt(
        new VFixedPassphraseProvider(VUnicodeString(passphrase)));
}

VUnicodeString Opened(const VEncryptedString& value) {
    VUnicodeString plain;
    VReportMessageParams report;
    EXPECT_TRUE(value.GetPlainText(plain, Name, report)) << std::hex << report.GetMessageCode();
    return plain;
}

}  // namespace

TEST(CipherBlowfishTest, AgreesWithThePublishedKnownAnswers) {
    // Eric Young's Blowfish vectors (key, plain, cipher).
    const char* vectors[][3] = {
        {"0000000000000000", "0000000000000000", "4ef997456198dd78"},
        {"ffffffffffffffff", "ffffffffffffffff", "51866fd5b85ecb8a"},
        {"3000000000000000", "1000000000000001", "7d856f9a613063f2"},
        {"0123456789abcdef", "1111111111111111", "61f9c3802281b096"},
        {"fedcba9876543210", "0123456789abcdef", "0aceab0fc6a0a28d"},
    };
    for (const auto& [key, plain, cipher] : vectors) {
        const Bytes keyBytes = DecodeHex(key);
        const VCipherBlowfish blowfish(keyBytes.data(), keyBytes.size());
        Bytes block = DecodeHex(plain);
        ASSERT_TRUE(blowfish.Encipher(block.data(), block.size()));
        EXPECT_EQ(EncodeHex(block), cipher);
        ASSERT_TRUE(blowfish.Decipher(block.data(), block.size()));
        EXPECT_EQ(EncodeHex(block), plain);
    }
    const Bytes key = DecodeHex("0123456789abcdef");
    uint8_t partial[12] = {};
    EXPECT_FALSE(VCipherBlowfish(key.data(), key.size()).Encipher(partial, sizeof partial));
    EXPECT_EQ(EncodeHex(partial, sizeof partial), std::string(24, '0'));
}

TEST(BlowfishStringTest, ReadsWhatTheOlderFormWrote) {
    for (const wchar_t* plain : {L"a", L"four", L"exactly8", L"p\x00E4ssw\x00F6rd \xD83D\xDD11"}) {
        const VUnicodeString digits = VBlowfishString::Encode(VUnicodeString(plain));
        // UTF-16 units padded to whole 8-byte blocks, two lower-case digits a byte.
        EXPECT_EQ(digits.GetLength(), (wcslen(plain) * 2 + 7) / 8 * 16) << plain;
        for (size_t i = 0; i < digits.GetLength(); ++i)
            ASSERT_TRUE(std::wcschr(L"0123456789abcdef", digits[i]));
        VUnicodeString opened;
        VReportMessageParams report;
        ASSERT_TRUE(VBlowfishString::Decode(digits, opened, Name, report)) << plain;
        EXPECT_EQ(opened, plain);
        EXPECT_TRUE(opened.IsSensitive());
    }
}

TEST(EncryptedStringTest, SealsWithThePassphraseWhenThereIsOneElseWithTheLogon) {
    VRefPtr<IPassphraseProvider> provider = Provider(L"phrase");
    VEncryptedString withPhrase(VUnicodeString(), provider.Get());
    VReportMessageParams report;
    ASSERT_TRUE(withPhrase.SetPlainText(L"secret", Name, report));
    EXPECT_TRUE(withPhrase.StartsWith(L"02:"));
    EXPECT_EQ(withPhrase.GetForm(), VEncryptedString::Form::Passphrase);
    EXPECT_EQ(Opened(withPhrase), L"secret");

    // No provider, or one without a pass phrase: the system's protection.
    VRefPtr<IPassphraseProvider> none = Provider(L"");
    for (IPassphraseProvider* p : {static_cast<IPassphraseProvider*>(nullptr), none.Get()}) {
        VEncryptedString value(VUnicodeString(), p);
        ASSERT_TRUE(value.SetPlainText(L"secret", Name, report));
        EXPECT_TRUE(value.StartsWith(L"CAPI:"));
        EXPECT_EQ(value.GetForm(), VEncryptedString::Form::Capi);
        EXPECT_EQ(Opened(value), L"secret");
    }

    const VUnicodeString before = withPhrase.GetProtectedText();
    EXPECT_FALSE(withPhrase.SetPlainText(VUnicodeString(L"lone \xDFFF"), Name, report));
    EXPECT_EQ(report.GetMessageCode(), static_cast<DWORD>(CONFIG_TEXT_NOT_UNICODE));
    EXPECT_EQ(withPhrase.GetProtectedText(), before);
}

TEST(EncryptedStringTest, OpensTheOlderFormAndTheEmptyTextWhateverItsProviderSays) {
    VRefPtr<IPassphraseProvider> provider = Provider(L"phrase");
    EXPECT_EQ(
        Opened(VEncryptedString(VBlowfishString::Encode(L"from the old form"), provider.Get())),
        L"from the old form");
    EXPECT_EQ(Opened(VEncryptedString(VUnicodeString(), provider.Get())), L"");
}
