// ColorScheme: the colours of a terminal window, kept as one binary value
// (VProfileColorScheme).
//
// Block layout, 84 bytes, little-endian, in the manner of the system's
// structures that begin with their own size:
//   0 cbSize (84)  4 foreground  8 background  12 bold foreground
//   16 bold background  20 ansi[16]: the sixteen ANSI colours, black, red,
//   green, yellow, blue, magenta, cyan, white, then their bright forms.
// Every colour is a COLORREF (0x00BBGGRR). A block of another size, another
// cbSize or a colour with a non-zero top byte is refused.
#pragma once

#include <algorithm>

#include "CustomColors.h"
#include "VProfile2.h"
#include "VProfileBinary.h"

struct ColorScheme {
    static constexpr size_t AnsiCount = 16;

    // Light grey on black, bold in white, with the classic console palette.
    ColorScheme();

    friend bool operator==(const ColorScheme& a, const ColorScheme& b) {
        return a.cbSize == b.cbSize && a.foreground == b.foreground &&
               a.background == b.background && a.boldForeground == b.boldForeground &&
               a.boldBackground == b.boldBackground &&
               std::equal(a.ansi, a.ansi + AnsiCount, b.ansi);
    }

    DWORD cbSize;
    COLORREF foreground;
    COLORREF background;
    COLORREF boldForeground;
    COLORREF boldBackground;
    COLORREF ansi[AnsiCount];
};
static_assert(sizeof(ColorScheme) == 84, "the block layout above");

template <>
struct VProfileValueTraits<ColorScheme> : VProfileStructureBlock<ColorScheme> {
    static bool FromStored(const Stored& in, ColorScheme& value) {
        return VProfileStructureBlock::FromStored(in, value, [](const ColorScheme& read) {
            const COLORREF named[] = {read.foreground, read.background, read.boldForeground,
                                      read.boldBackground};
            return read.cbSize == sizeof(ColorScheme) && ArePlainRgb(named, 4) &&
                   ArePlainRgb(read.ansi, ColorScheme::AnsiCount);
        });
    }
};

using VProfileColorScheme = VProfile2<ColorScheme, VProfileBinary>;
