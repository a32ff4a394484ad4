#include "VSharedMemoryCache.h"

#include "VSecurityDescriptor.h"

namespace {

constexpr size_t HolderCountSize = sizeof(uint32_t);

}  // namespace

VSharedMemoryCache::VSharedMemoryCache(const VUnicodeString& name, size_t size) {
    // The names carry no "Local\" or "Global\" prefix: they live in the
    // caller's session, and the SID keeps them apart from other users'.
    VSecurityDescriptor descriptor;
    VUnicodeString user;
    if (!descriptor.AssignCurrentUserAccess() || !GetCurrentUserSidString(user))
        return;  // last error says why
    if (size > VMemoryMappedBuffer::AnySize - HolderCountSize - 1) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return;
    }
    SECURITY_ATTRIBUTES attributes = descriptor.GetSecurityAttributes();
    const VUnicodeString blockName = name + user;
    const VUnicodeString lockName = LockNamePrefix + user;

    auto buffer = VRefPtr<VMemoryMappedBuffer>::Adopt(new VMemoryMappedBuffer(
        blockName.c_str(), lockName.c_str(), size + HolderCountSize, &attributes));
    if (GetLastError() != ERROR_SUCCESS) return;  // releasing the buffer keeps the error
    buffer_ = buffer;
    InterlockedIncrement(HolderCount());
}

VSharedMemoryCache::~VSharedMemoryCache() {
    if (buffer_) InterlockedDecrement(HolderCount());
}

volatile LONG* VSharedMemoryCache::HolderCount() const noexcept {
    return static_cast<volatile LONG*>(buffer_->GetData());
}

void* VSharedMemoryCache::GetData() noexcept {
    return buffer_ ? static_cast<BYTE*>(buffer_->GetData()) + HolderCountSize : nullptr;
}

uint32_t VSharedMemoryCache::GetHolderCount() const noexcept {
    // An atomic read: other processes change the count at any time.
    return buffer_ ? static_cast<uint32_t>(InterlockedCompareExchange(HolderCount(), 0, 0)) : 0;
}

bool VSharedMemoryCache::Lock() { return buffer_ && buffer_->GetInterface().Lock(); }

bool VSharedMemoryCache::Unlock() { return buffer_ && buffer_->GetInterface().Unlock(); }
