#include "VBasicBuffer.h"

#include <windows.h>

#include <cstring>
#include <utility>

VBasicBuffer::VBasicBuffer(size_t targetSize)
    : data_(targetSize ? new uint8_t[targetSize]() : nullptr), targetSize_(targetSize) {}

VBasicBuffer::VBasicBuffer(VBasicBuffer&& other) noexcept
    : data_(std::move(other.data_)),
      targetSize_(std::exchange(other.targetSize_, 0)),
      length_(std::exchange(other.length_, 0)) {}

VBasicBuffer& VBasicBuffer::operator=(VBasicBuffer&& other) noexcept {
    if (this != &other) {
        Clear();
        data_ = std::move(other.data_);
        targetSize_ = std::exchange(other.targetSize_, 0);
        length_ = std::exchange(other.length_, 0);
    }
    return *this;
}

VBasicBuffer::~VBasicBuffer() { Clear(); }

void VBasicBuffer::Clear() noexcept {
    // SecureZeroMemory, unlike memset, is not removed as a dead store.
    if (data_) SecureZeroMemory(data_.get(), targetSize_);
    length_ = 0;
}

bool VBasicBuffer::Append(const void* bytes, size_t count) noexcept {
    if (count == 0) return true;
    uint8_t* target = Extend(count);
    if (!target) return false;
    std::memcpy(target, bytes, count);
    return true;
}

uint8_t* VBasicBuffer::Extend(size_t count) noexcept {
    if (count == 0 || count > targetSize_ - length_) return nullptr;
    uint8_t* target = data_.get() + length_;
    length_ += count;
    return target;
}
