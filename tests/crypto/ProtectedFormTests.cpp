// The "02:", "CAPI:" and older forms of a protected text (OpenSSL: openssl-interop.sh).
#include <gtest/gtest.h>

#include <windows.h>

#include <cryptopp/sha.h>
#include <dpapi.h>

#include <cwchar>
#include <cwctype>

#include "CapiForm.h"
#include "ConfigMessages.h"
#include "CryptoTestSupport.h"
#include "PassphraseForm.h"
#include "VBlowfishString.h"
#include "VEncryptedString.h"

namespace {

const VUnicodeString Name(L"Firewall Password V2");
const VUnicodeString Passphrase(L"correct horse \x00E4 battery");

VUnicodeString Encoded(const VUnicodeString& plain, IRandomSource* random = nullptr) {
    VUnicodeString text;
    VReportMessageParams report;
    EXPECT_TRUE(PassphraseForm::Encode(plain, Passphrase, text, Name, report, random)) << report.GetMessageCode();
    return text;
}

bool Decodes(const VUnicodeString& text, VUnicodeString& plain, VReportMessageParams& report) {
    const VUnicodeString before = plain;
    const bool decoded = PassphraseForm::Decode(text, Passphrase, plain, Name, report);
    if (!decoded) {
        EXPECT_EQ(plain, before) << "a failed decode changed the output";
    }
    return decoded;
}

VRefPtr<IPassphraseProvider> Provider(const wchar_t* passphrase) {
    return VRefPtr<IPassphraseProvider>::Adopt(new VFixedPassphraseProvider(VUnicodeString(passphrase)));
}

std::string Printable(const VUnicodeString& text) {
    return testing::PrintToString(std::wstring(text.c_str(), text.GetLength()));
}

bool IsHex(const VUnicodeString& digits, const wchar_t* alphabet) {
    for (size_t i = 0; i < digits.GetLength(); ++i)
        if (!std::wcschr(alphabet, digits[i])) return false;
    return true;
}

}  // namespace

TEST(ProtectedForms, EachFormRoundTripsIntoSensitiveStrings) {
    VUnicodeString longText;
    for (int i = 0; i < 3000; ++i) longText.Append(static_cast<wchar_t>(0x3041 + i % 80));
    for (const VUnicodeString& plain : {VUnicodeString(L"x"), VUnicodeString(L"s3cr\x00E9t \"\\ \x4E2D \xD83D\xDD11"),
                                        longText}) {
        SCOPED_TRACE(plain.GetLength());
        VReportMessageParams report;
        const VUnicodeString sealed = Encoded(plain);
        EXPECT_NE(sealed, Encoded(plain)) << "the padding is random, so texts differ";
        VUnicodeString opened(L"before");
        EXPECT_TRUE(Decodes(sealed, opened, report) && opened == plain && opened.IsSensitive());

        VUnicodeString capi;
        ASSERT_TRUE(CapiForm::Encode(plain, capi, Name, report));
        ASSERT_TRUE(capi.StartsWith(L"CAPI:"));
        EXPECT_TRUE(IsHex(capi.Mid(5), L"0123456789ABCDEF")) << "upper-case digits";
        std::wstring lower(capi.c_str() + 5);
        for (wchar_t& digit : lower) digit = towlower(digit);
        for (const VUnicodeString& text : {capi, VUnicodeString(lower.c_str())}) {
            VUnicodeString fromCapi;
            EXPECT_TRUE(CapiForm::Decode(text, fromCapi, Name, report) && fromCapi == plain &&
                        fromCapi.IsSensitive());
        }

        const VUnicodeString older = VBlowfishString::Encode(plain);
        EXPECT_TRUE(older.GetLength() == (plain.GetLength() * 2 + 7) / 8 * 16 &&
                    IsHex(older, L"0123456789abcdef"));
        VUnicodeString fromOlder;
        EXPECT_TRUE(VBlowfishString::Decode(older, fromOlder, Name, report) && fromOlder == plain &&
                    fromOlder.IsSensitive());
    }
}

TEST(ProtectedForms, TheCapiBlobHoldsTheTerminatedTextAndItsDescription) {
    const VUnicodeString plain(L"p\x00E4ss");
    VUnicodeString text;
    VReportMessageParams report;
    ASSERT_TRUE(CapiForm::Encode(plain, text, Name, report));
    Bytes blob = DecodeHex(VString(text.Mid(5)).c_str());
    DATA_BLOB input{static_cast<DWORD>(blob.size()), blob.data()}, output{};
    LPWSTR description = nullptr;
    ASSERT_TRUE(CryptUnprotectData(&input, &description, nullptr, nullptr, nullptr, 0, &output));
    EXPECT_EQ(std::wstring(description), L"VProfileCapiString");
    EXPECT_EQ(std::wstring(reinterpret_cast<wchar_t*>(output.pbData), output.cbData / 2), std::wstring(L"p\x00E4ss", 5));
    LocalFree(output.pbData);
    LocalFree(description);

    ASSERT_TRUE(CapiForm::Encode(VUnicodeString(), text, Name, report));
    EXPECT_TRUE(text.IsEmpty()) << "an empty text is stored as an empty string";
    VUnicodeString opened(L"old");
    EXPECT_TRUE(CapiForm::Decode(text, opened, Name, report) && opened.IsEmpty());
    opened = L"old";
    EXPECT_FALSE(CapiForm::Decode(L"CAPI:00112233445566778899", opened, Name, report) ||
                 !opened.IsEmpty())
        << "a damaged text reads as empty";
    EXPECT_EQ(report.GetArguments(), VArray<VUnicodeString>{Name});
}

TEST(ProtectedForms, EncodingFailsCleanly) {
    VRefPtr<IRandomSource> failing = VRefPtr<IRandomSource>::Adopt(new FailingRandomSource());
    const struct {
        const wchar_t* plain;
        VUnicodeString passphrase;
        IRandomSource* random;
        DWORD code;
    } cases[] = {
        {L"ab\xD83D", Passphrase, nullptr, CONFIG_TEXT_NOT_UNICODE},
        {L"x", VUnicodeString(), nullptr, CONFIG_PASSPHRASE_UNUSABLE},
        {L"x", VUnicodeString(L"\xDC00"), nullptr, CONFIG_PASSPHRASE_UNUSABLE},
        {L"x", Passphrase, failing.Get(), FailingRandomSource::Error},
    };
    for (const auto& c : cases) {
        VUnicodeString text(L"unchanged");
        VReportMessageParams report;
        EXPECT_FALSE(PassphraseForm::Encode(VUnicodeString(c.plain), c.passphrase, text, Name, report, c.random));
        EXPECT_TRUE(report.GetMessageCode() == c.code && text == L"unchanged")
            << Printable(c.plain);
    }
}

// The form that the provider chooses, the firewall and pass-phrase tests show in their stores.
TEST(ProtectedForms, AnEncryptedStringKeepsItsTextWhenRefusedAndReadsOlderForms) {
    const VRefPtr<IPassphraseProvider> phrase = Provider(L"phrase");
    VEncryptedString value(VUnicodeString(), phrase.Get());
    VReportMessageParams report;
    ASSERT_TRUE(value.SetPlainText(L"kept", Name, report));
    const VUnicodeString before = value.GetProtectedText();
    EXPECT_FALSE(value.SetPlainText(VUnicodeString(L"lone \xDFFF"), Name, report) ||
                 value.GetProtectedText() != before);
    EXPECT_EQ(report.GetMessageCode(), static_cast<DWORD>(CONFIG_TEXT_NOT_UNICODE));
    for (const VUnicodeString& stored : {VBlowfishString::Encode(L"old form"), VUnicodeString()}) {
        VUnicodeString plain(L"x");
        VReportMessageParams report;
        EXPECT_TRUE(VEncryptedString(stored, phrase.Get()).GetPlainText(plain, Name, report) &&
                    plain == (stored.IsEmpty() ? L"" : L"old form"));
    }
}

namespace {

// A "02:" text of a record with its own SHA-256 digest, zero-padded to 64 bytes.
VUnicodeString Crafted(const std::string& utf8, uint32_t lengthField, size_t changedByte = 0) {
    Bytes record(64);
    for (int i = 0; i < 4; ++i) record[i] = static_cast<uint8_t>(lengthField >> (8 * i));
    std::copy(utf8.begin(), utf8.end(), record.begin() + 4);
    CryptoPP::SHA256().CalculateDigest(record.data() + 4 + utf8.size(), record.data() + 4, utf8.size());
    if (changedByte) record[changedByte] ^= 0x01;
    VReportMessageParams report;
    EXPECT_TRUE(PassphraseForm::CreateCipher(Passphrase, true)->Process(record.data(), record.data(), record.size(), report));
    return VUnicodeString(L"02:") + VUnicodeString(VString(EncodeHex(record).c_str()));
}

}  // namespace

TEST(ProtectedForms, EveryKindOfMalformedTextIsRefusedAndChangesNothing) {
    const VUnicodeString good = Encoded(L"secret");
    const VUnicodeString digits = good.Mid(3);
    VUnicodeString capi;
    VReportMessageParams sealReport;
    ASSERT_TRUE(CapiForm::Encode(L"secret", capi, Name, sealReport));
    const size_t middle = 5 + (capi.GetLength() - 5) / 4 * 2;
    const VUnicodeString older = VBlowfishString::Encode(L"password");
    const auto flipped = [](const VUnicodeString& text, size_t at) {
        return text.Left(at) + (text[at] == L'0' ? L"1" : L"0") + text.Mid(at + 1);
    };
    const wchar_t* const phrase = L"correct horse \x00E4 battery";
    const DWORD unreadable = CONFIG_PROTECTED_TEXT_UNREADABLE, damaged = CONFIG_PROTECTED_TEXT_DAMAGED,
                invalid = CONFIG_PROTECTED_TEXT_INVALID, unusable = CONFIG_PASSPHRASE_UNUSABLE;
    const struct {
        const char* what;
        VUnicodeString text;
        const wchar_t* passphrase;  // nullptr: no pass phrase provider at all
        DWORD code;
    } cases[] = {
        {"02: other version", VUnicodeString(L"03:") + digits, phrase, invalid},
        {"02: prefix only", VUnicodeString(L"02:"), phrase, unreadable},
        {"02: wide character whose low byte is a digit", good.Left(10) + L"\x0130" + good.Mid(11), phrase, unreadable},
        {"02: 32 bytes, under 36", VUnicodeString(L"02:") + digits.Left(64), phrase, unreadable},
        {"02: not a block multiple", good + L"0011223344556677", phrase, unreadable},
        {"02: length field beyond the record", Crafted("secret", 64 - 35), phrase, unreadable},
        {"02: length field of 2^32 - 1", Crafted("secret", 0xFFFFFFFFu), phrase, unreadable},
        {"02: plausible length, wrong digest", Crafted("secret", 6, 4 + 6 + 5), phrase, unreadable},
        {"02: text changed after its digest was taken", Crafted("secret", 6, 5), phrase, unreadable},
        {"02: text that is not UTF-8", Crafted("\xC3\x28", 2), phrase, unreadable},
        {"02: second cipher block changed", flipped(good, 35), phrase, unreadable},
        {"02: pass phrase without its accent", good, L"correct horse a battery", unreadable},
        {"02: no pass phrase", good, nullptr, unusable},
        {"02: empty pass phrase", good, L"", unusable},
        {"02: pass phrase not Unicode", good, L"\xDC00", unusable},
        {"CAPI: odd digit count", capi.Left(capi.GetLength() - 1), phrase, damaged},
        {"CAPI: blob byte changed", flipped(capi, middle), phrase, damaged},
        {"older: letter O for the zero", VUnicodeString(L"O2:") + digits, phrase, invalid},
        {"older: not whole blocks", older.Left(older.GetLength() - 2), phrase, invalid},
        {"older: odd digit count", older.Left(older.GetLength() - 1), phrase, invalid},
        {"older: a zero unit inside the text", VBlowfishString::Encode(VUnicodeString(L"a\0b", 3)), phrase, invalid},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        const VRefPtr<IPassphraseProvider> provider = c.passphrase ? Provider(c.passphrase) : VRefPtr<IPassphraseProvider>();
        const VEncryptedString value(c.text, provider.Get());
        VUnicodeString plain(L"unchanged");
        VReportMessageParams report;
        EXPECT_FALSE(value.GetPlainText(plain, Name, report));
        EXPECT_TRUE(report.GetMessageCode() == c.code && plain == L"unchanged" &&
                    value.GetProtectedText() == c.text);
    }
    VUnicodeString plain;
    VReportMessageParams report;
    EXPECT_FALSE(Decodes(Crafted("secret", 6, 5), plain, report)) << "and leaves the output alone";
    EXPECT_TRUE(Decodes(Crafted("secret", 6), plain, report) && plain == L"secret")
        << "crafted records are well-formed but for their defect";
}
