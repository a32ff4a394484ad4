// VLogFont: a font description, and VProfileLogFont, the typed value that
// keeps one as a binary value.
//
// Block layout: the system's LOGFONTW, 92 bytes, little-endian, as
// CreateFontIndirectW and the font dialog take it:
//   0 lfHeight  4 lfWidth  8 lfEscapement  12 lfOrientation  16 lfWeight
//   (32-bit each), 20 lfItalic  21 lfUnderline  22 lfStrikeOut  23 lfCharSet
//   24 lfOutPrecision  25 lfClipPrecision  26 lfQuality  27 lfPitchAndFamily
//   (one byte each), 28 lfFaceName (32 UTF-16 units, zero-terminated).
// The units after the face name's terminator are written as zeros and ignored
// when compared. A block of another size, a face name without terminator or a
// weight beyond 1000 is refused.
#pragma once

#include "VProfile2.h"
#include "VProfileBinary.h"

struct VLogFont : LOGFONTW {
    // All zero: the system's default font of the default height.
    VLogFont() : LOGFONTW{} {}
    // face (cut to 31 characters) at height (logical units; negative for the
    // character height, as LOGFONTW has it) and weight (FW_*).
    VLogFont(const wchar_t* face, LONG height, LONG weight = FW_NORMAL);

    // Replaces the face name, cut to 31 characters, zeroing the rest.
    void SetFaceName(const wchar_t* face);

    // Every field, and the face names up to their terminators.
    friend bool operator==(const VLogFont& a, const VLogFont& b);
};
static_assert(sizeof(VLogFont) == 92, "the block is the system's LOGFONTW");

template <>
struct VProfileValueTraits<VLogFont> : VProfileStructureBlock<VLogFont> {
    // The face name is copied up to its terminator, so the block is the same
    // for equal fonts.
    static bool ToStored(const VLogFont& value, Stored& out);
    static bool FromStored(const Stored& in, VLogFont& value);
};

using VProfileLogFont = VProfile2<VLogFont, VProfileBinary>;
