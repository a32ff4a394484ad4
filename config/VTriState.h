// VTriState: a setting that is on, off, or left to be decided when the
// connection is made (by what the server announces, or by a global option).
// Kept as a 32-bit number by VProfile<VTriState>.
#pragma once

#include <cstdint>

#include "VProfile.h"

enum class VTriState : uint32_t {
    No = 0,
    Yes = 1,
    Automatic = 2,
};

// Exchanged as VT_UI4 both ways. A stored number beyond 2 (written by a newer
// client) reads as Automatic, which leaves the decision to the connection.
template <>
struct VProfileValueTraits<VTriState> : VProfileScalarTraits<VTriState, VT_UI4, VT_UI4> {
    static bool FromStored(const Stored& in, VTriState& value) {
        value = in <= static_cast<Stored>(VTriState::Automatic) ? static_cast<VTriState>(in)
                                                                : VTriState::Automatic;
        return true;
    }
    static void Put(VARIANT& variant, VTriState value) {
        V_UI4(&variant) = static_cast<ULONG>(value);
    }
    static VTriState Take(const VARIANT& variant) {
        VTriState value;
        FromStored(V_UI4(&variant), value);
        return value;
    }
};
