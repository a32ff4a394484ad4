// The key store in shared memory: keys added, updated, listed, removed and
// seen by a second process; private keys never plain in the block; a full
// block refuses with a message; a damaged block is reset; lifetimes end; a
// locked store hides and keeps its keys.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <string>

#include "AgentKeyStore.h"
#include "AgentMessages.h"
#include "AgentTestSupport.h"
#include "ProgramFolder.h"
#include "VSharedMemoryCache.h"
#include "VUnknown.h"

namespace {

std::vector<AgentText> Comments(AgentKeyStore& store) {
    std::vector<AgentText> comments;
    for (const AgentKeyInfo& key : store.List()) comments.push_back(key.comment);
    return comments;
}

bool BlockHolds(AgentKeyStore& store, const AgentBytes& secret) {
    const uint8_t* data = store.GetDataForTests();
    return std::search(data, data + store.GetSize(), secret.begin(), secret.end()) !=
           data + store.GetSize();
}

// What a second process of the session reads from the store.
std::string ListFromAnotherProcess(const std::wstring& store) {
    // cmd.exe wants the whole line quoted again when the program's path is.
    const std::wstring command = L"\"\"" +
                                 std::wstring(GetPathBesideProgram(L"agent_tool.exe").c_str()) +
                                 L"\" storelist \"" + store + L"\"\"";
    FILE* output = _wpopen(command.c_str(), L"r");
    std::string text;
    char line[512];
    while (output && std::fgets(line, sizeof line, output)) text += line;
    if (output) _pclose(output);
    return text;
}

}  // namespace

TEST(AgentKeyStoreTest, KeepsKeysForEveryProcessAndNeverPlain) {
    const std::wstring name = UniqueName(L"{agent-store-test}");
    AgentKeyStore store(name.c_str());
    // No shared memory until the store is first used (Traywell's agent with
    // "Keep Shared Memory Agent Open" off): a probe is the block's one holder.
    EXPECT_EQ(VRefPtr<VSharedMemoryCache>::Adopt(new VSharedMemoryCache(name.c_str(), 4096))
                  ->GetHolderCount(),
              1u);
    ASSERT_TRUE(store.IsOpen());
    VReportMessageParams report;
    const LoadedKey ed25519 = LoadTestKey("ed25519"), rsa = LoadTestKey("rsa"),
                    p384 = LoadTestKey("ecdsa384");
    for (const LoadedKey* key : {&ed25519, &rsa, &p384})
        ASSERT_TRUE(store.Add(key->key, key->comment, 0, false, report));
    // The same key again keeps its place in the count, with the new settings.
    ASSERT_TRUE(store.Add(ed25519.key, "renamed", 0, true, report));
    EXPECT_EQ(Comments(store), (std::vector<AgentText>{"test rsa", "test p384", "renamed"}));
    EXPECT_TRUE(store.List().back().confirm);

    // The private parts, as the key file holds them, appear nowhere in the
    // block: the secret ends the private form (Ed25519's is followed by its
    // 32-byte public key).
    for (const auto& [key, end] : {std::pair{&ed25519, 32}, {&rsa, 0}, {&p384, 0}}) {
        AgentBytes secret;
        SshWriter writer(secret);
        key->key.Write(writer);
        EXPECT_FALSE(BlockHolds(store, AgentBytes(secret.end() - end - 24, secret.end() - end)))
            << key->comment.c_str();
        EXPECT_TRUE(BlockHolds(store, key->key.GetPublicBlob()));
    }
    AgentKey opened;
    AgentKeyInfo info;
    ASSERT_TRUE(store.GetKey(rsa.key.GetPublicBlob(), opened, info));
    AgentBytes signature;
    EXPECT_TRUE(opened.Sign(reinterpret_cast<const uint8_t*>("data"), 4, SignRsaSha256, signature));

    const std::string seen = ListFromAnotherProcess(name);
    for (const LoadedKey* key : {&ed25519, &rsa, &p384})
        EXPECT_NE(seen.find(KeyFingerprint(key->key.GetPublicBlob()).c_str()), std::string::npos)
            << seen;

    // Removed by another holder of the block: the key opened here before goes too.
    EXPECT_TRUE(AgentKeyStore(name.c_str()).Remove(rsa.key.GetPublicBlob()));
    EXPECT_FALSE(store.Remove(rsa.key.GetPublicBlob()));
    EXPECT_FALSE(store.GetKey(rsa.key.GetPublicBlob(), opened, info));
    EXPECT_TRUE(store.RemoveAll());
    EXPECT_TRUE(store.List().empty());
    EXPECT_FALSE(BlockHolds(store, ed25519.key.GetPublicBlob())) << "removed records are wiped";
}

TEST(AgentKeyStoreTest, AFullBlockRefusesWithAMessageAndKeepsItsKeys) {
    const std::wstring name = UniqueName(L"{agent-store-full}");
    AgentKeyStore store(name.c_str(), AgentKeyStore::HeaderBytes + 700);
    const LoadedKey keys[] = {LoadTestKey("ed25519"), LoadTestKey("ecdsa256"),
                              LoadTestKey("ecdsa521"), LoadTestKey("rsa")};
    VReportMessageParams report;
    size_t added = 0;
    while (added < std::size(keys) &&
           store.Add(keys[added].key, keys[added].comment, 0, false, report))
        ++added;
    ASSERT_GT(added, 0u);
    ASSERT_LT(added, std::size(keys));
    EXPECT_EQ(report.GetMessageCode(), static_cast<DWORD>(AGENT_STORE_FULL));
    EXPECT_NE(std::wstring(report.GetText()).find(L"is full"), std::wstring::npos)
        << report.GetText();
    EXPECT_EQ(store.List().size(), added);
}

TEST(AgentKeyStoreTest, ADamagedBlockIsResetAndUsableAgain) {
    const struct {
        size_t offset;
        const char* what;
    } damages[] = {
        {0, "magic"},
        {4, "version"},
        {8, "checksum"},
        {16, "count"},
        {21, "length of the records"},
        {AgentKeyStore::HeaderBytes + 1, "a record's size"},
        {AgentKeyStore::HeaderBytes + 60, "a public key"},
    };
    const LoadedKey key = LoadTestKey("ecdsa256");
    for (const auto& damage : damages) {
        SCOPED_TRACE(damage.what);
        AgentKeyStore store(UniqueName(L"{agent-store-damage}").c_str());
        VReportMessageParams report;
        ASSERT_TRUE(store.Add(key.key, key.comment, 0, false, report));
        store.GetDataForTests()[damage.offset] ^= 0x5A;
        EXPECT_TRUE(store.List().empty());
        EXPECT_TRUE(store.Add(key.key, key.comment, 0, false, report));
        EXPECT_EQ(store.List().size(), 1u);
    }
}

TEST(AgentKeyStoreTest, LifetimesEndAndALockedStoreHidesItsKeys) {
    AgentKeyStore store(UniqueName(L"{agent-store-time}").c_str());
    uint64_t now = 1'700'000'000;
    store.SetClock([&now] { return now; });
    const LoadedKey brief = LoadTestKey("ed25519"), lasting = LoadTestKey("ecdsa384");
    VReportMessageParams report;
    ASSERT_TRUE(store.Add(brief.key, brief.comment, 60, false, report));
    ASSERT_TRUE(store.Add(lasting.key, lasting.comment, 0, false, report));
    EXPECT_EQ(store.List().front().expires, now + 60);
    now += 59;
    EXPECT_EQ(store.List().size(), 2u);
    AgentKey opened;
    AgentKeyInfo info;
    EXPECT_TRUE(store.GetKey(brief.key.GetPublicBlob(), opened, info));
    now += 1;
    EXPECT_FALSE(store.GetKey(brief.key.GetPublicBlob(), opened, info))
        << "opened before, ended since";
    EXPECT_EQ(Comments(store), std::vector<AgentText>{"test p384"});

    const AgentBytes passphrase = Utf8Bytes(VUnicodeString(L"lock it")),
                     wrong = Utf8Bytes(VUnicodeString(L"lock"));
    ASSERT_TRUE(store.Lock(passphrase));
    EXPECT_FALSE(store.Lock(passphrase));
    EXPECT_TRUE(store.List().empty());
    EXPECT_FALSE(store.Add(brief.key, brief.comment, 0, false, report));
    EXPECT_EQ(report.GetMessageCode(), static_cast<DWORD>(AGENT_STORE_LOCKED));
    EXPECT_FALSE(store.RemoveAll());
    EXPECT_FALSE(store.Unlock(wrong));
    EXPECT_TRUE(store.Unlock(passphrase));
    EXPECT_EQ(Comments(store), std::vector<AgentText>{"test p384"});
}
