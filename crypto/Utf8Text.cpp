#include "Utf8Text.h"

namespace {

bool IsHighSurrogate(uint32_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
bool IsLowSurrogate(uint32_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

// The code point at index, advancing index past it; false for a lone surrogate.
bool NextCodePoint(const wchar_t* units, size_t length, size_t& index, uint32_t& codePoint) {
    const uint32_t unit = static_cast<uint16_t>(units[index++]);
    if (IsLowSurrogate(unit)) return false;
    if (!IsHighSurrogate(unit)) {
        codePoint = unit;
        return true;
    }
    if (index == length) return false;
    const uint32_t low = static_cast<uint16_t>(units[index]);
    if (!IsLowSurrogate(low)) return false;
    ++index;
    codePoint = 0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00);
    return true;
}

size_t Utf8Length(uint32_t codePoint) {
    return codePoint < 0x80 ? 1 : codePoint < 0x800 ? 2 : codePoint < 0x10000 ? 3 : 4;
}

constexpr size_t Malformed = static_cast<size_t>(-1);

// Decodes count bytes into units, which has room for count units. The
// number of units written, or Malformed.
size_t DecodeUtf8(const uint8_t* bytes, size_t count, wchar_t* units) {
    size_t written = 0;
    for (size_t index = 0; index < count;) {
        const uint8_t lead = bytes[index++];
        uint32_t c;
        size_t continuation;
        uint32_t minimum;  // smaller values are overlong forms
        if (lead < 0x80) {
            c = lead, continuation = 0, minimum = 0;
        } else if ((lead & 0xE0) == 0xC0) {
            c = lead & 0x1Fu, continuation = 1, minimum = 0x80;
        } else if ((lead & 0xF0) == 0xE0) {
            c = lead & 0x0Fu, continuation = 2, minimum = 0x800;
        } else if ((lead & 0xF8) == 0xF0) {
            c = lead & 0x07u, continuation = 3, minimum = 0x10000;
        } else {
            return Malformed;
        }
        if (continuation > count - index) return Malformed;
        for (size_t k = 0; k < continuation; ++k) {
            const uint8_t next = bytes[index++];
            if ((next & 0xC0) != 0x80) return Malformed;
            c = (c << 6) | (next & 0x3Fu);
        }
        if (c < minimum || c > 0x10FFFF || (c >= 0xD800 && c <= 0xDFFF)) return Malformed;
        if (c >= 0x10000) {
            units[written++] = static_cast<wchar_t>(0xD800 + ((c - 0x10000) >> 10));
            units[written++] = static_cast<wchar_t>(0xDC00 + ((c - 0x10000) & 0x3FF));
        } else {
            units[written++] = static_cast<wchar_t>(c);
        }
    }
    return written;
}

}  // namespace

bool MeasureUtf8(const VUnicodeString& text, size_t& bytes) noexcept {
    const wchar_t* units = text.c_str();
    const size_t length = text.GetLength();
    size_t total = 0;
    for (size_t index = 0; index < length;) {
        uint32_t codePoint;
        if (!NextCodePoint(units, length, index, codePoint)) return false;
        total += Utf8Length(codePoint);
    }
    bytes = total;
    return true;
}

void WriteUtf8(const VUnicodeString& text, uint8_t* target) noexcept {
    const wchar_t* units = text.c_str();
    const size_t length = text.GetLength();
    for (size_t index = 0; index < length;) {
        uint32_t c = 0;
        NextCodePoint(units, length, index, c);
        switch (Utf8Length(c)) {
            case 1:
                *target++ = static_cast<uint8_t>(c);
                break;
            case 2:
                *target++ = static_cast<uint8_t>(0xC0 | (c >> 6));
                *target++ = static_cast<uint8_t>(0x80 | (c & 0x3F));
                break;
            case 3:
                *target++ = static_cast<uint8_t>(0xE0 | (c >> 12));
                *target++ = static_cast<uint8_t>(0x80 | ((c >> 6) & 0x3F));
                *target++ = static_cast<uint8_t>(0x80 | (c & 0x3F));
                break;
            default:
                *target++ = static_cast<uint8_t>(0xF0 | (c >> 18));
                *target++ = static_cast<uint8_t>(0x80 | ((c >> 12) & 0x3F));
                *target++ = static_cast<uint8_t>(0x80 | ((c >> 6) & 0x3F));
                *target++ = static_cast<uint8_t>(0x80 | (c & 0x3F));
                break;
        }
    }
}

bool ReadUtf8(const uint8_t* bytes, size_t count, VUnicodeString& text) {
    // At most one UTF-16 unit per byte: the block is sized to that and
    // shortened when the text is complete.
    VUnicodeString result(text.GetSensitiveState());
    const size_t written = DecodeUtf8(bytes, count, result.GetBuffer(count));
    if (written == Malformed) {
        result.ReleaseBuffer(0);
        return false;
    }
    result.ReleaseBuffer(written);
    text.Swap(result);
    return true;
}
