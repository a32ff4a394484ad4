// The in-memory values of one INI-file key: a private list with one slot per
// private value name (in that list's order), then a main list of every other
// name in the order the names first arrived. Table order - private list, then
// main list - is the order in which the key writes and walks its values.
#pragma once

#include <cstdint>
#include <memory>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "VIniFileData.h"
#include "VString.h"

class VIniFileValueTable {
public:
    // One name and its value; an empty slot (a deleted value) keeps its place
    // in the table but is never written or listed.
    struct Slot {
        VUnicodeString name;
        std::unique_ptr<VIniFileData> value;
        bool isPrivate;
    };

    VIniFileValueTable();
    VIniFileValueTable(const VIniFileValueTable&) = delete;
    VIniFileValueTable& operator=(const VIniFileValueTable&) = delete;

    // The value stored under name (compared exactly), or null.
    VIniFileData* Find(const VUnicodeString& name) const;
    // Replaces the value of name in its slot, whatever its kind; a name in
    // neither list is appended to the main list.
    void Store(const VUnicodeString& name, std::unique_ptr<VIniFileData> value);
    // Empties the slot of name; false when it held no value.
    bool Remove(const VUnicodeString& name);

    // Whether a slot of the private list holds a value.
    bool HasPrivateValue() const;

    // Calls visit(const Slot&) for each slot that holds a value, in table order.
    template <class Visit>
    void ForEach(Visit&& visit) const {
        for (const Slot& slot : private_)
            if (slot.value) visit(slot);
        for (const Slot& slot : main_)
            if (slot.value) visit(slot);
    }

private:
    const Slot* FindSlot(const VUnicodeString& name) const;
    Slot* FindSlot(const VUnicodeString& name) {
        return const_cast<Slot*>(static_cast<const VIniFileValueTable*>(this)->FindSlot(name));
    }

    std::vector<Slot> private_;
    std::vector<Slot> main_;
    // Positions in main_ by name. The views point into the slots' own names,
    // whose characters stay put when main_ grows (a string holds a pointer to
    // its block), and a slot's name never changes once it is made.
    std::unordered_map<std::wstring_view, uint32_t> mainIndex_;
};
