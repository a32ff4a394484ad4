// The cross-process lock, the memory-mapped buffer and the shared-memory
// cache within one process: the lock's ownership, the fill level's limits,
// the refusal of a too-small block, the block's layout and names, and a block
// that starts afresh once nobody holds it. Sharing across processes is in
// SharedMemoryProcessTests.cpp.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <stdexcept>

#include "SharedMemoryTestNames.h"
#include "VIpcLock.h"
#include "VMemoryMappedBuffer.h"
#include "VSecurityDescriptor.h"

namespace {

VRefPtr<VIpcLock> MakeLock(const wchar_t* name) { return VRefPtr<VIpcLock>::Adopt(new VIpcLock(name)); }

VRefPtr<VMemoryMappedBuffer> MakeBuffer(const VUnicodeString& name, size_t size, const wchar_t* lock = nullptr) {
    SetLastError(0xDEAD);
    return VRefPtr<VMemoryMappedBuffer>::Adopt(new VMemoryMappedBuffer(name.c_str(), lock, size, nullptr));
}

bool AllZero(const void* data, size_t size) {
    const auto* bytes = static_cast<const BYTE*>(data);
    return std::all_of(bytes, bytes + size, [](BYTE b) { return b == 0; });
}

TEST(IpcLockTest, OnlyTheOwnerUnlocks) {
    auto lock = MakeLock(nullptr);
    ASSERT_TRUE(lock->IsValid());
    EXPECT_FALSE(lock->Unlock());
    ASSERT_TRUE(lock->Lock());
    ASSERT_TRUE(lock->Lock());  // a mutex counts its owner's nested locks
    EXPECT_TRUE(lock->Unlock());
    EXPECT_TRUE(lock->Unlock());
    EXPECT_FALSE(lock->Unlock());
}

TEST(IpcLockTest, ANameTakenByAnotherKindOfObjectLeavesLockAndBufferUnusable) {
    const VUnicodeString name = UniqueObjectName(L"event");
    const KernelHandle event(CreateEventW(nullptr, TRUE, FALSE, name.c_str()));
    ASSERT_TRUE(event);
    auto lock = MakeLock(name.c_str());
    EXPECT_FALSE(lock->IsValid());
    EXPECT_EQ(lock->GetLastErrorParams().GetMessageCode(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
    EXPECT_FALSE(lock->Lock());

    auto buffer = MakeBuffer(UniqueObjectName(L"block"), 64, name.c_str());
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
    EXPECT_FALSE(buffer->IsMapped());
    EXPECT_EQ(buffer->Append(nullptr, 1), nullptr);
    EXPECT_FALSE(buffer->GetInterface().Lock());
}

TEST(MemoryMappedBufferTest, TheFillLevelStopsAtTheCapacityOfWholePages) {
    auto buffer = MakeBuffer(UniqueObjectName(L"block"), 5000);
    ASSERT_EQ(GetLastError(), 0u);
    ASSERT_TRUE(buffer->IsMapped());
    SYSTEM_INFO system{};
    GetSystemInfo(&system);
    const size_t capacity = buffer->GetCapacity();
    EXPECT_GE(capacity, 5000u);
    EXPECT_EQ(capacity % system.dwPageSize, 0u);
    EXPECT_EQ(buffer->GetDataLength(), 0u);

    const char head[] = "head";
    void* at = buffer->Append(head, 4);
    ASSERT_EQ(at, buffer->GetData());
    EXPECT_EQ(std::memcmp(at, head, 4), 0);
    // Without bytes, Append only reserves the room.
    ASSERT_EQ(buffer->Append(nullptr, capacity - 4), static_cast<BYTE*>(buffer->GetData()) + 4);
    EXPECT_EQ(buffer->GetDataLength(), capacity);
    SetLastError(0);
    EXPECT_EQ(buffer->Append(head, 1), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    EXPECT_NE(buffer->Append(nullptr, 0), nullptr);  // nothing always fits

    EXPECT_THROW(buffer->SetDataLength(capacity + 1), std::overflow_error);
    EXPECT_EQ(buffer->GetDataLength(), capacity);
    buffer->SetDataLength(0);
    EXPECT_EQ(buffer->Append(nullptr, capacity), buffer->GetData());
}

TEST(MemoryMappedBufferTest, AnExistingBlockIsSharedUpToItsSizeAndRefusedBeyond) {
    const VUnicodeString name = UniqueObjectName(L"block");
    auto small = MakeBuffer(name, 100);
    const size_t capacity = small->GetCapacity();

    auto larger = MakeBuffer(name, capacity + 1);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    EXPECT_FALSE(larger->IsMapped());
    EXPECT_EQ(larger->GetData(), nullptr);
    EXPECT_EQ(larger->GetCapacity(), 0u);

    auto whole = MakeBuffer(name, capacity);
    EXPECT_EQ(GetLastError(), 0u);
    EXPECT_TRUE(whole->IsMapped());
    auto any = MakeBuffer(name, VMemoryMappedBuffer::AnySize);
    EXPECT_EQ(GetLastError(), 0u);
    EXPECT_EQ(any->GetCapacity(), capacity);
}

TEST(MemoryMappedBufferTest, TheInterfaceSharesTheBuffersLifeAndLock) {
    VRefPtr<VMemoryMappedBuffer::Interface> lock;
    {
        auto buffer = VRefPtr<VMemoryMappedBuffer>::Adopt(new VMemoryMappedBuffer(4096));
        ASSERT_TRUE(buffer->IsMapped());
        lock = VRefPtr<VMemoryMappedBuffer::Interface>(&buffer->GetInterface());
    }
    ASSERT_TRUE(lock->Lock());
    EXPECT_TRUE(lock->Unlock());
    EXPECT_FALSE(lock->Unlock());
}

TEST(SharedMemoryCacheTest, TheBlockHoldsTheHolderCountThenTheDataUnderTheUsersNames) {
    VUnicodeString user;
    ASSERT_TRUE(GetCurrentUserSidString(user));
    const VUnicodeString name = UniqueObjectName(L"cache");
    DWORD outcome = 0;
    auto cache = OpenCache(name, 32, outcome);
    ASSERT_EQ(outcome, 0u);
    std::memset(cache->GetData(), 0x42, 32);

    auto block = MakeBuffer(name + user, VMemoryMappedBuffer::AnySize);
    ASSERT_TRUE(block->IsMapped());
    const auto* bytes = static_cast<const BYTE*>(block->GetData());
    uint32_t holders = 0;
    std::memcpy(&holders, bytes, sizeof holders);
    EXPECT_EQ(holders, 1u);
    EXPECT_EQ(bytes[4], 0x42);
    EXPECT_EQ(bytes[4 + 31], 0x42);
    EXPECT_EQ(bytes[4 + 32], 0);
    auto lock = MakeLock((VSharedMemoryCache::LockNamePrefix + user).c_str());
    EXPECT_EQ(lock->GetLastErrorParams().GetMessageCode(), static_cast<DWORD>(ERROR_ALREADY_EXISTS));
}

TEST(SharedMemoryCacheTest, ABlockNoLongerHeldStartsAgainFromZeros) {
    const VUnicodeString name = UniqueObjectName(L"cache");
    DWORD outcome = 0;
    {
        auto cache = OpenCache(name, 64, outcome);
        std::memset(cache->GetData(), 0xEE, 64);
    }
    auto again = OpenCache(name, 128, outcome);  // larger is fine: the old block is gone
    ASSERT_EQ(outcome, 0u);
    EXPECT_EQ(again->GetHolderCount(), 1u);
    EXPECT_TRUE(AllZero(again->GetData(), 128));
}

}  // namespace
