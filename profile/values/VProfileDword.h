// The storage kind of the scalar values (VProfile<T>): one 32-bit number
// value of a profile key. Scalars exchange their value as variants of their
// own type (GetVariant, SetVariant, and through them Write and Read); they do
// not support the text exchange of slots 8, 9, 12 and 13.
#pragma once

#include <cstdint>

#include "VProfileData.h"

class VProfileDword : public VProfileData {
public:
    using Stored = uint32_t;

    using VProfileData::VProfileData;

protected:
    // The number kept under name; false (with the key's record) when absent.
    static bool ReadNumber(VProfileKey& key, const VUnicodeString& name, uint32_t& number) {
        return key.GetDword(name, number);
    }
    // Writes number under the value's name; after a load under a former name
    // also deletes the former value (where the key holds one), a number's way
    // of being blanked.
    bool WriteNumber(VProfileKey& key, uint32_t number);
};
