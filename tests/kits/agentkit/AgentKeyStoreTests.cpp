// The key store in shared memory: keys never plain; a full or damaged block; lifetimes.

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "AgentKeyStore.h"
#include "AgentMessages.h"
#include "AgentTestSupport.h"
#include "ChildProcess.h"
#include "VSharedMemoryCache.h"
#include "VUnknown.h"

namespace {

using Comments = std::vector<AgentText>;

Comments CommentsOf(AgentKeyStore& store) {
    Comments comments;
    for (const AgentKeyInfo& key : store.List()) comments.push_back(key.comment);
    return comments;
}

bool BlockHolds(AgentKeyStore& store, const AgentBytes& secret) {
    const uint8_t* data = store.GetDataForTests();
    const uint8_t* end = data + store.GetSize();
    return std::search(data, end, secret.begin(), secret.end()) != end;
}

}  // namespace

TEST(AgentKeyStoreTest, KeepsKeysForEveryProcessAndNeverPlain) {
    const VUnicodeString name = UniqueObjectName(L"agent-store");
    AgentKeyStore store(name.c_str());
    // No shared memory until the store is first used: a probe is the block's one holder.
    EXPECT_EQ(VRefPtr<VSharedMemoryCache>::Adopt(new VSharedMemoryCache(name.c_str(), 4096))
                  ->GetHolderCount(),
              1u);
    ASSERT_TRUE(store.IsOpen());
    VReportMessageParams report;
    const LoadedKey ed25519 = LoadTestKey("ed25519"), rsa = LoadTestKey("rsa"),
                    p384 = LoadTestKey("ecdsa384");
    for (const LoadedKey* key : {&ed25519, &rsa, &p384})
        ASSERT_TRUE(store.Add(key->key, key->comment, 0, false, report));
    ASSERT_TRUE(store.Add(ed25519.key, "renamed", 0, true, report));
    EXPECT_EQ(CommentsOf(store), (Comments{"test rsa", "test p384", "renamed"}));
    EXPECT_TRUE(store.List().back().confirm);

    // The secret ends the private form (Ed25519's before its 32-byte public key); never stored.
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

    // Removed through another holder of the block: the key opened here before goes too.
    EXPECT_TRUE(AgentKeyStore(name.c_str()).Remove(rsa.key.GetPublicBlob()));
    EXPECT_FALSE(store.Remove(rsa.key.GetPublicBlob()));
    EXPECT_FALSE(store.GetKey(rsa.key.GetPublicBlob(), opened, info));
    EXPECT_TRUE(store.RemoveAll());
    EXPECT_TRUE(store.List().empty());
    EXPECT_FALSE(BlockHolds(store, ed25519.key.GetPublicBlob())) << "removed records are wiped";
}

TEST(AgentKeyStoreTest, AFullBlockRefusesWithAMessageAndADamagedOneIsReset) {
    AgentKeyStore full(UniqueObjectName(L"agent-store").c_str(), AgentKeyStore::HeaderBytes + 700);
    VReportMessageParams report;
    size_t added = 0;
    for (const char* name : {"ed25519", "ecdsa256", "ecdsa521", "rsa"}) {
        const LoadedKey key = LoadTestKey(name);
        if (!full.Add(key.key, key.comment, 0, false, report)) break;
        ++added;
    }
    ASSERT_TRUE(added > 0 && added < 4) << added;
    EXPECT_EQ(report.GetMessageCode(), static_cast<DWORD>(AGENT_STORE_FULL));
    EXPECT_NE(std::wstring(report.GetText()).find(L"is full"), std::wstring::npos);
    EXPECT_EQ(full.List().size(), added);

    // The magic, version, checksum, count, records' length, a record's size, a public key.
    const LoadedKey key = LoadTestKey("ecdsa256");
    for (size_t offset : {0, 4, 8, 16, 21, 513, 572}) {
        AgentKeyStore store(UniqueObjectName(L"agent-store").c_str());
        ASSERT_TRUE(store.Add(key.key, key.comment, 0, false, report));
        store.GetDataForTests()[offset] ^= 0x5A;
        EXPECT_TRUE(store.List().empty()) << offset;
        EXPECT_TRUE(store.Add(key.key, key.comment, 0, false, report));
        EXPECT_EQ(store.List().size(), 1u) << offset;
    }
}

TEST(AgentKeyStoreTest, LifetimesEndAndALockedStoreHidesItsKeys) {
    AgentKeyStore store(UniqueObjectName(L"agent-store").c_str());
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
    EXPECT_EQ(CommentsOf(store), Comments{"test p384"});

    const AgentBytes passphrase = Utf8Bytes(VUnicodeString(L"lock it"));
    ASSERT_TRUE(store.Lock(passphrase));
    EXPECT_FALSE(store.Lock(passphrase));
    EXPECT_TRUE(store.List().empty());
    EXPECT_FALSE(store.Add(brief.key, brief.comment, 0, false, report));
    EXPECT_EQ(report.GetMessageCode(), static_cast<DWORD>(AGENT_STORE_LOCKED));
    EXPECT_FALSE(store.RemoveAll());
    EXPECT_FALSE(store.Unlock(Utf8Bytes(VUnicodeString(L"lock"))));
    EXPECT_TRUE(store.Unlock(passphrase));
    EXPECT_EQ(CommentsOf(store), Comments{"test p384"});
}
