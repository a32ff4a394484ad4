// The "02:" form: its record layout, key derivation and padding rule, round
// trips, and the refusal of every kind of malformed text, including a
// randomised run over many mutated texts.

#include <gtest/gtest.h>

#include <cryptopp/aes.h>
#include <cryptopp/modes.h>
#include <cryptopp/sha.h>

#include <chrono>
#include <cstring>
#include <random>

#include "ConfigMessages.h"
#include "CryptoTestVectors.h"
#include "PassphraseForm.h"
#include "TestRandomSources.h"
#include "Utf8Text.h"

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

TEST(PassphraseFormTest, PadsToWholeBlocksWithAtLeastHalfABlock) {
    EXPECT_EQ(PassphraseForm::PaddingLength(0, 16), 12u);
    EXPECT_EQ(PassphraseForm::PaddingLength(4, 16), 8u);   // exactly half a block is enough
    EXPECT_EQ(PassphraseForm::PaddingLength(5, 16), 23u);  // 7 would be too few
    EXPECT_EQ(PassphraseForm::PaddingLength(12, 16),
              16u);  // 48 bytes already whole: one more block
    for (size_t n = 0; n < 200; ++n) {
        const size_t p = PassphraseForm::PaddingLength(n, 16);
        EXPECT_EQ((n + 36 + p) % 16, 0u) << n;
        EXPECT_GE(p, 8u) << n;
        EXPECT_LT(p, 24u) << n;
    }
}

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

TEST(PassphraseFormTest, AnEmptyTextIsOneRecordOf36BytesAndPadding) {
    const VUnicodeString text = Encoded(VUnicodeString());
    EXPECT_EQ(text.GetLength(), 3 + 2 * 48u);
    const Bytes record = Decipher(text, PassphraseUtf8);
    EXPECT_EQ(EncodeHex(record.data(), 36), "00000000" + EncodeHex(Sha256("")));
    VUnicodeString plain(L"before");
    VReportMessageParams report;
    ASSERT_TRUE(Decodes(text, Passphrase, plain, report));
    EXPECT_TRUE(plain.IsEmpty());
}

TEST(PassphraseFormTest, RoundTripsTextsIntoSensitiveStrings) {
    VUnicodeString longText;
    for (int i = 0; i < 500; ++i) longText.Append(static_cast<wchar_t>(L'A' + i % 26));
    for (const VUnicodeString& plain :
         {VUnicodeString(L"p"), VUnicodeString(L"s3cr\x00E9t \x4E2D\x6587 \xD83D\xDD11"),
          longText}) {
        const VUnicodeString first = Encoded(plain);
        const VUnicodeString second = Encoded(plain);
        EXPECT_NE(first, second) << "the padding is random, so texts differ";
        for (const VUnicodeString& text : {first, second}) {
            VUnicodeString opened;
            VReportMessageParams report;
            ASSERT_TRUE(Decodes(text, Passphrase, opened, report));
            EXPECT_EQ(opened, plain);
            EXPECT_TRUE(opened.IsSensitive());
        }
    }
}

TEST(PassphraseFormTest, TheKeyIsTheSha256OfThePassphraseInUtf8) {
    VBasicBuffer key(32);
    ASSERT_TRUE(PassphraseForm::DeriveKey(Passphrase, key));
    EXPECT_EQ(EncodeHex(key.GetData(), key.GetLength()), EncodeHex(Sha256(PassphraseUtf8)));

    // A longer key goes on with the digest of the key gathered so far; a
    // shorter one is the digest's start.
    VBasicBuffer longKey(40);
    ASSERT_TRUE(PassphraseForm::DeriveKey(Passphrase, longKey));
    const Bytes first = Sha256(PassphraseUtf8);
    const Bytes second = Sha256(std::string(first.begin(), first.end()));
    EXPECT_EQ(EncodeHex(longKey.GetData(), 40), EncodeHex(first) + EncodeHex(second.data(), 8));
    VBasicBuffer shortKey(16);
    ASSERT_TRUE(PassphraseForm::DeriveKey(Passphrase, shortKey));
    EXPECT_EQ(EncodeHex(shortKey.GetData(), 16), EncodeHex(first.data(), 16));

    VBasicBuffer refused(32);
    EXPECT_FALSE(PassphraseForm::DeriveKey(VUnicodeString(L"lone \xD800"), refused));
}

TEST(PassphraseFormTest, NoCipherWithoutAUsablePassphrase) {
    EXPECT_EQ(PassphraseForm::CreateCipher(VUnicodeString(), true), nullptr);
    EXPECT_EQ(PassphraseForm::CreateCipher(VUnicodeString(L"\xDC00"), false), nullptr);
    std::unique_ptr<CryptUtils::Cipher> cipher = PassphraseForm::CreateCipher(Passphrase, true);
    ASSERT_NE(cipher, nullptr);
    EXPECT_EQ(cipher->GetKeySize(), 32u);

    for (const VUnicodeString& passphrase : {VUnicodeString(), VUnicodeString(L"\xDC00")}) {
        VUnicodeString text(L"unchanged");
        VReportMessageParams report;
        EXPECT_FALSE(PassphraseForm::Encode(L"x", passphrase, text, Name, report));
        EXPECT_EQ(report.GetMessageCode(), static_cast<DWORD>(CONFIG_PASSPHRASE_UNUSABLE));
        EXPECT_EQ(text, L"unchanged");
        VUnicodeString plain(L"unchanged");
        EXPECT_FALSE(Decodes(Encoded(L"x"), passphrase, plain, report));
        EXPECT_EQ(report.GetMessageCode(), static_cast<DWORD>(CONFIG_PASSPHRASE_UNUSABLE));
    }
}

TEST(PassphraseFormTest, EncodingFailsCleanlyForALoneSurrogateOrAFailingRandomSource) {
    VUnicodeString text(L"unchanged");
    VReportMessageParams report;
    EXPECT_FALSE(
        PassphraseForm::Encode(VUnicodeString(L"ab\xD83D"), Passphrase, text, Name, report));
    EXPECT_EQ(report.GetMessageCode(), static_cast<DWORD>(CONFIG_TEXT_NOT_UNICODE));
    ASSERT_EQ(report.GetArguments().GetCount(), 1u);
    EXPECT_EQ(report.GetArguments()[0], Name);
    EXPECT_EQ(text, L"unchanged");

    VRefPtr<IRandomSource> failing = VRefPtr<IRandomSource>::Adopt(new FailingRandomSource());
    EXPECT_FALSE(PassphraseForm::Encode(L"x", Passphrase, text, Name, report, failing.Get()));
    EXPECT_EQ(report.GetMessageCode(), static_cast<DWORD>(FailingRandomSource::Error));
    EXPECT_EQ(text, L"unchanged");
}

TEST(PassphraseFormTest, RefusesEveryKindOfMalformedText) {
    const VUnicodeString good = Encoded(L"secret");
    const VUnicodeString digits = good.Mid(3);
    struct Case {
        const char* what;
        VUnicodeString text;
    };
    const Case cases[] = {
        {"no prefix", digits},
        {"other version", VUnicodeString(L"03:") + digits},
        {"letter O for the zero", VUnicodeString(L"O2:") + digits},
        {"prefix without colon", VUnicodeString(L"02") + digits},
        {"system form", VUnicodeString(L"CAPI:") + digits},
        {"empty", VUnicodeString()},
        {"prefix only", VUnicodeString(L"02:")},
        {"not a digit", good.Left(10) + L"g" + good.Mid(11)},
        {"blank inside", good.Left(10) + L" " + good.Mid(11)},
        {"odd digit count", good.Left(good.GetLength() - 1)},
        {"32 bytes, under 36", VUnicodeString(L"02:") + digits.Left(64)},
        {"not a block multiple", good + L"0011223344556677"},
        {"length field beyond the record", Encipher(Record("secret", 64 - 35, 22), Passphrase)},
        {"length field of 2^32 - 1", Encipher(Record("secret", 0xFFFFFFFFu, 22), Passphrase)},
        {"plausible length, wrong digest",
         [] {
             Bytes record = Record("secret", 6, 22);
             record[4 + 6 + 5] ^= 0x01;
             return Encipher(record, Passphrase);
         }()},
        {"digest of other bytes",
         [] {
             Bytes record = Record("secret", 6, 22);
             record[5] = 'E';  // the text changed after its digest was taken
             return Encipher(record, Passphrase);
         }()},
        {"text that is not UTF-8", Encipher(Record("\xC3\x28", 2, 26), Passphrase)},
        {"first cipher block changed",
         good.Left(3) + (good[3] == L'0' ? L"1" : L"0") + good.Mid(4)},
        {"second cipher block changed",
         good.Left(35) + (good[35] == L'0' ? L"1" : L"0") + good.Mid(36)},
    };
    for (const Case& c : cases) {
        VUnicodeString plain(L"unchanged");
        VReportMessageParams report;
        EXPECT_FALSE(Decodes(c.text, Passphrase, plain, report)) << c.what;
        EXPECT_EQ(report.GetMessageCode(), static_cast<DWORD>(CONFIG_PROTECTED_TEXT_UNREADABLE))
            << c.what;
    }
    // The crafted records are well-formed but for the one defect each has.
    VUnicodeString plain;
    VReportMessageParams report;
    EXPECT_TRUE(Decodes(Encipher(Record("secret", 6, 22), Passphrase), Passphrase, plain, report));
    EXPECT_EQ(plain, L"secret");
}

TEST(PassphraseFormTest, AWrongPassphraseFailsTheLengthOrDigestTest) {
    const VUnicodeString text = Encoded(L"secret");
    for (const wchar_t* wrong :
         {L"correct horse a battery", L"Correct horse \x00E4 battery", L"x"}) {
        VUnicodeString plain(L"unchanged");
        VReportMessageParams report;
        EXPECT_FALSE(Decodes(text, VUnicodeString(wrong), plain, report)) << wrong;
        EXPECT_EQ(report.GetMessageCode(), static_cast<DWORD>(CONFIG_PROTECTED_TEXT_UNREADABLE));
    }
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
