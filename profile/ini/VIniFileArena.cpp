#include "VIniFileArena.h"

#include <windows.h>

#include <algorithm>
#include <cwchar>

namespace {

constexpr size_t BlockSize = 64 * 1024;
constexpr size_t Alignment = alignof(std::max_align_t);

}  // namespace

VIniFileArena::~VIniFileArena() {
    for (Block& block : blocks_) SecureZeroMemory(block.memory.get(), block.size);
}

void* VIniFileArena::Allocate(size_t size) {
    size = (size + Alignment - 1) / Alignment * Alignment;
    if (size > left_) {
        // A request larger than a block gets a block of its own.
        const size_t blockSize = std::max(BlockSize, size);
        blocks_.push_back(Block{std::make_unique_for_overwrite<std::byte[]>(blockSize), blockSize});
        cursor_ = blocks_.back().memory.get();
        left_ = blockSize;
    }
    void* memory = cursor_;
    cursor_ += size;
    left_ -= size;
    return memory;
}

std::wstring_view VIniFileArena::Keep(std::wstring_view text) {
    auto* copy = static_cast<wchar_t*>(Allocate(text.size() * sizeof(wchar_t)));
    std::wmemcpy(copy, text.data(), text.size());
    return std::wstring_view(copy, text.size());
}
