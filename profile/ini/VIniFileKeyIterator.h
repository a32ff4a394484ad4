// VIniFileKey::Iterator: the values or the subkeys of an INI-file key, each
// once and sorted by name, as they stood when the iterator was made.
#pragma once

#include <cstdint>
#include <map>

#include "VIniFileKey.h"

class VIniFileKey::Iterator : public VProfilePrivateKeyIterator {
public:
    // With values set: the key's stored values with their kinds, in exact
    // (case-sensitive) name order; deleted values are not listed. Otherwise:
    // the subkeys found in the key's folder - folders, and values files named
    // without their ".ini" - with the kind ProfileSubkey, in name order without
    // regard to case, since the file system does not tell "a" from "A".
    // A folder that cannot be listed lists nothing; the reason goes to the
    // key's error record and to the debugger output.
    Iterator(VIniFileKey& key, bool values);

    bool Next(VUnicodeString& name, uint32_t& kind) override;
    bool Next(VUnicodeString& name) override;

private:
    struct NameOrder {
        bool ignoreCase;
        bool operator()(const VUnicodeString& a, const VUnicodeString& b) const {
            return ignoreCase ? a.CompareNoCase(b) < 0 : a.Compare(b) < 0;
        }
    };

    void ListSubkeys(VIniFileKey& key);

    std::map<VUnicodeString, uint32_t, NameOrder> entries_;
};
