// sharedmem/ owns the cross-process lock, the mapped buffer and this cache
// built on them.
//
// VSharedMemoryCache: a block of shared memory private to the user (its name
// and its lock's name carry the user's SID, its access list admits only the
// user), with a count of the cache objects in all processes that hold it.
//
// Block layout: offset 0, the holder count (unsigned 32-bit, changed only
// atomically); offset 4, the data area that the client programs define. Take
// Lock around every access to the data area. Any thread may use a cache.
#pragma once

#include <cstddef>
#include <cstdint>

#include "ISynchObject.h"
#include "VMemoryMappedBuffer.h"
#include "VString.h"
#include "VUnknown.h"

class VSharedMemoryCache final : public VUnknown<ISynchObject> {
public:
    static constexpr wchar_t LockNamePrefix[] = L"{B119E043-301D-45DC-A219-7C6A6DE14244}";

    // Opens the block name + SID string with a data area of size bytes,
    // creating it (cleared) when no process holds it, and counts itself as a
    // holder. The thread's last error tells the outcome: 0 on success, else
    // why no block is held (ERROR_INSUFFICIENT_BUFFER when the block exists
    // smaller than asked for). Allocate with new; the last Release destroys it.
    VSharedMemoryCache(const VUnicodeString& name, size_t size);

    // The data area; null when no block is held.
    void* GetData() noexcept;
    // How many cache objects, in all processes, hold the block; 0 when none is held here.
    uint32_t GetHolderCount() const noexcept;

    // The block's lock; false, doing nothing, when no block is held.
    bool Lock() override;
    bool Unlock() override;

private:
    // Leaves the holder count one less and lets the block go.
    ~VSharedMemoryCache() override;
    volatile LONG* HolderCount() const noexcept;

    VRefPtr<VMemoryMappedBuffer> buffer_;  // null when no block is held
};
