// The hexadecimal digits of the stored protected forms: two per byte, the
// high half first.
#pragma once

#include <cstddef>
#include <cstdint>

#include "VBasicBuffer.h"
#include "VString.h"

// Appends two digits per byte to text ("%1!02x!" or, with upperCase, "%1!02X!").
void AppendHexDigits(VUnicodeString& text, const uint8_t* bytes, size_t count, bool upperCase);

// Replaces bytes with a buffer of the count / 2 bytes that count digits
// (either case) spell. False, with bytes unchanged, for an odd count or a
// character that is not a hexadecimal digit.
bool DecodeHexDigits(const wchar_t* digits, size_t count, VBasicBuffer& bytes);
