// The "02:", "CAPI:" and older forms of a protected text (OpenSSL: openssl-interop.sh).
#include <gtest/gtest.h>

#include <windows.h>

#include <cryptopp/sha.h>
#include <dpapi.h>

#include <cwchar>
#include <cwctype>
#include <random>

#include "CapiForm.h"
#include "ConfigMessages.h"
#include "CryptoTestSupport.h"
#include "PassphraseForm.h"
#include "TestSeed.h"
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

TEST(ProtectedForms, AnEncryptedStringSealsWithThePassphraseWhenThereIsOne) {
    VRefPtr<IPassphraseProvider> phrase = Provider(L"phrase"), none = Provider(L"");
    const struct {
        IPassphraseProvider* provider;
        const wchar_t* prefix;
        VEncryptedString::Form form;
    } cases[] = {{phrase.Get(), L"02:", VEncryptedString::Form::Passphrase},
                 {none.Get(), L"CAPI:", VEncryptedString::Form::Capi},
                 {nullptr, L"CAPI:", VEncryptedString::Form::Capi}};
    for (const auto& c : cases) {
        VEncryptedString value(VUnicodeString(), c.provider);
        VReportMessageParams report;
        ASSERT_TRUE(value.SetPlainText(L"secret", Name, report));
        EXPECT_TRUE(value.StartsWith(c.prefix) && value.GetForm() == c.form);
        VUnicodeString plain;
        EXPECT_TRUE(value.GetPlainText(plain, Name, report) && plain == L"secret");
    }
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
        {"02: not a digit", good.Left(10) + L"g" + good.Mid(11), phrase, unreadable},
        {"02: wide character whose low byte is a digit", good.Left(10) + L"\x0130" + good.Mid(11), phrase, unreadable},
        {"02: odd digit count", good.Left(good.GetLength() - 1), phrase, unreadable},
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
        {"CAPI: not a digit", capi.Left(middle) + L"G" + capi.Mid(middle + 1), phrase, damaged},
        {"CAPI: blob byte changed", flipped(capi, middle), phrase, damaged},
        {"CAPI: blob cut short", capi.Left(capi.GetLength() - 8), phrase, damaged},
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
    EXPECT_TRUE(Decodes(Crafted("secret", 6), plain, report) && plain == L"secret")
        << "crafted records are well-formed but for their defect";
}

TEST(ProtectedForms, ManyRandomlyMutatedPassphraseTextsFailCleanly) {
    std::mt19937_64 random(TestSeed("mutated texts"));
    const auto below = [&](size_t n) { return static_cast<size_t>(random() % n); };
    const auto from = [](const VUnicodeString& text, size_t at) {
        return at < text.GetLength() ? text.Mid(at) : VUnicodeString();
    };
    const wchar_t alphabet[] = L"0123456789abcdefABCDEF:02CAPI g\xD800\xFFFF";
    const VUnicodeString plains[] = {L"", L"pw", L"a longer secret of some 40 characters.."};
    const VUnicodeString originals[] = {Encoded(plains[0]), Encoded(plains[1]), Encoded(plains[2])};
    int accepted = 0;
    for (int round = 0; round < 20000; ++round) {
        const size_t which = below(3);
        VUnicodeString text = originals[which];
        for (size_t m = 1 + below(3); m > 0; --m) {
            const size_t at = below(text.GetLength() + 1);
            const VUnicodeString character(&alphabet[below(std::size(alphabet) - 1)], 1);
            switch (below(5)) {
            case 0: text = text.Left(at) + character + from(text, at + 1); break;  // replace
            case 1: text = text.Left(at) + character + from(text, at); break;      // insert
            case 2: text = text.Left(at) + from(text, at + 1 + below(40)); break;  // delete a run
            case 3: text = text.Left(at); break;                                   // cut the end off
            default: text = text.Left(at) + from(text, at).Left(below(64)) + from(text, at);  // repeat a run
            }
        }
        VUnicodeString plain(L"unchanged");
        VReportMessageParams report;
        if (Decodes(text, plain, report)) {
            // Only a change of digit case or a cut of whole padding blocks still opens.
            ASSERT_EQ(plain, plains[which]) << Printable(text);
            ++accepted;
        } else {
            ASSERT_EQ(report.GetMessageCode(), static_cast<DWORD>(CONFIG_PROTECTED_TEXT_UNREADABLE)) << Printable(text);
        }
    }
    EXPECT_LT(accepted, 2000) << "mutations should almost always damage the text";
}
