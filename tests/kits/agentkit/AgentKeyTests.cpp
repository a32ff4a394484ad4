// Keys and key files: our Blowfish state against Crypto++'s Blowfish, and the
// files ssh-keygen wrote (keys/) read back to the keys it listed in the .pub
// files, sealed ones through bcrypt-pbkdf; what must be refused is.

#include <gtest/gtest.h>

#include <cryptopp/blowfish.h>

#include <cstdlib>
#include <random>

#include "AgentTestSupport.h"
#include "BcryptPbkdf.h"
#include "EksBlowfish.h"

namespace {

uint32_t Seed() {
    const char* given = std::getenv("TRAYWELL_AGENT_SEED");
    const uint32_t seed =
        given ? static_cast<uint32_t>(std::strtoul(given, nullptr, 10)) : std::random_device()();
    std::printf("seed %u (set TRAYWELL_AGENT_SEED to replay)\n", seed);
    return seed;
}

}  // namespace

// A fresh state expanded with a key is plain Blowfish under that key, so
// Crypto++'s Blowfish checks both the computed initial state and the rounds.
TEST(AgentCryptoTest, OurBlowfishIsCryptoPlusPlusBlowfish) {
    std::mt19937 random(Seed());
    for (size_t keyBytes : {4, 7, 16, 56}) {
        AgentBytes key(keyBytes);
        for (auto& byte : key) byte = static_cast<uint8_t>(random());
        EksBlowfish ours;
        ours.Expand0(key.data(), key.size());
        CryptoPP::Blowfish::Encryption theirs(key.data(), key.size());
        for (int block = 0; block < 8; ++block) {
            uint32_t left = random(), right = random();
            uint8_t bytes[8], expected[8];
            for (int index = 0; index < 4; ++index) {
                bytes[index] = static_cast<uint8_t>(left >> (24 - 8 * index));
                bytes[4 + index] = static_cast<uint8_t>(right >> (24 - 8 * index));
            }
            theirs.ProcessBlock(bytes, expected);
            ours.Encrypt(left, right);
            EXPECT_EQ(left, uint32_t{expected[0]} << 24 | expected[1] << 16 | expected[2] << 8 |
                                expected[3]);
            EXPECT_EQ(right, uint32_t{expected[4]} << 24 | expected[5] << 16 | expected[6] << 8 |
                                 expected[7]);
        }
    }
    uint8_t out[32];
    const uint8_t salt[4] = {1, 2, 3, 4};
    EXPECT_FALSE(BcryptPbkdf(salt, 4, salt, 4, 0, out, 32));   // no rounds
    EXPECT_FALSE(BcryptPbkdf(salt, 4, salt, 0, 16, out, 32));  // no salt
    EXPECT_FALSE(BcryptPbkdf(salt, 4, salt, 4, 16, out, 0));   // nothing to derive
}

// The sealed file's key and IV come from bcrypt-pbkdf: a wrong derivation
// fails its check numbers, so reading it is the known-answer test.
TEST(KeyFileTest, ReadsWhatSshKeygenWroteAndRefusesTheRest) {
    const struct {
        const char* file;
        const wchar_t* passphrase;
        KeyFileError error;
        unsigned bits;
        const wchar_t* label;
    } cases[] = {
        {"ed25519", L"", KeyFileError::None, 256, L"ED25519"},
        {"ecdsa256", L"", KeyFileError::None, 256, L"ECDSA"},
        {"ecdsa384", L"", KeyFileError::None, 384, L"ECDSA"},
        {"ecdsa521", L"", KeyFileError::None, 521, L"ECDSA"},
        {"rsa", L"", KeyFileError::None, 2048, L"RSA"},
        {"ed25519-sealed", L"open sesame", KeyFileError::None, 256, L"ED25519"},
        {"ed25519-sealed", L"", KeyFileError::NeedsPassphrase, 0, L""},
        {"ed25519-sealed", L"open sesame!", KeyFileError::WrongPassphrase, 0, L""},
        {"rsa1024", L"", KeyFileError::TooSmall, 0, L""},
        {"ed25519.pub", L"", KeyFileError::NotAKeyFile, 0, L""},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.file);
        AgentBytes content;
        VReportMessageParams report;
        ASSERT_TRUE(ReadKeyFileBytes(TestKeyPath(test.file).c_str(), content, report));
        EXPECT_EQ(KeyFileNeedsPassphrase(content), std::string(test.file) == "ed25519-sealed");
        LoadedKey key;
        AgentText what;
        ASSERT_EQ(ParseKeyFile(content, Utf8Bytes(VUnicodeString(test.passphrase)), key, what),
                  test.error);
        if (test.error != KeyFileError::None) {
            EXPECT_TRUE(key.key.GetPublicBlob().size() <= 4) << "a refused file leaves no key";
            continue;
        }
        const AgentIdentity expected = ReadPublicKeyFile(test.file);
        EXPECT_EQ(key.key.GetPublicBlob(), expected.publicBlob);
        EXPECT_EQ(key.comment, expected.comment);
        EXPECT_EQ(key.key.GetBits(), test.bits);
        EXPECT_STREQ(key.key.GetTypeLabel(), test.label);
    }

    // Damage to the key (the first 400 characters: the header, the public and
    // the private key; the comment after them is free text) is noticed.
    AgentBytes content;
    VReportMessageParams report;
    ASSERT_TRUE(ReadKeyFileBytes(TestKeyPath("ecdsa256").c_str(), content, report));
    const std::string text(content.begin(), content.end());
    for (size_t at = text.find('\n') + 40; at < text.find('\n') + 400; at += 37) {
        AgentBytes damaged = content;
        damaged[at] = damaged[at] == 'A' ? 'B' : 'A';
        LoadedKey key;
        AgentText what;
        EXPECT_NE(ParseKeyFile(damaged, {}, key, what), KeyFileError::None) << "damage at " << at;
    }
    LoadedKey key;
    EXPECT_FALSE(
        LoadKeyFile(TestKeyPath("ed25519-sealed").c_str(), VUnicodeString(L"nope"), key, report));
    EXPECT_NE(std::wstring(report.GetText()).find(L"pass phrase does not open"),
              std::wstring::npos);
}
