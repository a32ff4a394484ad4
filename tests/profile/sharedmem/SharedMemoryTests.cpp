// The cross-process lock, the memory-mapped buffer and the shared-memory cache,
// also shared with profile_probe processes. Every wait is bounded.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <vector>

#include "ChildProcess.h"
#include "ProfileProbe.h"
#include "ProgramFolder.h"
#include "VIpcLock.h"
#include "VMemoryMappedBuffer.h"
#include "VSecurityDescriptor.h"
#include "VSharedMemoryCache.h"

namespace {

constexpr DWORD ProcessWait = 120000;

VRefPtr<VIpcLock> MakeLock(const wchar_t* name) { return VRefPtr<VIpcLock>::Adopt(new VIpcLock(name)); }

VRefPtr<VMemoryMappedBuffer> MakeBuffer(const VUnicodeString& name, size_t size, const wchar_t* lock = nullptr) {
    SetLastError(0xDEAD);  // so that a creation that forgot to set it shows
    return VRefPtr<VMemoryMappedBuffer>::Adopt(new VMemoryMappedBuffer(name.c_str(), lock, size, nullptr));
}

VRefPtr<VSharedMemoryCache> OpenCache(const VUnicodeString& name, size_t size, DWORD expected = 0) {
    SetLastError(0xDEAD);
    auto cache = VRefPtr<VSharedMemoryCache>::Adopt(new VSharedMemoryCache(name, size));
    EXPECT_EQ(GetLastError(), expected) << "creating " << size << " bytes";
    return cache;
}

uint32_t ReadLocked(VSharedMemoryCache& cache, size_t offset) {
    uint32_t value = 0;
    EXPECT_TRUE(cache.Lock());
    std::memcpy(&value, static_cast<BYTE*>(cache.GetData()) + offset, sizeof value);
    cache.Unlock();
    return value;
}

std::unique_ptr<ChildProcess> Probe(const VUnicodeString& arguments) {
    auto probe = std::make_unique<ChildProcess>(GetPathBesideProgram(L"profile_probe.exe"), L"cache " + arguments);
    EXPECT_TRUE(probe->IsRunning()) << "error " << probe->StartError();
    return probe;
}

TEST(SharedMemory, OnlyTheLocksOwnerUnlocksAndANameTakenByAnotherKindOfObjectLeavesItUnusable) {
    auto lock = MakeLock(nullptr);
    ASSERT_TRUE(lock->IsValid());
    EXPECT_FALSE(lock->Unlock());
    ASSERT_TRUE(lock->Lock());
    ASSERT_TRUE(lock->Lock());  // a mutex counts its owner's nested locks
    EXPECT_TRUE(lock->Unlock());
    EXPECT_TRUE(lock->Unlock());
    EXPECT_FALSE(lock->Unlock());

    const VUnicodeString name = UniqueObjectName(L"event");
    const KernelHandle event(CreateEventW(nullptr, TRUE, FALSE, name.c_str()));
    lock = MakeLock(name.c_str());
    EXPECT_FALSE(lock->IsValid());
    EXPECT_EQ(lock->GetLastErrorParams().GetMessageCode(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
    EXPECT_FALSE(lock->Lock());
    auto buffer = MakeBuffer(UniqueObjectName(L"block"), 64, name.c_str());
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
    EXPECT_FALSE(buffer->IsMapped());
    EXPECT_EQ(buffer->Append(nullptr, 1), nullptr);
    EXPECT_FALSE(buffer->GetInterface().Lock());
}

TEST(SharedMemory, TheFillLevelStopsAtTheCapacityOfWholePages) {
    auto buffer = MakeBuffer(UniqueObjectName(L"block"), 5000);
    ASSERT_EQ(GetLastError(), 0u);
    SYSTEM_INFO system{};
    GetSystemInfo(&system);
    const size_t capacity = buffer->GetCapacity();
    EXPECT_GE(capacity, 5000u);
    EXPECT_EQ(capacity % system.dwPageSize, 0u);
    void* at = buffer->Append("head", 4);
    ASSERT_EQ(at, buffer->GetData());
    EXPECT_EQ(std::memcmp(at, "head", 4), 0);
    ASSERT_EQ(buffer->Append(nullptr, capacity - 4), static_cast<BYTE*>(buffer->GetData()) + 4);
    EXPECT_EQ(buffer->GetDataLength(), capacity);
    SetLastError(0);
    EXPECT_EQ(buffer->Append("x", 1), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    EXPECT_NE(buffer->Append(nullptr, 0), nullptr) << "nothing always fits";
    EXPECT_THROW(buffer->SetDataLength(capacity + 1), std::overflow_error);
    buffer->SetDataLength(0);
    EXPECT_EQ(buffer->Append(nullptr, capacity), buffer->GetData());

    VRefPtr<VMemoryMappedBuffer::Interface> lock(&buffer->GetInterface());
    buffer = nullptr;
    ASSERT_TRUE(lock->Lock());
    EXPECT_TRUE(lock->Unlock());
}

TEST(SharedMemory, AnExistingBlockIsSharedUpToItsSizeAndRefusedBeyond) {
    const VUnicodeString name = UniqueObjectName(L"block");
    auto small = MakeBuffer(name, 100);
    const size_t capacity = small->GetCapacity();
    auto larger = MakeBuffer(name, capacity + 1);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    EXPECT_FALSE(larger->IsMapped());
    EXPECT_EQ(larger->GetData(), nullptr);
    auto whole = MakeBuffer(name, capacity);
    EXPECT_EQ(GetLastError(), 0u);
    auto any = MakeBuffer(name, VMemoryMappedBuffer::AnySize);
    EXPECT_EQ(any->GetCapacity(), capacity);

    const VUnicodeString cacheName = UniqueObjectName(L"cache");
    auto cache = OpenCache(cacheName, 64);
    auto refused = OpenCache(cacheName, 256 * 1024, ERROR_INSUFFICIENT_BUFFER);
    EXPECT_EQ(refused->GetData(), nullptr);
    EXPECT_FALSE(refused->Lock());
    EXPECT_EQ(Probe(L"open " + cacheName + L" 262144")->Wait(ProcessWait), static_cast<long>(ERROR_INSUFFICIENT_BUFFER));
    EXPECT_EQ(cache->GetHolderCount(), 1u);
}

TEST(SharedMemory, TheCacheBlockHoldsTheHolderCountThenTheDataUnderTheUsersNames) {
    VUnicodeString user;
    ASSERT_TRUE(GetCurrentUserSidString(user));
    const VUnicodeString name = UniqueObjectName(L"cache");
    auto cache = OpenCache(name, 32);
    std::memset(cache->GetData(), 0x42, 32);
    auto block = MakeBuffer(name + user, VMemoryMappedBuffer::AnySize);
    ASSERT_TRUE(block->IsMapped());
    const auto* bytes = static_cast<const BYTE*>(block->GetData());
    EXPECT_EQ(bytes[0], 1) << "one holder";
    EXPECT_EQ(bytes[4], 0x42);
    EXPECT_EQ(bytes[4 + 31], 0x42);
    EXPECT_EQ(bytes[4 + 32], 0);
    auto lock = MakeLock((VSharedMemoryCache::LockNamePrefix + user).c_str());
    EXPECT_EQ(lock->GetLastErrorParams().GetMessageCode(), static_cast<DWORD>(ERROR_ALREADY_EXISTS));

    cache = nullptr;
    block = nullptr;
    auto again = OpenCache(name, 128);
    EXPECT_EQ(again->GetHolderCount(), 1u);
    const auto* data = static_cast<const BYTE*>(again->GetData());
    EXPECT_TRUE(std::all_of(data, data + 128, [](BYTE b) { return b == 0; }));
}

TEST(SharedMemory, ProcessesShareTheCacheWithoutClearingItAndCountAsHoldersWhileTheyHoldIt) {
    const VUnicodeString name = UniqueObjectName(L"cache");
    auto cache = OpenCache(name, 256);
    ASSERT_TRUE(cache->Lock());
    std::memset(cache->GetData(), 0xA5, 64);
    cache->Unlock();
    EXPECT_EQ(Probe(L"peek " + name + L" 256 0xA5 64")->Wait(ProcessWait), 0) << "the probe saw other bytes";
    EXPECT_EQ(ReadLocked(*cache, 64), 2u) << "the holders the probe saw";
    EXPECT_EQ(cache->GetHolderCount(), 1u) << "the probe let go as it ended";

    NamedEvent quit;
    std::vector<std::unique_ptr<ChildProcess>> holders;
    for (uint32_t expected : {2u, 3u}) {
        const NamedEvent ready;
        holders.push_back(Probe(L"hold " + name + L" 256 " + ready.Name() + L" " + quit.Name()));
        ASSERT_TRUE(ready.WaitSet(ProcessWait, holders.back().get())) << holders.back()->Wait(0);
        EXPECT_EQ(cache->GetHolderCount(), expected);
    }
    quit.Set();
    for (auto& holder : holders) EXPECT_EQ(holder->Wait(ProcessWait), 0);
    EXPECT_EQ(cache->GetHolderCount(), 1u);
}

TEST(SharedMemory, TheLockSerialisesACounterAcrossProcesses) {
    constexpr uint32_t Processes = 4, Times = 2000;
    const VUnicodeString name = UniqueObjectName(L"cache");
    auto cache = OpenCache(name, sizeof(uint32_t));  // holds the block for all of them
    NamedEvent go;
    std::vector<std::unique_ptr<ChildProcess>> probes;
    for (uint32_t i = 0; i < Processes; ++i) probes.push_back(Probe(L"count " + name + L" 4 " + go.Name() + L" 2000"));
    go.Set();
    for (auto& probe : probes) EXPECT_EQ(probe->Wait(ProcessWait), 0);
    EXPECT_EQ(ReadLocked(*cache, 0), Processes * Times);
}

}  // namespace
