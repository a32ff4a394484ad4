// The cross-process lock, the memory-mapped buffer and the shared-memory
// cache within one process: creation outcomes, the fill level's limits, the
// clear-once rule, the refusal of a too-small block, the per-user names and
// the holder count.
#include <gtest/gtest.h>

#include <atomic>
#include <cstring>
#include <stdexcept>
#include <thread>

#include "SharedMemoryTestNames.h"
#include "VIpcLock.h"
#include "VMemoryMappedBuffer.h"
#include "VSecurityDescriptor.h"
#include "VSharedMemoryCache.h"

namespace {

VRefPtr<VIpcLock> MakeLock(const wchar_t* name) { return VRefPtr<VIpcLock>::Adopt(new VIpcLock(name)); }

VRefPtr<VMemoryMappedBuffer> MakeBuffer(const VUnicodeString& name, size_t size) {
    return VRefPtr<VMemoryMappedBuffer>::Adopt(new VMemoryMappedBuffer(name.c_str(), nullptr, size, nullptr));
}

// The cache, and the thread's last error right after its creation.
VRefPtr<VSharedMemoryCache> MakeCache(const VUnicodeString& name, size_t size, DWORD& outcome) {
    SetLastError(0xDEAD);  // so that a creation that forgot to set it shows
    auto cache = VRefPtr<VSharedMemoryCache>::Adopt(new VSharedMemoryCache(name, size));
    outcome = GetLastError();
    return cache;
}

bool AllZero(const void* data, size_t size) {
    const auto* bytes = static_cast<const BYTE*>(data);
    for (size_t i = 0; i < size; ++i)
        if (bytes[i] != 0) return false;
    return true;
}

TEST(IpcLockTest, ASecondLockOfTheSameNameOpensTheSameMutex) {
    const VUnicodeString name = UniqueObjectName(L"lock");
    auto first = MakeLock(name.c_str());
    ASSERT_TRUE(first->IsValid());
    EXPECT_EQ(first->GetLastErrorParams().GetMessageCode(), 0u);
    auto second = MakeLock(name.c_str());
    ASSERT_TRUE(second->IsValid());
    EXPECT_EQ(second->GetLastErrorParams().GetMessageCode(), static_cast<DWORD>(ERROR_ALREADY_EXISTS));

    // Owned through the first, the mutex makes a thread that uses the second wait.
    ASSERT_TRUE(first->Lock());
    std::atomic<bool> entered{false};
    std::thread other([&] {
        second->Lock();
        entered = true;
        second->Unlock();
    });
    Sleep(200);
    EXPECT_FALSE(entered.load());
    ASSERT_TRUE(first->Unlock());
    other.join();
    EXPECT_TRUE(entered.load());
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

TEST(IpcLockTest, ANameTakenByAnotherKindOfObjectFailsWithTheSystemError) {
    const VUnicodeString name = UniqueObjectName(L"event");
    const KernelHandle event(CreateEventW(nullptr, TRUE, FALSE, name.c_str()));
    ASSERT_TRUE(event);
    auto lock = MakeLock(name.c_str());
    EXPECT_FALSE(lock->IsValid());
    EXPECT_EQ(lock->GetLastErrorParams().GetMessageCode(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
    EXPECT_FALSE(lock->Lock());

    // A buffer whose lock cannot be had maps nothing and says why.
    SetLastError(0);
    auto buffer = VRefPtr<VMemoryMappedBuffer>::Adopt(
        new VMemoryMappedBuffer(UniqueObjectName(L"block").c_str(), name.c_str(), 64, nullptr));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
    EXPECT_FALSE(buffer->IsMapped());
    EXPECT_EQ(buffer->Append(nullptr, 1), nullptr);
    EXPECT_FALSE(buffer->GetInterface().Lock());
}

TEST(MemoryMappedBufferTest, ANewBlockIsWholePagesOfZeros) {
    SetLastError(0xDEAD);
    auto buffer = MakeBuffer(UniqueObjectName(L"block"), 5000);
    ASSERT_EQ(GetLastError(), 0u);
    ASSERT_TRUE(buffer->IsMapped());
    SYSTEM_INFO system{};
    GetSystemInfo(&system);
    EXPECT_GE(buffer->GetCapacity(), 5000u);
    EXPECT_EQ(buffer->GetCapacity() % system.dwPageSize, 0u);
    EXPECT_EQ(buffer->GetDataLength(), 0u);
    EXPECT_TRUE(AllZero(buffer->GetData(), buffer->GetCapacity()));
}

TEST(MemoryMappedBufferTest, AppendFillsExactlyTheCapacity) {
    auto buffer = MakeBuffer(UniqueObjectName(L"block"), 100);
    ASSERT_TRUE(buffer->IsMapped());
    const size_t capacity = buffer->GetCapacity();
    const char head[] = "head";
    void* at = buffer->Append(head, 4);
    ASSERT_EQ(at, buffer->GetData());
    EXPECT_EQ(std::memcmp(at, head, 4), 0);
    // Without bytes, Append only reserves the room.
    BYTE* rest = static_cast<BYTE*>(buffer->Append(nullptr, capacity - 4));
    ASSERT_EQ(rest, static_cast<BYTE*>(buffer->GetData()) + 4);
    EXPECT_EQ(buffer->GetDataLength(), capacity);

    SetLastError(0);
    EXPECT_EQ(buffer->Append(head, 1), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    EXPECT_EQ(buffer->GetDataLength(), capacity);
    EXPECT_NE(buffer->Append(nullptr, 0), nullptr);  // nothing always fits
}

TEST(MemoryMappedBufferTest, SetDataLengthStopsAtTheCapacity) {
    auto buffer = MakeBuffer(UniqueObjectName(L"block"), 100);
    const size_t capacity = buffer->GetCapacity();
    buffer->SetDataLength(capacity);
    EXPECT_EQ(buffer->GetDataLength(), capacity);
    try {
        buffer->SetDataLength(capacity + 1);
        ADD_FAILURE() << "no overflow_error";
    } catch (const std::overflow_error& error) {
        EXPECT_STREQ(error.what(), "SetDataLength");
    }
    EXPECT_EQ(buffer->GetDataLength(), capacity);
    buffer->SetDataLength(0);
    EXPECT_EQ(buffer->Append(nullptr, capacity), buffer->GetData());
}

TEST(MemoryMappedBufferTest, OnlyTheCreatorClearsASharedBlock) {
    const VUnicodeString name = UniqueObjectName(L"block");
    auto first = MakeBuffer(name, 64);
    std::memset(first->GetData(), 0x5A, 64);
    SetLastError(0xDEAD);
    auto second = MakeBuffer(name, 64);
    ASSERT_EQ(GetLastError(), 0u);
    ASSERT_TRUE(second->IsMapped());
    EXPECT_NE(second->GetData(), first->GetData());  // a view of its own
    EXPECT_EQ(static_cast<BYTE*>(second->GetData())[63], 0x5A);
    static_cast<BYTE*>(second->GetData())[0] = 1;
    EXPECT_EQ(static_cast<BYTE*>(first->GetData())[0], 1);
    // The fill level is each object's own.
    first->SetDataLength(10);
    EXPECT_EQ(second->GetDataLength(), 0u);
}

TEST(MemoryMappedBufferTest, AnExistingBlockTooSmallIsRefused) {
    const VUnicodeString name = UniqueObjectName(L"block");
    auto small = MakeBuffer(name, 100);
    const size_t capacity = small->GetCapacity();

    SetLastError(0);
    auto larger = MakeBuffer(name, capacity + 1);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    EXPECT_FALSE(larger->IsMapped());
    EXPECT_EQ(larger->GetData(), nullptr);
    EXPECT_EQ(larger->GetCapacity(), 0u);

    // Up to the region's size, and for "any size", the block is shared.
    SetLastError(0xDEAD);
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
    // The buffer lives on through its interface, and its lock works.
    ASSERT_TRUE(lock->Lock());
    EXPECT_TRUE(lock->Unlock());
    EXPECT_FALSE(lock->Unlock());
    IUnknown* other = lock.Get();
    EXPECT_EQ(other->QueryInterface(IID_IUnknown, reinterpret_cast<void**>(&other)), E_NOINTERFACE);
    EXPECT_EQ(other, nullptr);
}

TEST(SharedMemoryCacheTest, TheBlockAndLockNamesCarryTheUsersSid) {
    VUnicodeString user;
    ASSERT_TRUE(GetCurrentUserSidString(user));
    const VUnicodeString name = UniqueObjectName(L"cache");
    DWORD outcome = 0;
    auto cache = MakeCache(name, 32, outcome);
    ASSERT_EQ(outcome, 0u);
    std::memset(cache->GetData(), 0x42, 32);

    // The block, found under its full name: the holder count, then the data.
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

TEST(SharedMemoryCacheTest, ACacheLargerThanTheExistingBlockHoldsNothing) {
    const VUnicodeString name = UniqueObjectName(L"cache");
    DWORD outcome = 0;
    auto first = MakeCache(name, 64, outcome);
    ASSERT_EQ(outcome, 0u);
    auto larger = MakeCache(name, 64 * 1024, outcome);
    EXPECT_EQ(outcome, static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    EXPECT_EQ(larger->GetData(), nullptr);
    EXPECT_EQ(larger->GetHolderCount(), 0u);
    EXPECT_FALSE(larger->Lock());
    EXPECT_FALSE(larger->Unlock());
    EXPECT_EQ(first->GetHolderCount(), 1u);
}

TEST(SharedMemoryCacheTest, ABlockNoLongerHeldStartsAgainFromZeros) {
    const VUnicodeString name = UniqueObjectName(L"cache");
    DWORD outcome = 0;
    {
        auto cache = MakeCache(name, 64, outcome);
        std::memset(cache->GetData(), 0xEE, 64);
    }
    auto again = MakeCache(name, 128, outcome);  // larger is fine: the old block is gone
    ASSERT_EQ(outcome, 0u);
    EXPECT_EQ(again->GetHolderCount(), 1u);
    EXPECT_TRUE(AllZero(again->GetData(), 128));
}

}  // namespace
