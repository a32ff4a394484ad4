// VBasicBuffer: a byte buffer of fixed capacity for key material, records and
// other secrets. Its bytes are wiped when it is cleared and when it goes away.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

class VBasicBuffer {
public:
    // An empty buffer that can hold up to targetSize bytes.
    explicit VBasicBuffer(size_t targetSize = 0);
    VBasicBuffer(VBasicBuffer&& other) noexcept;
    VBasicBuffer& operator=(VBasicBuffer&& other) noexcept;
    VBasicBuffer(const VBasicBuffer&) = delete;
    VBasicBuffer& operator=(const VBasicBuffer&) = delete;
    ~VBasicBuffer();

    // Wipes the bytes and empties the buffer; the target size stays.
    void Clear() noexcept;
    size_t GetLength() const noexcept { return length_; }
    size_t GetTargetSize() const noexcept { return targetSize_; }
    bool IsFull() const noexcept { return length_ == targetSize_; }
    uint8_t* GetData() noexcept { return data_.get(); }
    const uint8_t* GetData() const noexcept { return data_.get(); }

    // Appends count bytes. False, with nothing appended, when they would not fit.
    bool Append(const void* bytes, size_t count) noexcept;
    // Grows the length by count (> 0) zero bytes and returns where they start,
    // so that a writer can fill them in place; null when they would not fit.
    uint8_t* Extend(size_t count) noexcept;

private:
    std::unique_ptr<uint8_t[]> data_;
    size_t targetSize_;
    size_t length_ = 0;
};
