#include "VMemoryMappedBuffer.h"

#include <cstring>
#include <stdexcept>

VMemoryMappedBuffer::VMemoryMappedBuffer(const wchar_t* blockName, const wchar_t* lockName,
                                         size_t size, SECURITY_ATTRIBUTES* security)
    : lock_(VRefPtr<VIpcLock>::Adopt(new VIpcLock(lockName, security))) {
    if (!lock_->IsValid()) {
        SetLastError(lock_->GetLastErrorParams().GetMessageCode());
        return;
    }
    lock_->Lock();
    Map(blockName, size, security);
    const DWORD outcome = GetLastError();
    lock_->Unlock();
    SetLastError(outcome);
}

VMemoryMappedBuffer::VMemoryMappedBuffer(size_t size)
    : VMemoryMappedBuffer(DefaultBlockName, nullptr, size, nullptr) {}

VMemoryMappedBuffer::~VMemoryMappedBuffer() {
    const DWORD lastError = GetLastError();
    view_.Reset();
    lock_ = VRefPtr<VIpcLock>();
    mapping_.Reset();
    SetLastError(lastError);
}

void VMemoryMappedBuffer::Map(const wchar_t* blockName, size_t size,
                              SECURITY_ATTRIBUTES* security) {
    // The handle is never inherited, whatever the caller's attributes say.
    SECURITY_ATTRIBUTES attributes{sizeof attributes, nullptr, FALSE};
    if (security) attributes.lpSecurityDescriptor = security->lpSecurityDescriptor;
    const uint64_t size64 = size;
    mapping_.Reset(CreateFileMappingW(INVALID_HANDLE_VALUE, &attributes, PAGE_READWRITE,
                                      static_cast<DWORD>(size64 >> 32), static_cast<DWORD>(size64),
                                      blockName));
    const DWORD created = GetLastError();
    if (!mapping_) return;
    const bool existed = created == ERROR_ALREADY_EXISTS;

    view_.Reset(MapViewOfFile(mapping_.Get(), FILE_MAP_ALL_ACCESS, 0, 0, 0));
    if (!view_) {
        mapping_.Reset();  // keeps the mapping's error as the last error
        return;
    }
    MEMORY_BASIC_INFORMATION region{};
    if (VirtualQuery(view_.Get(), &region, sizeof region) == 0) {
        view_.Reset();
        mapping_.Reset();
        return;
    }
    if (size != AnySize && region.RegionSize < size) {
        // Another process made the block, smaller than this one needs.
        view_.Reset();
        mapping_.Reset();
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return;
    }
    if (!existed) std::memset(view_.Get(), 0, region.RegionSize);
    capacity_ = region.RegionSize;
    SetLastError(ERROR_SUCCESS);
}

void VMemoryMappedBuffer::SetDataLength(size_t length) {
    if (length > capacity_) throw std::overflow_error("SetDataLength");
    dataLength_ = length;
}

void* VMemoryMappedBuffer::Append(const void* bytes, size_t count) {
    if (!mapping_ || !view_) return nullptr;
    if (count > capacity_ - dataLength_) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return nullptr;
    }
    void* const end = static_cast<BYTE*>(view_.Get()) + dataLength_;
    if (bytes) std::memcpy(end, bytes, count);
    dataLength_ += count;
    return end;
}

HRESULT STDMETHODCALLTYPE VMemoryMappedBuffer::Interface::QueryInterface(REFIID, void** object) {
    if (object) *object = nullptr;
    return E_NOINTERFACE;
}
