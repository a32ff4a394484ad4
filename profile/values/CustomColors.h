// CustomColors: the sixteen custom colours of the colour dialog, kept as one
// binary value (VProfileCustomColors).
//
// Block layout: COLORREF[16], 64 bytes, as CHOOSECOLORW.lpCustColors points
// to them: each 0x00BBGGRR, little-endian. A block of another size, or a
// colour with a non-zero top byte (not an RGB value), is refused.
#pragma once

#include <algorithm>

#include "VProfile2.h"
#include "VProfileBinary.h"

// Whether every colour is a plain RGB value (0x00BBGGRR), as the system's
// colour structures hold them.
inline bool ArePlainRgb(const COLORREF* colors, size_t count) {
    return std::all_of(colors, colors + count, [](COLORREF color) { return (color >> 24) == 0; });
}

struct CustomColors {
    static constexpr size_t Count = 16;

    // All white: the colour dialog shows an unused slot so.
    CustomColors() { std::fill(colors, colors + Count, RGB(255, 255, 255)); }

    friend bool operator==(const CustomColors& a, const CustomColors& b) {
        return std::equal(a.colors, a.colors + Count, b.colors);
    }

    COLORREF colors[Count];
};
static_assert(sizeof(CustomColors) == 64, "the block is COLORREF[16]");

template <>
struct VProfileValueTraits<CustomColors> : VProfileStructureBlock<CustomColors> {
    static bool FromStored(const Stored& in, CustomColors& value) {
        return VProfileStructureBlock::FromStored(in, value, [](const CustomColors& read) {
            return ArePlainRgb(read.colors, CustomColors::Count);
        });
    }
};

using VProfileCustomColors = VProfile2<CustomColors, VProfileBinary>;
