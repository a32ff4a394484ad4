// The in-memory values of one INI-file key: a private list with one slot per
// private value name (in that list's order), then a main list of every other
// name in the order the names first arrived. Table order - private list, then
// main list - is the order in which the key writes and walks its values.
//
// The table keeps the decoded texts of the files it was read from: values and
// names read from a file point into them. Values in the private list belong
// to the user, and texts read out of them are sensitive strings.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "VIniFileArena.h"
#include "VIniFileData.h"
#include "VString.h"
#include "WipedVector.h"

class VIniFileValueTable {
public:
    // One name and its value; an empty slot (a deleted value) keeps its place
    // in the table but is never written or listed.
    struct Slot {
        std::wstring_view name;  // kept by the table
        VIniFileDataPtr value;
        uint32_t hash;
        bool isPrivate;
    };

    VIniFileValueTable();
    VIniFileValueTable(const VIniFileValueTable&) = delete;
    VIniFileValueTable& operator=(const VIniFileValueTable&) = delete;

    // Where values read from a file are made (VIniFileArena::Make).
    VIniFileArena& GetArena() { return arena_; }
    // Keeps a file's decoded text for as long as the table lives; the names
    // and values read from it point into it.
    const VIniFileText& KeepText(VIniFileText text);

    // Reading a file: each entry in file order (name in a kept text), then
    // EndReading, before any other operation. As Store would, a later value
    // of a name replaces an earlier one in its slot; only the lookups wait
    // for EndReading, which makes them for all the entries at once (see
    // IndexRead). expectedCount sizes the table beforehand.
    void BeginReading(size_t expectedCount);
    void Read(std::wstring_view name, VIniFileDataPtr value);
    void EndReading();

    // The value stored under name (compared exactly), or null.
    VIniFileData* Find(std::wstring_view name);
    // Replaces the value of name in its slot, whatever its kind; a name in
    // neither list is appended to the main list (and copied).
    void Store(std::wstring_view name, VIniFileDataPtr value);
    // Empties the slot of name; false when it held no value.
    bool Remove(std::wstring_view name);

    // Whether the private file must be written: a private slot holds a value,
    // or a private value was removed since the table was made (else the
    // removed value would live on in the private file).
    bool NeedsPrivateFile() const;
    // The files now hold the table: removals need no more writing.
    void MarkSaved() { privateRemoved_ = false; }

    // Calls visit(const Slot&) for each slot that holds a value, in table order.
    template <class Visit>
    void ForEach(Visit&& visit) const {
        for (const Slot& slot : slots_)
            if (slot.value) visit(slot);
    }

private:
    static constexpr uint32_t NoSlot = UINT32_MAX;

    // The position in index_ that holds name's slot, or the free position
    // where it would go.
    size_t Probe(std::wstring_view name, uint32_t hash) const;
    // The slot of name, or NoSlot.
    uint32_t SlotOf(std::wstring_view name) const;
    // Puts value in the slot of name, or appends a slot.
    void Put(std::wstring_view name, uint32_t hash, VIniFileDataPtr value);
    void Append(std::wstring_view name, uint32_t hash, VIniFileDataPtr value, bool isPrivate);
    void Rehash(size_t capacity);
    // Makes the lookups of the slots read since indexed_.
    void IndexRead();

    // The texts read from files, and the arena of the names of the main list
    // and the values read from files. Declared first, so that they go after
    // the slots that point into them.
    std::vector<VIniFileText> texts_;
    VIniFileArena arena_;
    // The private list (the first PrivateValueNameCount slots), then the main
    // list. (Kept for reuse: a megabyte for a large key.)
    ReusedVector<Slot> slots_;
    // Open addressing with linear probing: positions in slots_ by name, at
    // most half full. Each entry holds its name's hash too: in a large table
    // every slot looked at costs a cache miss, and a different hash spares it.
    struct IndexEntry {
        uint32_t slot;
        uint32_t hash;
    };
    ReusedVector<IndexEntry> index_;
    size_t indexed_ = 0;  // slots below this have their lookups
    // Where the next lookup looks first: a configuration object reads its
    // values in the order the key wrote them, which is the table's order.
    size_t nextSlot_ = 0;
    uint64_t privateHashBits_ = 0;
    bool privateRemoved_ = false;
};
