#include "HexDigits.h"

#include <utility>

namespace {

// The value of a digit, or -1.
int DigitValue(wchar_t digit) {
    if (digit >= L'0' && digit <= L'9') return digit - L'0';
    if (digit >= L'a' && digit <= L'f') return digit - L'a' + 10;
    if (digit >= L'A' && digit <= L'F') return digit - L'A' + 10;
    return -1;
}

}  // namespace

void AppendHexDigits(VUnicodeString& text, const uint8_t* bytes, size_t count, bool upperCase) {
    const wchar_t* digits = upperCase ? L"0123456789ABCDEF" : L"0123456789abcdef";
    const size_t start = text.GetLength();
    wchar_t* target = text.GetBuffer(start + 2 * count) + start;
    for (size_t index = 0; index < count; ++index) {
        *target++ = digits[bytes[index] >> 4];
        *target++ = digits[bytes[index] & 0x0F];
    }
    text.ReleaseBuffer(start + 2 * count);
}

bool DecodeHexDigits(const wchar_t* digits, size_t count, VBasicBuffer& bytes) {
    if (count % 2 != 0) return false;
    VBasicBuffer decoded(count / 2);
    for (size_t index = 0; index < count; index += 2) {
        const int high = DigitValue(digits[index]);
        const int low = DigitValue(digits[index + 1]);
        if (high < 0 || low < 0) return false;
        const auto byte = static_cast<uint8_t>(high << 4 | low);
        decoded.Append(&byte, 1);
    }
    bytes = std::move(decoded);
    return true;
}
