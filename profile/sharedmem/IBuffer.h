// IBuffer: a block of memory with a fixed capacity and a fill level (the data
// length: how many bytes from the start are in use). Reference-counted.
#pragma once

#include <windows.h>

#include <unknwn.h>

#include <cstddef>

class IBuffer : public IUnknown {
public:
    // The start of the block; null when there is no block.
    virtual void* GetData() = 0;
    virtual size_t GetCapacity() const = 0;
    virtual size_t GetDataLength() const = 0;
    // Throws std::overflow_error("SetDataLength") for a length beyond the capacity.
    virtual void SetDataLength(size_t length) = 0;
    // Adds count bytes at the end of the data (copied from bytes unless null)
    // and returns where they went. Null, with last error ERROR_INSUFFICIENT_BUFFER
    // and the data length unchanged, when they do not fit; null when there is no block.
    virtual void* Append(const void* bytes, size_t count) = 0;

protected:
    virtual ~IBuffer() = default;
};
