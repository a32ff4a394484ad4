#include "WipedVector.h"

#include <windows.h>

#include <cstdlib>
#include <mutex>

namespace WipedMemory {
namespace {

// Blocks from this size on are kept; smaller ones the heap reuses itself
// (Wine maps blocks apart from 64 KB on, Windows from about 512 KB).
constexpr size_t LargeBlock = 64 * 1024;
constexpr size_t KeptBlocks = 4;
constexpr size_t KeptBytesLimit = 32 * 1024 * 1024;
// A large block starts with its size, so that it can be kept and reused for
// a request of another size.
constexpr size_t Header = alignof(std::max_align_t) > sizeof(size_t) ? alignof(std::max_align_t)
                                                                     : sizeof(size_t);

struct KeptBlock {
    std::byte* block = nullptr;  // where its header starts
    size_t size = 0;             // usable bytes after the header
};

struct Kept {
    std::mutex lock;
    KeptBlock blocks[KeptBlocks];
    size_t bytes = 0;
};

Kept& TheKept() {
    // Never destroyed: buffers of objects destroyed at exit come back late.
    static Kept* const kept = new Kept;
    return *kept;
}

size_t& SizeOf(std::byte* block) { return *reinterpret_cast<size_t*>(block); }

}  // namespace

void* Allocate(size_t bytes) {
    if (bytes < LargeBlock) return ::operator new(bytes);
    {
        Kept& kept = TheKept();
        const std::lock_guard<std::mutex> guard(kept.lock);
        // The smallest kept block that holds bytes and is not much larger.
        KeptBlock* best = nullptr;
        for (KeptBlock& candidate : kept.blocks)
            if (candidate.block && candidate.size >= bytes && candidate.size / 4 <= bytes &&
                (!best || candidate.size < best->size))
                best = &candidate;
        if (best) {
            kept.bytes -= best->size;
            return std::exchange(*best, KeptBlock{}).block + Header;
        }
    }
    auto* block = static_cast<std::byte*>(std::malloc(Header + bytes));
    if (!block) throw std::bad_alloc();
    SizeOf(block) = bytes;
    return block + Header;
}

void Release(void* memory, size_t bytes, bool wipe) noexcept {
    if (!memory) return;
    if (bytes < LargeBlock) {
        if (wipe) SecureZeroMemory(memory, bytes);
        ::operator delete(memory);
        return;
    }
    std::byte* block = static_cast<std::byte*>(memory) - Header;
    const size_t size = SizeOf(block);
    if (wipe) SecureZeroMemory(memory, size);
    {
        Kept& kept = TheKept();
        const std::lock_guard<std::mutex> guard(kept.lock);
        // A free place, else the place of the smallest kept block, when that
        // one is smaller than this.
        KeptBlock* place = nullptr;
        for (KeptBlock& candidate : kept.blocks) {
            if (!candidate.block) {
                place = &candidate;
                break;
            }
            if (candidate.size < size && (!place || candidate.size < place->size))
                place = &candidate;
        }
        if (place && kept.bytes - place->size + size <= KeptBytesLimit) {
            std::free(place->block);
            kept.bytes = kept.bytes - place->size + size;
            *place = KeptBlock{block, size};
            return;
        }
    }
    std::free(block);
}

}  // namespace WipedMemory
