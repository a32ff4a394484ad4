// Strict conversion between the UTF-16 of our strings and the UTF-8 that the
// pass-phrase form stores and derives its key from. Ill-formed input (a lone
// surrogate, a bad UTF-8 sequence) is refused rather than replaced, so that a
// text never comes back different from what was protected.
#pragma once

#include <cstddef>
#include <cstdint>

#include "VString.h"

// The number of UTF-8 bytes of text; false when text holds a lone surrogate.
bool MeasureUtf8(const VUnicodeString& text, size_t& bytes) noexcept;

// Writes the UTF-8 form of text, which MeasureUtf8 accepted, to target.
void WriteUtf8(const VUnicodeString& text, uint8_t* target) noexcept;

// Replaces text (keeping its sensitivity) with the UTF-16 form of count
// bytes of UTF-8. False, with text unchanged, for an ill-formed sequence, an
// encoded surrogate or an overlong form.
bool ReadUtf8(const uint8_t* bytes, size_t count, VUnicodeString& text);
