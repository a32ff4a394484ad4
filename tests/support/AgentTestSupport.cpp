#include "AgentTestSupport.h"

#include <gtest/gtest.h>

#include <cryptopp/base64.h>

#include <cstring>
#include <fstream>

std::wstring TestKeyPath(const char* name) {
    return std::wstring(AGENT_TEST_KEYS_DIR) + L"\\" + std::wstring(name, name + strlen(name));
}

LoadedKey LoadTestKey(const char* name, const wchar_t* passphrase) {
    LoadedKey key;
    VReportMessageParams report;
    EXPECT_TRUE(LoadKeyFile(TestKeyPath(name).c_str(), VUnicodeString(passphrase, Str::Sensitive),
                            key, report))
        << name << ": " << VString(report.GetTextAsString()).c_str();
    return key;
}

AgentIdentity ReadPublicKeyFile(const char* name) {
    const std::wstring path = TestKeyPath((std::string(name) + ".pub").c_str());
    std::ifstream file(std::string(path.begin(), path.end()));  // the test folder's path is ASCII
    std::string type, base64, comment, blob;
    file >> type >> base64;
    std::getline(file, comment);
    CryptoPP::StringSource(base64, true,
                           new CryptoPP::Base64Decoder(new CryptoPP::StringSink(blob)));
    return {AgentBytes(blob.begin(), blob.end()), AgentText(comment.begin() + 1, comment.end())};
}
