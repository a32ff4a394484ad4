// The heap block behind every VUnicodeString and VString: a 32-byte header,
// then the characters and a terminating zero. Blocks are shared between string
// objects by reference count and copied only when a shared block is written.
#pragma once

#include <cstddef>
#include <cstdint>

namespace Str {

// Carried by every block. A sensitive block is wiped before its memory is freed.
enum SensitiveState : uint32_t { NotSensitive = 0, Sensitive = 1 };

struct BlockHeader {
    uint64_t capacityBytes;  // size of the character area, terminator included
    uint64_t lengthBytes;    // terminator excluded
    void* characters;        // always the address just past this header
    uint32_t sensitivity;    // 1 = sensitive, anything else = plain
    int32_t references;      // changed only atomically
};
static_assert(sizeof(BlockHeader) == 32, "the block header is part of the shared layout");

inline bool IsSensitive(uint32_t sensitivity) { return sensitivity == Sensitive; }

// Allocates a block with exactly capacityBytes of character area, one reference
// and an empty zero-terminated text. Throws std::bad_alloc when memory is exhausted.
BlockHeader* AllocateBlock(size_t capacityBytes, size_t terminatorBytes, uint32_t sensitivity);

// Atomic reference handling. ReleaseBlock wipes a sensitive block (header
// included) before freeing it when the last reference goes.
void AddBlockReference(BlockHeader* block) noexcept;
void ReleaseBlock(BlockHeader* block) noexcept;
// Whether more than one string holds the block, so that it must not be written.
bool IsBlockShared(BlockHeader* block) noexcept;

// The process-wide empty blocks, one plain and one sensitive per character
// width. They start with one reference of their own, so they are never freed.
// The returned block carries a new reference for the caller.
BlockHeader* SharedEmptyBlock(size_t characterBytes, uint32_t sensitivity) noexcept;

// The functions that obtain and return block memory. Tests replace them to
// look at a block at the moment it is given back; replace them only while no
// other thread is making or dropping strings.
struct BlockAllocator {
    void* (*allocate)(size_t bytes);
    void (*release)(void* memory, size_t bytes);
};
BlockAllocator ReplaceBlockAllocator(BlockAllocator allocator) noexcept;

}  // namespace Str
