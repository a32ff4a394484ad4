// The "02:" form: its record layout and round trips; one table of malformed
// texts in every stored form, refused through VEncryptedString; and a
// randomised run over many mutated "02:" texts.

#include <gtest/gtest.h>

#include <cryptopp/aes.h>
#include <cryptopp/modes.h>
#include <cryptopp/sha.h>

#include <chrono>
#include <cstring>
#include <cwchar>
#include <random>

#include "ConfigMessages.h"
#include "CryptoTestVectors.h"
#include "PassphraseForm.h"
#include "TestRandomSources.h"
#include "Utf8Text.h"
#include "VBlowfishString.h"
#include "VEncryptedString.h"

namespace {

const VUnicodeString Name(L"Firewall Password V2");
const VUnicodeString Passphrase(L"correct horse \x00E4 battery");
// "correct horse ä battery" in UTF-8, written out independently of our converter.
const std::string PassphraseUtf8 = "correct horse \xC3\xA4 battery";

Bytes Sha256(const std::string& bytes) {
    Bytes digest(32);
    CryptoPP::SHA256().CalculateDigest(
        digest.data(), reinterpret_cast<const CryptoPP::byte*>(bytes.data()), bytes.size());
    return digest;
}

// The record inside a "02:" text, deciphered with Crypto++ directly: AES-256
// in CBC mode, zero IV, key = SHA-256 of the pass phrase's UTF-8 bytes.
Bytes Decipher(const VUnicodeString& text, const std::string& passphraseUtf8) {
    EXPECT_TRUE(text.StartsWith(L"02:"));
    const Bytes cipherText = DecodeHex(VString(text.Mid(3)).c_str());
    const Bytes key = Sha256(passphraseUtf8);
    const Bytes iv(16, 0);
    CryptoPP::CBC_Mode<CryptoPP::AES>::Decryption aes(key.data(), key.size(), iv.data());
    Bytes record(cipherText.size());
    aes.ProcessData(record.data(), cipherText.data(), cipherText.size());
    return record;
}

// A "02:" text of an arbitrary record, enciphered under passphrase.
VUnicodeString Encipher(Bytes record, const VUnicodeString& passphrase) {
    std::unique_ptr<CryptUtils::Cipher> cipher = PassphraseForm::CreateCipher(passphrase, true);
    VReportMessageParams report;
    EXPECT_TRUE(cipher->Process(record.data(), record.data(), record.size(), report));
    return VUnicodeString(L"02:") + VUnicodeString(VString(EncodeHex(record).c_str()));
}

// A well-formed record for utf8, with its own digest and zero padding.
Bytes Record(const std::string& utf8, uint32_t lengthField, size_t padding) {
    const Bytes digest = Sha256(utf8);
    Bytes record;
    record.reserve(4 + utf8.size() + digest.size() + padding);
    for (int i = 0; i < 4; ++i) record.push_back(static_cast<uint8_t>(lengthField >> (8 * i)));
    for (char c : utf8) record.push_back(static_cast<uint8_t>(c));
    for (uint8_t b : digest) record.push_back(b);
    record.resize(record.size() + padding);
    return record;
}

VUnicodeString Encoded(const VUnicodeString& plain, IRandomSource* random = nullptr) {
    VUnicodeString text;
    VReportMessageParams report;
    EXPECT_TRUE(PassphraseForm::Encode(plain, Passphrase, text, Name, report, random))
        << report.GetMessageCode();
    return text;
}

// text as GoogleTest prints wide strings, with what is not ASCII escaped.
std::string Printable(const VUnicodeString& text) {
    return testing::PrintToString(std::wstring(text.c_str(), text.GetLength()));
}

// Decodes text and checks that a failure left plain as it was.
bool Decodes(const VUnicodeString& text, const VUnicodeString& passphrase, VUnicodeString& plain,
             VReportMessageParams& report) {
    const VUnicodeString before = plain;
    const bool decoded = PassphraseForm::Decode(text, passphrase, plain, Name, report);
    if (!decoded) {
        EXPECT_EQ(plain, before) << "a failed decode changed the output";
    }
    return decoded;
}

}  // namespace

TEST(PassphraseFormTest, TheRecordHoldsLengthTextDigestAndRandomPadding) {
    // "Grüße 🙂": 12 UTF-8 bytes, so p = 16 - (48 mod 16) = 16.
    const VUnicodeString plain(
        L"Gr\x00FC\x00DF"
        L"e \xD83D\xDE42");
    const std::string utf8 =
        "Gr\xC3\xBC\xC3\x9F"
        "e \xF0\x9F\x99\x82";
    VRefPtr<IRandomSource> counting = VRefPtr<IRandomSource>::Adopt(new CountingRandomSource());
    const VUnicodeString text = Encoded(plain, counting.Get());

    for (size_t i = 3; i < text.GetLength(); ++i)
        ASSERT_TRUE(std::wcschr(L"0123456789abcdef", text[i]))
            << "digits must be lower-case hexadecimal";
    const Bytes record = Decipher(text, PassphraseUtf8);
    ASSERT_EQ(record.size(), 4 + 12 + 32 + 16u);
    EXPECT_EQ(EncodeHex(record.data(), 4), "0c000000");
    EXPECT_EQ(std::string(record.begin() + 4, record.begin() + 16), utf8);
    EXPECT_EQ(EncodeHex(record.data() + 16, 32), EncodeHex(Sha256(utf8)));
    EXPECT_EQ(EncodeHex(record.data() + 48, 16), "000102030405060708090a0b0c0d0e0f");
}

TEST(PassphraseFormTest, RoundTripsTextsIntoSensitiveStrings) {
    VUnicodeString longText;
    for (int i = 0; i < 500; ++i) longText.Append(static_cast<wchar_t>(L'A' + i % 26));
    for (const VUnicodeString& plain :
         {VUnicodeString(), VUnicodeString(L"s3cr\x00E9t \x4E2D\x6587 \xD83D\xDD11"), longText}) {
        const VUnicodeString first = Encoded(plain);
        EXPECT_NE(first, Encoded(plain)) << "the padding is random, so texts differ";
        VUnicodeString opened(L"before");
        VReportMessageParams report;
        ASSERT_TRUE(Decodes(first, Passphrase, opened, report));
        EXPECT_EQ(opened, plain);
        EXPECT_TRUE(opened.IsSensitive());
    }
}

TEST(PassphraseFormTest, EncodingFailsCleanly) {
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
        EXPECT_FALSE(PassphraseForm::Encode(VUnicodeString(c.plain), c.passphrase, text, Name,
                                            report, c.random));
        EXPECT_EQ(report.GetMessageCode(), c.code) << Printable(c.plain);
        EXPECT_EQ(text, L"unchanged");
    }
}

TEST(ProtectedTextTest, RefusesEveryKindOfMalformedTextAndChangesNothing) {
    const VUnicodeString good = Encoded(L"secret");
    const VUnicodeString digits = good.Mid(3);
    VUnicodeString capi;
    VReportMessageParams sealReport;
    {
        VEncryptedString sealed;
        ASSERT_TRUE(sealed.SetPlainText(L"secret", Name, sealReport));
        capi = sealed.GetProtectedText();
    }
    const size_t middle = 5 + (capi.GetLength() - 5) / 4 * 2;
    const VUnicodeString older = VBlowfishString::Encode(L"password");
    auto flipped = [](const VUnicodeString& text, size_t at) {
        return text.Left(at) + (text[at] == L'0' ? L"1" : L"0") + text.Mid(at + 1);
    };
    auto crafted = [](uint32_t lengthField, size_t changedByte) {
        Bytes record = Record("secret", lengthField, 22);
        if (changedByte) record[changedByte] ^= 0x01;
        return Encipher(record, Passphrase);
    };
    const wchar_t* const phrase = L"correct horse \x00E4 battery";
    const DWORD unreadable = CONFIG_PROTECTED_TEXT_UNREADABLE;
    const DWORD damaged = CONFIG_PROTECTED_TEXT_DAMAGED;
    const DWORD invalid = CONFIG_PROTECTED_TEXT_INVALID;
    const struct {
        const char* what;
        VUnicodeString text;
        const wchar_t* passphrase;  // nullptr: no pass phrase provider at all
        DWORD code;
    } cases[] = {
        // "02:" texts.
        {"02: other version", VUnicodeString(L"03:") + digits, phrase, invalid},
        {"02: prefix only", VUnicodeString(L"02:"), phrase, unreadable},
        {"02: not a digit", good.Left(10) + L"g" + good.Mid(11), phrase, unreadable},
        {"02: wide character whose low byte is a digit", good.Left(10) + L"\x0130" + good.Mid(11),
         phrase, unreadable},
        {"02: blank inside", good.Left(10) + L" " + good.Mid(11), phrase, unreadable},
        {"02: odd digit count", good.Left(good.GetLength() - 1), phrase, unreadable},
        {"02: 32 bytes, under 36", VUnicodeString(L"02:") + digits.Left(64), phrase, unreadable},
        {"02: not a block multiple", good + L"0011223344556677", phrase, unreadable},
        {"02: length field beyond the record", crafted(64 - 35, 0), phrase, unreadable},
        {"02: length field of 2^32 - 1", crafted(0xFFFFFFFFu, 0), phrase, unreadable},
        {"02: plausible length, wrong digest", crafted(6, 4 + 6 + 5), phrase, unreadable},
        {"02: text changed after its digest was taken", crafted(6, 5), phrase, unreadable},
        {"02: text that is not UTF-8", Encipher(Record("\xC3\x28", 2, 26), Passphrase), phrase,
         unreadable},
        {"02: first cipher block changed", flipped(good, 3), phrase, unreadable},
        {"02: second cipher block changed", flipped(good, 35), phrase, unreadable},
        {"02: pass phrase without its accent", good, L"correct horse a battery", unreadable},
        {"02: pass phrase in another case", good, L"Correct horse \x00E4 battery", unreadable},
        {"02: no pass phrase", good, nullptr, CONFIG_PASSPHRASE_UNUSABLE},
        {"02: empty pass phrase", good, L"", CONFIG_PASSPHRASE_UNUSABLE},
        {"02: pass phrase not Unicode", good, L"\xDC00", CONFIG_PASSPHRASE_UNUSABLE},
        // "CAPI:" texts.
        {"CAPI: odd digit count", capi.Left(capi.GetLength() - 1), phrase, damaged},
        {"CAPI: one digit", VUnicodeString(L"CAPI:A"), phrase, damaged},
        {"CAPI: not a digit", capi.Left(middle) + L"G" + capi.Mid(middle + 1), phrase, damaged},
        {"CAPI: blob byte changed", flipped(capi, middle), phrase, damaged},
        {"CAPI: blob cut short", capi.Left(capi.GetLength() - 8), phrase, damaged},
        {"CAPI: not a blob at all", VUnicodeString(L"CAPI:00112233445566778899"), phrase, damaged},
        // The older form's bare digits.
        {"older: letter O for the zero", VUnicodeString(L"O2:") + digits, phrase, invalid},
        {"older: not whole blocks", older.Left(older.GetLength() - 2), phrase, invalid},
        {"older: odd digit count", older.Left(older.GetLength() - 1), phrase, invalid},
        {"older: not a digit", older.Left(4) + L"x" + older.Mid(5), phrase, invalid},
        {"older: a zero unit inside the text", VBlowfishString::Encode(VUnicodeString(L"a\0b", 3)),
         phrase, invalid},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        VRefPtr<IPassphraseProvider> provider;
        if (c.passphrase)
            provider = VRefPtr<IPassphraseProvider>::Adopt(
                new VFixedPassphraseProvider(VUnicodeString(c.passphrase)));
        const VEncryptedString value(c.text, provider.Get());
        VUnicodeString plain(L"unchanged");
        VReportMessageParams report;
        EXPECT_FALSE(value.GetPlainText(plain, Name, report));
        EXPECT_EQ(report.GetMessageCode(), c.code);
        EXPECT_EQ(plain, L"unchanged");
        EXPECT_EQ(value.GetProtectedText(), c.text);
    }
    // The crafted records are well-formed but for the one defect each has.
    VUnicodeString plain;
    VReportMessageParams report;
    EXPECT_TRUE(Decodes(crafted(6, 0), Passphrase, plain, report));
    EXPECT_EQ(plain, L"secret");
}

TEST(PassphraseFormTest, ManyRandomlyMutatedTextsFailCleanly) {
    // Seeded from the clock so that each run explores new mutations; the seed
    // is printed so that a failure can be replayed with TRAYWELL_MUTATION_SEED.
    uint32_t seed =
        static_cast<uint32_t>(std::chrono::steady_clock::now().time_since_epoch().count());
    if (const char* fixed = std::getenv("TRAYWELL_MUTATION_SEED"))
        seed = static_cast<uint32_t>(std::strtoul(fixed, nullptr, 10));
    std::printf("mutation seed %u\n", seed);
    SCOPED_TRACE("mutation seed " + std::to_string(seed));
    std::mt19937 random(seed);
    auto below = [&](size_t n) { return static_cast<size_t>(random() % n); };
    // The part of text from position on; empty past its end.
    auto from = [](const VUnicodeString& text, size_t position) {
        return position < text.GetLength() ? text.Mid(position) : VUnicodeString();
    };
    const wchar_t alphabet[] = L"0123456789abcdefABCDEF:02CAPI g\xD800\xFFFF";

    const VUnicodeString plains[] = {L"", L"pw", L"a longer secret of some 40 characters.."};
    const VUnicodeString originals[] = {Encoded(plains[0]), Encoded(plains[1]), Encoded(plains[2])};
    int accepted = 0;
    for (int round = 0; round < 20000; ++round) {
        const size_t which = below(3);
        VUnicodeString text = originals[which];
        const int mutations = 1 + static_cast<int>(below(3));
        for (int m = 0; m < mutations; ++m) {
            const size_t at = below(text.GetLength() + 1);
            const VUnicodeString character(&alphabet[below(wcslen(alphabet))], 1);
            switch (below(5)) {
                case 0:  // replace a character
                    text = text.Left(at) + character + from(text, at + 1);
                    break;
                case 1:  // insert one
                    text = text.Left(at) + character + from(text, at);
                    break;
                case 2:  // delete a run
                    text = text.Left(at) + from(text, at + 1 + below(40));
                    break;
                case 3:  // cut the end off
                    text = text.Left(at);
                    break;
                default:  // repeat a run of digits
                    text = text.Left(at) + from(text, at).Left(below(64)) + from(text, at);
                    break;
            }
        }
        VUnicodeString plain(L"unchanged");
        VReportMessageParams report;
        if (Decodes(text, Passphrase, plain, report)) {
            // Only a change of digit case, or a cut that drops whole blocks of
            // padding, leaves a text that opens; it must then give the original.
            ASSERT_EQ(plain, plains[which]) << Printable(text);
            ++accepted;
        } else {
            ASSERT_EQ(report.GetMessageCode(), static_cast<DWORD>(CONFIG_PROTECTED_TEXT_UNREADABLE))
                << Printable(text);
        }
    }
    EXPECT_LT(accepted, 2000) << "mutations should almost always damage the text";
}
