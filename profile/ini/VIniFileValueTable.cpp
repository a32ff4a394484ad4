#include "VIniFileValueTable.h"

#include <emmintrin.h>

#include <cstring>

#include "PrivateValueNames.h"

namespace {

constexpr size_t InitialIndexSize = 64;  // room for the private list and a few more
// How many slots ahead IndexRead asks for the index entry it will look at.
constexpr size_t PrefetchDistance = 8;

// A name's hash: eight bytes at a time, then mixed as MurmurHash3's finaliser
// does. Every name read is hashed once, so this is quicker than the general
// one of the library, whose quality the index needs no more of.
uint32_t HashOf(std::wstring_view name) {
    constexpr uint64_t Multiplier = 0xFF51AFD7ED558CCDull;
    uint64_t hash = 0x9E3779B97F4A7C15ull ^ name.size();
    const wchar_t* next = name.data();
    size_t left = name.size();
    for (; left >= 4; left -= 4, next += 4) {
        uint64_t eight;
        std::memcpy(&eight, next, sizeof eight);
        hash = (hash ^ eight) * Multiplier;
        hash ^= hash >> 32;
    }
    for (; left > 0; --left, ++next) hash = (hash ^ static_cast<uint64_t>(*next)) * Multiplier;
    hash ^= hash >> 33;
    hash *= 0xC4CEB9FE1A85EC53ull;
    hash ^= hash >> 33;
    return static_cast<uint32_t>(hash);
}

// Names compare eight bytes at a time: the runtime's comparisons go byte by
// byte, or character by character, through a call.
bool SameName(std::wstring_view a, std::wstring_view b) {
    if (a.size() != b.size()) return false;
    const wchar_t* x = a.data();
    const wchar_t* y = b.data();
    size_t left = a.size();
    for (; left >= 4; left -= 4, x += 4, y += 4) {
        uint64_t first;
        uint64_t second;
        std::memcpy(&first, x, sizeof first);
        std::memcpy(&second, y, sizeof second);
        if (first != second) return false;
    }
    for (; left > 0; --left, ++x, ++y)
        if (*x != *y) return false;
    return true;
}

// A bit for each private name, by its hash: most names read are not private,
// and one test tells it.
uint64_t HashBit(uint32_t hash) { return uint64_t{1} << (hash & 63); }

}  // namespace

VIniFileValueTable::VIniFileValueTable() : index_(InitialIndexSize, IndexEntry{NoSlot, 0}) {
    slots_.reserve(PrivateValueNameCount);
    // The private names live as long as the process: no copy is needed.
    for (const VUnicodeString& name : GetPrivateValueNames()) {
        const std::wstring_view view(name.c_str(), name.GetLength());
        Append(view, HashOf(view), nullptr, true);
        privateHashBits_ |= HashBit(slots_.back().hash);
    }
    indexed_ = slots_.size();
}

const VIniFileText& VIniFileValueTable::KeepText(VIniFileText text) {
    texts_.push_back(std::move(text));
    return texts_.back();
}

size_t VIniFileValueTable::Probe(std::wstring_view name, uint32_t hash) const {
    const size_t mask = index_.size() - 1;
    for (size_t position = hash & mask;; position = (position + 1) & mask) {
        const IndexEntry entry = index_[position];
        if (entry.slot == NoSlot || (entry.hash == hash && SameName(slots_[entry.slot].name, name)))
            return position;
    }
}

void VIniFileValueTable::Append(std::wstring_view name, uint32_t hash, VIniFileDataPtr value,
                                bool isPrivate) {
    if (2 * (slots_.size() + 1) > index_.size()) Rehash(2 * index_.size());
    index_[Probe(name, hash)] = IndexEntry{static_cast<uint32_t>(slots_.size()), hash};
    slots_.push_back(Slot{name, std::move(value), hash, isPrivate});
}

void VIniFileValueTable::Rehash(size_t capacity) {
    index_.assign(capacity, IndexEntry{NoSlot, 0});
    for (size_t slot = 0; slot < indexed_; ++slot) {
        // The first slot of a name holds its place; a later one of the same
        // name (emptied when read) is no lookup's answer.
        const size_t position = Probe(slots_[slot].name, slots_[slot].hash);
        if (index_[position].slot == NoSlot)
            index_[position] = IndexEntry{static_cast<uint32_t>(slot), slots_[slot].hash};
    }
}

void VIniFileValueTable::BeginReading(size_t expectedCount) {
    slots_.reserve(slots_.size() + expectedCount);
    size_t capacity = index_.size();
    while (capacity < 2 * (slots_.size() + expectedCount)) capacity *= 2;
    if (capacity != index_.size()) Rehash(capacity);
}

void VIniFileValueTable::Read(std::wstring_view name, VIniFileDataPtr value) {
    const uint32_t hash = HashOf(name);
    // A private name has its slot already, among few: it is filled at once.
    for (size_t slot = 0; (privateHashBits_ & HashBit(hash)) && slot < PrivateValueNameCount;
         ++slot) {
        if (slots_[slot].hash == hash && SameName(slots_[slot].name, name)) {
            value->MarkSensitive();
            slots_[slot].value = std::move(value);
            return;
        }
    }
    slots_.push_back(Slot{name, std::move(value), hash, false});
}

void VIniFileValueTable::IndexRead() {
    if (2 * slots_.size() > index_.size()) {
        size_t capacity = index_.size();
        while (capacity < 2 * slots_.size()) capacity *= 2;
        Rehash(capacity);
    }
    // The index of a large key does not fit the processor's caches, and each
    // lookup waits for memory: the entries a few slots on are asked for
    // early, so that the waits overlap.
    const size_t mask = index_.size() - 1;
    for (size_t slot = indexed_; slot < slots_.size(); ++slot) {
        if (slot + PrefetchDistance < slots_.size())
            _mm_prefetch(
                reinterpret_cast<const char*>(&index_[slots_[slot + PrefetchDistance].hash & mask]),
                _MM_HINT_T0);
        Slot& read = slots_[slot];
        const size_t position = Probe(read.name, read.hash);
        const uint32_t earlier = index_[position].slot;
        if (earlier == NoSlot) {
            index_[position] = IndexEntry{static_cast<uint32_t>(slot), read.hash};
        } else {
            // A later value of the same name replaces the earlier one in its
            // place; this slot stays empty.
            slots_[earlier].value = std::move(read.value);
        }
    }
    indexed_ = slots_.size();
}

void VIniFileValueTable::EndReading() {
    IndexRead();
    nextSlot_ = 0;
}

uint32_t VIniFileValueTable::SlotOf(std::wstring_view name) const {
    return index_[Probe(name, HashOf(name))].slot;
}

VIniFileData* VIniFileValueTable::Find(std::wstring_view name) {
    if (nextSlot_ < slots_.size()) {
        const Slot& next = slots_[nextSlot_];
        if (next.value && SameName(next.name, name)) {
            ++nextSlot_;
            return next.value.get();
        }
    }
    const uint32_t slot = SlotOf(name);
    if (slot == NoSlot) return nullptr;
    nextSlot_ = slot + 1;
    return slots_[slot].value.get();
}

void VIniFileValueTable::Put(std::wstring_view name, uint32_t hash, VIniFileDataPtr value) {
    const uint32_t slot = index_[Probe(name, hash)].slot;
    if (slot != NoSlot) {
        if (value && slots_[slot].isPrivate) value->MarkSensitive();
        slots_[slot].value = std::move(value);
    } else {
        Append(arena_.Keep(name), hash, std::move(value), false);
        indexed_ = slots_.size();
    }
}

void VIniFileValueTable::Store(std::wstring_view name, VIniFileDataPtr value) {
    Put(name, HashOf(name), std::move(value));
}

bool VIniFileValueTable::Remove(std::wstring_view name) {
    const uint32_t slot = SlotOf(name);
    if (slot == NoSlot || !slots_[slot].value) return false;
    slots_[slot].value.reset();
    privateRemoved_ = privateRemoved_ || slots_[slot].isPrivate;
    return true;
}

bool VIniFileValueTable::NeedsPrivateFile() const {
    if (privateRemoved_) return true;
    for (size_t slot = 0; slot < PrivateValueNameCount; ++slot)
        if (slots_[slot].value) return true;
    return false;
}
