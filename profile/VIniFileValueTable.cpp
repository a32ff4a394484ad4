#include "VIniFileValueTable.h"

#include "PrivateValueNames.h"

VIniFileValueTable::VIniFileValueTable() {
    private_.reserve(PrivateValueNameCount);
    for (const VUnicodeString& name : GetPrivateValueNames()) private_.push_back(Slot{name, nullptr, true});
}

const VIniFileValueTable::Slot* VIniFileValueTable::FindSlot(const VUnicodeString& name) const {
    const int privateIndex = FindPrivateValueName(name);
    if (privateIndex >= 0) return &private_[static_cast<size_t>(privateIndex)];
    const auto found = mainIndex_.find(std::wstring_view(name.c_str(), name.GetLength()));
    return found == mainIndex_.end() ? nullptr : &main_[found->second];
}

VIniFileData* VIniFileValueTable::Find(const VUnicodeString& name) const {
    const Slot* slot = FindSlot(name);
    return slot ? slot->value.get() : nullptr;
}

void VIniFileValueTable::Store(const VUnicodeString& name, std::unique_ptr<VIniFileData> value) {
    if (Slot* slot = FindSlot(name)) {
        slot->value = std::move(value);
        return;
    }
    main_.push_back(Slot{name, std::move(value), false});
    const VUnicodeString& kept = main_.back().name;
    mainIndex_.emplace(std::wstring_view(kept.c_str(), kept.GetLength()), static_cast<uint32_t>(main_.size() - 1));
}

bool VIniFileValueTable::Remove(const VUnicodeString& name) {
    Slot* slot = FindSlot(name);
    if (!slot || !slot->value) return false;
    slot->value.reset();
    return true;
}

bool VIniFileValueTable::HasPrivateValue() const {
    for (const Slot& slot : private_)
        if (slot.value) return true;
    return false;
}
