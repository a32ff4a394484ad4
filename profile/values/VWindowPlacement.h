// VWindowPlacement: where a window sits and how it is shown, kept as one
// binary value (VProfileWindowPlacement).
//
// Block layout: the system's WINDOWPLACEMENT, 44 bytes, little-endian, as
// GetWindowPlacement fills it and SetWindowPlacement takes it:
//   0 length (44)  4 flags (WPF_*)  8 showCmd (SW_*)
//   12 ptMinPosition (x, y)  20 ptMaxPosition (x, y)
//   28 rcNormalPosition (left, top, right, bottom), in workspace coordinates
// A block of another size, another length field, a showCmd beyond SW_MAX or
// flags beyond the WPF_* bits is refused.
#pragma once

#include <cstring>

#include "VProfile2.h"
#include "VProfileBinary.h"

struct VWindowPlacement : WINDOWPLACEMENT {
    // Shown normally, with no position: the window chooses its own.
    VWindowPlacement() : WINDOWPLACEMENT{} {
        length = sizeof(WINDOWPLACEMENT);
        showCmd = SW_SHOWNORMAL;
    }
    // WINDOWPLACEMENT has no padding: every member is 32 bits wide.
    friend bool operator==(const VWindowPlacement& a, const VWindowPlacement& b) {
        return std::memcmp(static_cast<const WINDOWPLACEMENT*>(&a),
                           static_cast<const WINDOWPLACEMENT*>(&b), sizeof(WINDOWPLACEMENT)) == 0;
    }
};
static_assert(sizeof(VWindowPlacement) == 44, "the block is the system's WINDOWPLACEMENT");

template <>
struct VProfileValueTraits<VWindowPlacement> : VProfileStructureBlock<VWindowPlacement> {
    static bool FromStored(const Stored& in, VWindowPlacement& value) {
        return VProfileStructureBlock::FromStored(in, value, [](const VWindowPlacement& read) {
            constexpr UINT knownFlags =
                WPF_SETMINPOSITION | WPF_RESTORETOMAXIMIZED | WPF_ASYNCWINDOWPLACEMENT;
            return read.length == sizeof(WINDOWPLACEMENT) && read.showCmd <= SW_MAX &&
                   (read.flags & ~knownFlags) == 0;
        });
    }
};

using VProfileWindowPlacement = VProfile2<VWindowPlacement, VProfileBinary>;
