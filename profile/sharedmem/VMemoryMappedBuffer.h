// VMemoryMappedBuffer: a block of memory backed by the paging file, named so
// that processes can share it, created under a lock that it keeps and offers
// through its inner Interface object. The fill level is this object's own.
#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>

#include "IBuffer.h"
#include "ISynchObject.h"
#include "VIpcLock.h"
#include "VUnknown.h"
#include "Win32Handle.h"

class VMemoryMappedBuffer final : public VUnknown<IBuffer> {
public:
    // A size of all ones: whatever size an existing block has.
    static constexpr size_t AnySize = SIZE_MAX;
    static constexpr wchar_t DefaultBlockName[] = L"5FA01C43-3B48-476A-ACC7-D86059F335B0";

    // The buffer's lock as an ISynchObject. It shares the buffer's reference
    // count: holding it keeps the buffer alive.
    class Interface final : public ISynchObject {
    public:
        explicit Interface(VMemoryMappedBuffer& buffer) : buffer_(buffer) {}
        HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** object) override;
        ULONG STDMETHODCALLTYPE AddRef() override { return buffer_.AddRef(); }
        ULONG STDMETHODCALLTYPE Release() override { return buffer_.Release(); }
        bool Lock() override { return buffer_.lock_->Lock(); }
        bool Unlock() override { return buffer_.lock_->Unlock(); }

    private:
        VMemoryMappedBuffer& buffer_;
    };

    // Under the lock lockName (null: unnamed), created with security, opens
    // the block blockName (null: unnamed) of size bytes, creating it when it
    // does not exist; a new block is cleared to zero, so exactly one creator
    // clears it. An existing block smaller than size is refused with
    // ERROR_INSUFFICIENT_BUFFER (122). The thread's last error tells the
    // outcome: 0 on success, else why there is no block (IsMapped() false).
    // Allocate with new; the last Release destroys it.
    VMemoryMappedBuffer(const wchar_t* blockName, const wchar_t* lockName, size_t size,
                        SECURITY_ATTRIBUTES* security);
    // The block DefaultBlockName with an unnamed lock.
    explicit VMemoryMappedBuffer(size_t size);

    bool IsMapped() const noexcept { return view_.IsValid(); }
    Interface& GetInterface() noexcept { return interface_; }

    void* GetData() override { return view_.Get(); }
    // The size of the mapped region: whole pages, at least the size asked for.
    size_t GetCapacity() const override { return capacity_; }
    size_t GetDataLength() const override { return dataLength_; }
    void SetDataLength(size_t length) override;
    void* Append(const void* bytes, size_t count) override;

private:
    // Unmaps the view, releases the lock, closes the mapping; keeps the last error.
    ~VMemoryMappedBuffer() override;
    // Maps the block; the thread's last error is its outcome. Runs under the lock.
    void Map(const wchar_t* blockName, size_t size, SECURITY_ATTRIBUTES* security);

    VRefPtr<VIpcLock> lock_;
    KernelHandle mapping_;
    MappedView view_;
    size_t capacity_ = 0;
    size_t dataLength_ = 0;
    Interface interface_{*this};
};
