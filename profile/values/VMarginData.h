// VMarginData: the page margins of printing, kept as one binary value
// (VProfileMarginData).
//
// Block layout, 20 bytes, little-endian: the rtMargin RECT of the page set-up
// dialog (PAGESETUPDLGW), then the units it is measured in, as that dialog's
// flags name them:
//   0 left  4 top  8 right  12 bottom (32-bit signed each)
//   16 units: PSD_INTHOUSANDTHSOFINCHES (4) or PSD_INHUNDREDTHSOFMILLIMETERS (8)
// A block of another size, a negative margin or other units is refused.
#pragma once

#include <windows.h>

#include <commdlg.h>  // after windows.h, which it needs

#include "VProfile2.h"
#include "VProfileBinary.h"

struct VMarginData {
    // An inch on every side.
    VMarginData() : margins{1000, 1000, 1000, 1000}, units(PSD_INTHOUSANDTHSOFINCHES) {}

    friend bool operator==(const VMarginData& a, const VMarginData& b) {
        const RECT &m = a.margins, &n = b.margins;
        return m.left == n.left && m.top == n.top && m.right == n.right && m.bottom == n.bottom &&
               a.units == b.units;
    }

    RECT margins;
    DWORD units;
};
static_assert(sizeof(VMarginData) == 20, "the block layout above");

template <>
struct VProfileValueTraits<VMarginData> : VProfileStructureBlock<VMarginData> {
    static bool FromStored(const Stored& in, VMarginData& value) {
        return VProfileStructureBlock::FromStored(in, value, [](const VMarginData& read) {
            const RECT& m = read.margins;
            return (read.units == PSD_INTHOUSANDTHSOFINCHES ||
                    read.units == PSD_INHUNDREDTHSOFMILLIMETERS) &&
                   m.left >= 0 && m.top >= 0 && m.right >= 0 && m.bottom >= 0;
        });
    }
};

using VProfileMarginData = VProfile2<VMarginData, VProfileBinary>;
