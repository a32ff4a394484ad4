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

    // Makes room for about count more names, so that loading a large file
    // does not grow the table step by step.
    void Reserve(size_t count);

    // Where values read from a file are made (VIniFileArena::Make).
    VIniFileArena& GetArena() { return arena_; }
    // Keeps a file's decoded text for as long as the table lives; the names
    // and values read from it point into it.
    const VIniFileText& KeepText(VIniFileText text);

    // The value stored under name (compared exactly), or null.
    VIniFileData* Find(std::wstring_view name) const;
    // Replaces the value of name in its slot, whatever its kind; a name in
    // neither list is appended to the main list. The name is copied unless
    // it lies in a text the table keeps (KeepText).
    void Store(std::wstring_view name, VIniFileDataPtr value, bool nameIsKept = false);
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
    void Append(std::wstring_view name, uint32_t hash, VIniFileDataPtr value, bool isPrivate);
    void Rehash(size_t capacity);

    // The texts read from files, and the arena of the names of the main list
    // and the values read from files. Declared first, so that they go after
    // the slots that point into them.
    std::vector<VIniFileText> texts_;
    VIniFileArena arena_;
    // The private list (the first PrivateValueNameCount slots), then the main list.
    // (Wiped vectors for the reuse of their memory, a megabyte for a large key.)
    WipedVector<Slot> slots_;
    // Open addressing with linear probing: positions in slots_ by name, at
    // most half full. Every value read from a file is looked up once, so a
    // lookup is one hash and, mostly, one comparison.
    WipedVector<uint32_t> index_;
    bool privateRemoved_ = false;
};
