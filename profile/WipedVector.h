// WipedVector: a std::vector whose memory is overwritten with zeros before it
// goes back to the heap, also when the vector grows. The store reads, decodes
// and formats whole values files in such buffers, because those texts hold
// user names, passwords and protected values as they stand in the files.
#pragma once

#include <windows.h>

#include <cstddef>
#include <memory>
#include <vector>

template <class T>
struct WipingAllocator {
    using value_type = T;

    WipingAllocator() noexcept = default;
    template <class U>
    WipingAllocator(const WipingAllocator<U>&) noexcept {}

    T* allocate(size_t count) { return std::allocator<T>().allocate(count); }
    void deallocate(T* memory, size_t count) noexcept {
        SecureZeroMemory(memory, count * sizeof(T));
        std::allocator<T>().deallocate(memory, count);
    }

    template <class U>
    bool operator==(const WipingAllocator<U>&) const noexcept {
        return true;
    }
};

template <class T>
using WipedVector = std::vector<T, WipingAllocator<T>>;
