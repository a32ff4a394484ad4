#include "StringBlock.h"

#include <windows.h>

#include <atomic>
#include <cstring>
#include <new>
#include <utility>

namespace Str {
namespace {

void* HeapAllocate(size_t bytes) { return HeapAlloc(GetProcessHeap(), 0, bytes); }
void HeapRelease(void* memory, size_t) { HeapFree(GetProcessHeap(), 0, memory); }

BlockAllocator g_allocator{HeapAllocate, HeapRelease};

std::atomic_ref<int32_t> References(BlockHeader* block) {
    return std::atomic_ref<int32_t>(block->references);
}

// An empty block in static storage: a header and room for one terminator.
struct alignas(BlockHeader) StaticEmptyBlock {
    BlockHeader header;
    char terminator[sizeof(wchar_t)];

    StaticEmptyBlock(size_t characterBytes, uint32_t sensitivity)
        : header{characterBytes, 0, terminator, sensitivity, 1}, terminator{} {}
};

}  // namespace

BlockHeader* AllocateBlock(size_t capacityBytes, size_t terminatorBytes, uint32_t sensitivity) {
    const size_t total = sizeof(BlockHeader) + capacityBytes;
    void* memory = g_allocator.allocate(total);
    if (!memory) throw std::bad_alloc();
    auto* block = static_cast<BlockHeader*>(memory);
    block->capacityBytes = capacityBytes;
    block->lengthBytes = 0;
    block->characters = block + 1;
    block->sensitivity = sensitivity;
    block->references = 1;
    std::memset(block->characters, 0, terminatorBytes);
    return block;
}

void AddBlockReference(BlockHeader* block) noexcept { References(block).fetch_add(1); }

void ReleaseBlock(BlockHeader* block) noexcept {
    if (References(block).fetch_sub(1) > 1) return;
    const size_t total = sizeof(BlockHeader) + block->capacityBytes;
    if (IsSensitive(block->sensitivity)) SecureZeroMemory(block, total);
    g_allocator.release(block, total);
}

bool IsBlockShared(BlockHeader* block) noexcept { return References(block).load() > 1; }

BlockHeader* SharedEmptyBlock(size_t characterBytes, uint32_t sensitivity) noexcept {
    static StaticEmptyBlock narrowPlain(sizeof(char), NotSensitive);
    static StaticEmptyBlock narrowSensitive(sizeof(char), Sensitive);
    static StaticEmptyBlock widePlain(sizeof(wchar_t), NotSensitive);
    static StaticEmptyBlock wideSensitive(sizeof(wchar_t), Sensitive);

    const bool sensitive = IsSensitive(sensitivity);
    StaticEmptyBlock& empty = characterBytes == sizeof(char)
                                  ? (sensitive ? narrowSensitive : narrowPlain)
                                  : (sensitive ? wideSensitive : widePlain);
    AddBlockReference(&empty.header);
    return &empty.header;
}

BlockAllocator ReplaceBlockAllocator(BlockAllocator allocator) noexcept {
    return std::exchange(g_allocator, allocator);
}

}  // namespace Str
