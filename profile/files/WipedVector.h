// WipedVector: a std::vector whose memory is overwritten with zeros before it
// goes back to the heap, also when the vector grows. The store reads, decodes
// and formats whole values files in such buffers, because those texts hold
// user names, passwords and protected values as they stand in the files.
//
// Elements that resize adds are left uninitialised (for the plain types these
// buffers hold): each buffer is filled by a read or a conversion right after,
// and clearing megabytes first would cost as much as the read.
//
// Large buffers are kept for reuse (WipedMemory), wiped, when they are freed.
// ReusedVector keeps its large buffers the same way, without wiping them, for
// what holds no text of a file.
#pragma once

#include <cstddef>
#include <new>
#include <utility>
#include <vector>

namespace WipedMemory {

// bytes of memory, aligned for any object. Throws std::bad_alloc.
//
// The heap maps a large block apart and gives it back to the system when it
// is freed; the next one then arrives as fresh pages, which the system
// clears one by one as they are first touched. For a values file of a
// megabyte that costs as much as reading it, so a thread keeps the last few
// large blocks it freed (wiped) for its next ones.
void* Allocate(size_t bytes);
// Frees or keeps memory (from Allocate with bytes), wiped first when wipe is set.
void Release(void* memory, size_t bytes, bool wipe) noexcept;

}  // namespace WipedMemory

template <class T, bool Wipe>
struct KeepingAllocator {
    using value_type = T;
    template <class U>
    struct rebind {
        using other = KeepingAllocator<U, Wipe>;
    };

    KeepingAllocator() noexcept = default;
    template <class U>
    KeepingAllocator(const KeepingAllocator<U, Wipe>&) noexcept {}

    T* allocate(size_t count) { return static_cast<T*>(WipedMemory::Allocate(count * sizeof(T))); }
    void deallocate(T* memory, size_t count) noexcept {
        WipedMemory::Release(memory, count * sizeof(T), Wipe);
    }

    template <class U>
    void construct(U* place) noexcept(noexcept(U())) {
        ::new (static_cast<void*>(place)) U;
    }
    template <class U, class... Arguments>
    void construct(U* place, Arguments&&... arguments) {
        ::new (static_cast<void*>(place)) U(std::forward<Arguments>(arguments)...);
    }

    template <class U>
    bool operator==(const KeepingAllocator<U, Wipe>&) const noexcept {
        return true;
    }
};

template <class T>
using WipedVector = std::vector<T, KeepingAllocator<T, true>>;
template <class T>
using ReusedVector = std::vector<T, KeepingAllocator<T, false>>;
