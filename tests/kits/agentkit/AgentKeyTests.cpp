// Key files that ssh-keygen wrote, read back to their .pub keys; bad ones refused.

#include <gtest/gtest.h>

#include <algorithm>

#include "AgentTestSupport.h"
#include "BcryptPbkdf.h"

// Reading the sealed file is bcrypt-pbkdf's known-answer test: a wrong key fails its checks.
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
    auto read = [](const char* file) {
        AgentBytes content;
        VReportMessageParams report;
        EXPECT_TRUE(ReadKeyFileBytes(TestKeyPath(file).c_str(), content, report)) << file;
        return content;
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.file);
        const AgentBytes content = read(test.file);
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

    // Damage to the header, public or private key (not the free comment after them) is noticed.
    const AgentBytes content = read("ecdsa256");
    const size_t body =
        static_cast<size_t>(std::find(content.begin(), content.end(), '\n') - content.begin());
    for (size_t at = body + 40; at < body + 400; at += 37) {
        AgentBytes damaged = content;
        damaged[at] = damaged[at] == 'A' ? 'B' : 'A';
        LoadedKey key;
        AgentText what;
        EXPECT_NE(ParseKeyFile(damaged, {}, key, what), KeyFileError::None) << "damage at " << at;
    }
    uint8_t out[32];
    const uint8_t salt[4] = {1, 2, 3, 4};
    EXPECT_FALSE(BcryptPbkdf(salt, 4, salt, 4, 0, out, 32));   // no rounds
    EXPECT_FALSE(BcryptPbkdf(salt, 4, salt, 0, 16, out, 32));  // no salt
    EXPECT_FALSE(BcryptPbkdf(salt, 4, salt, 4, 16, out, 0));   // nothing to derive
    LoadedKey key;
    VReportMessageParams report;
    EXPECT_FALSE(
        LoadKeyFile(TestKeyPath("ed25519-sealed").c_str(), VUnicodeString(L"nope"), key, report));
    EXPECT_NE(std::wstring(report.GetText()).find(L"pass phrase does not open"),
              std::wstring::npos);
}
