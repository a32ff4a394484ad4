// Key files that ssh-keygen wrote, read back to their .pub keys; bad ones refused.

#include <gtest/gtest.h>

#include <algorithm>

#include "AgentTestSupport.h"
#include "BcryptPbkdf.h"

// Reading the sealed file is bcrypt-pbkdf's known-answer test: a wrong key fails its checks. Bits,
// type and fingerprint of fresh files of every kind, the OpenSSH interop test compares.
TEST(KeyFileTest, ReadsWhatSshKeygenWroteAndRefusesTheRest) {
    using enum KeyFileError;
    const struct {
        const char* file;
        const wchar_t* passphrase;
        KeyFileError error;
    } cases[] = {
        // clang-format off
        {"ed25519", L"", None}, {"ecdsa256", L"", None}, {"ecdsa384", L"", None},
        {"ecdsa521", L"", None}, {"rsa", L"", None}, {"ed25519-sealed", L"open sesame", None},
        {"ed25519-sealed", L"", NeedsPassphrase}, {"ed25519-sealed", L"open sesame!", WrongPassphrase},
        {"rsa1024", L"", TooSmall}, {"ed25519.pub", L"", NotAKeyFile},
        // clang-format on
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
        if (test.error != None) {
            EXPECT_TRUE(key.key.GetPublicBlob().size() <= 4) << "a refused file leaves no key";
            continue;
        }
        const AgentIdentity expected = ReadPublicKeyFile(test.file);
        EXPECT_EQ(key.key.GetPublicBlob(), expected.publicBlob);
        EXPECT_EQ(key.comment, expected.comment);
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
        EXPECT_NE(ParseKeyFile(damaged, {}, key, what), None) << "damage at " << at;
    }
    uint8_t out[32];
    const uint8_t salt[4] = {1, 2, 3, 4};
    EXPECT_FALSE(BcryptPbkdf(salt, 4, salt, 4, 0, out, 32));   // no rounds
    EXPECT_FALSE(BcryptPbkdf(salt, 4, salt, 0, 16, out, 32));  // no salt
    EXPECT_FALSE(BcryptPbkdf(salt, 4, salt, 4, 16, out, 0));   // nothing to derive
}
