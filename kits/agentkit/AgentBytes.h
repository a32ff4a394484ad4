// Byte buffers of the agent. Every buffer is wiped when it is freed or grows,
// since most of them hold, at some point, key material or a pass phrase.
#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <new>
#include <string>
#include <vector>

template <class T>
struct WipingAllocator {
    using value_type = T;
    WipingAllocator() = default;
    template <class U>
    WipingAllocator(const WipingAllocator<U>&) noexcept {}
    T* allocate(size_t count) { return static_cast<T*>(::operator new(count * sizeof(T))); }
    void deallocate(T* memory, size_t count) noexcept {
        SecureZeroMemory(memory, count * sizeof(T));
        ::operator delete(memory);
    }
    template <class U>
    bool operator==(const WipingAllocator<U>&) const noexcept {
        return true;
    }
};

using AgentBytes = std::vector<uint8_t, WipingAllocator<uint8_t>>;
// Text of the protocol (key type names, comments as UTF-8).
using AgentText = std::basic_string<char, std::char_traits<char>, WipingAllocator<char>>;

inline AgentBytes ToBytes(const void* data, size_t count) {
    const auto* bytes = static_cast<const uint8_t*>(data);
    return AgentBytes(bytes, bytes + count);
}
