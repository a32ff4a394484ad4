#include "VIniFileValueTable.h"

#include "PrivateValueNames.h"

namespace {

constexpr size_t InitialIndexSize = 64;  // room for the private list and a few more

uint32_t HashOf(std::wstring_view name) { return static_cast<uint32_t>(std::hash<std::wstring_view>()(name)); }

}  // namespace

VIniFileValueTable::VIniFileValueTable() : index_(InitialIndexSize, NoSlot) {
    slots_.reserve(PrivateValueNameCount);
    // The private names live as long as the process: no copy is needed.
    for (const VUnicodeString& name : GetPrivateValueNames()) {
        const std::wstring_view view(name.c_str(), name.GetLength());
        Append(view, HashOf(view), nullptr, true);
    }
}

void VIniFileValueTable::Reserve(size_t count) {
    slots_.reserve(slots_.size() + count);
    size_t capacity = index_.size();
    while (capacity < 2 * (slots_.size() + count)) capacity *= 2;
    if (capacity != index_.size()) Rehash(capacity);
}

size_t VIniFileValueTable::Probe(std::wstring_view name, uint32_t hash) const {
    const size_t mask = index_.size() - 1;
    for (size_t position = hash & mask;; position = (position + 1) & mask) {
        const uint32_t slot = index_[position];
        if (slot == NoSlot || (slots_[slot].hash == hash && slots_[slot].name == name)) return position;
    }
}

void VIniFileValueTable::Append(std::wstring_view name, uint32_t hash, VIniFileDataPtr value,
                                bool isPrivate) {
    if (2 * (slots_.size() + 1) > index_.size()) Rehash(2 * index_.size());
    index_[Probe(name, hash)] = static_cast<uint32_t>(slots_.size());
    slots_.push_back(Slot{name, std::move(value), hash, isPrivate});
}

void VIniFileValueTable::Rehash(size_t capacity) {
    index_.assign(capacity, NoSlot);
    for (size_t slot = 0; slot < slots_.size(); ++slot)
        index_[Probe(slots_[slot].name, slots_[slot].hash)] = static_cast<uint32_t>(slot);
}

VIniFileData* VIniFileValueTable::Find(std::wstring_view name) const {
    const uint32_t slot = index_[Probe(name, HashOf(name))];
    return slot == NoSlot ? nullptr : slots_[slot].value.get();
}

const VIniFileText& VIniFileValueTable::KeepText(VIniFileText text) {
    texts_.push_back(std::move(text));
    return texts_.back();
}

void VIniFileValueTable::Store(std::wstring_view name, VIniFileDataPtr value, bool nameIsKept) {
    const uint32_t hash = HashOf(name);
    const uint32_t slot = index_[Probe(name, hash)];
    if (slot != NoSlot) {
        if (value && slots_[slot].isPrivate) value->MarkSensitive();
        slots_[slot].value = std::move(value);
    } else {
        Append(nameIsKept ? name : arena_.Keep(name), hash, std::move(value), false);
    }
}

bool VIniFileValueTable::Remove(std::wstring_view name) {
    const uint32_t slot = index_[Probe(name, HashOf(name))];
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
