// VIniFileArena: memory for the names and value objects of one value table,
// taken from the system in large blocks and given back all at once with the
// table. Loading a file of thousands of values would otherwise make
// thousands of small allocations, which cost more than reading the file
// (under Wine above all, where one takes several hundred nanoseconds).
// The blocks are wiped before they are given back: they hold values read
// from files, passwords among them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include "VIniFileData.h"

class VIniFileArena {
public:
    VIniFileArena() = default;
    ~VIniFileArena();
    VIniFileArena(const VIniFileArena&) = delete;
    VIniFileArena& operator=(const VIniFileArena&) = delete;

    // size bytes, aligned for any object, until the arena goes. Throws
    // std::bad_alloc when memory is exhausted.
    void* Allocate(size_t size);
    // count bytes, not cleared, until the arena goes.
    std::span<uint8_t> AllocateBytes(size_t count) {
        return std::span<uint8_t>(static_cast<uint8_t*>(Allocate(count)), count);
    }
    // A copy of text that lives as long as the arena.
    std::wstring_view Keep(std::wstring_view text);

    // A value object in the arena; the pointer runs only its destructor.
    template <class T, class... Arguments>
    VIniFileDataPtr Make(Arguments&&... arguments) {
        T* value = new (Allocate(sizeof(T))) T(std::forward<Arguments>(arguments)...);
        value->SetInArena();
        return VIniFileDataPtr(value);
    }

private:
    struct Block {
        std::unique_ptr<std::byte[]> memory;
        size_t size;
    };

    std::vector<Block> blocks_;
    std::byte* cursor_ = nullptr;
    size_t left_ = 0;
};
