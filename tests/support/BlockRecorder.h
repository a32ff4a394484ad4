// While it lives, records the string blocks allocated and each released block's bytes, so that a
// test can tell whether a secret was wiped. One at a time: the allocator is the process's.
#pragma once

#include <windows.h>

#include <algorithm>
#include <vector>

#include "StringBlock.h"

class BlockRecorder {
public:
    struct Released {
        const void* memory;
        std::vector<unsigned char> bytes;
        size_t heapSize;
        bool IsWiped() const {
            return std::all_of(bytes.begin(), bytes.end(), [](unsigned char b) { return b == 0; });
        }
    };

    BlockRecorder() : previous_(Str::ReplaceBlockAllocator({Allocate, Release})) {
        allocations.clear();
        releases.clear();
    }
    ~BlockRecorder() { Str::ReplaceBlockAllocator(previous_); }
    BlockRecorder(const BlockRecorder&) = delete;
    BlockRecorder& operator=(const BlockRecorder&) = delete;

    // The release of the block that holds characters; null while it is held.
    static const Released* ReleaseOf(const void* characters) {
        const void* memory = static_cast<const Str::BlockHeader*>(characters) - 1;
        for (const Released& released : releases)
            if (released.memory == memory) return &released;
        return nullptr;
    }

    static inline std::vector<size_t> allocations;
    static inline std::vector<Released> releases;

private:
    static void* Allocate(size_t bytes) {
        allocations.push_back(bytes);
        return HeapAlloc(GetProcessHeap(), 0, bytes);
    }
    static void Release(void* memory, size_t bytes) {
        const auto* begin = static_cast<const unsigned char*>(memory);
        releases.push_back({memory, {begin, begin + bytes}, HeapSize(GetProcessHeap(), 0, memory)});
        HeapFree(GetProcessHeap(), 0, memory);
    }

    Str::BlockAllocator previous_;
};
