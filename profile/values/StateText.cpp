#include "StateText.h"

#include <climits>
#include <cstdint>

namespace StateText {

VArray<VUnicodeString> Split(const VUnicodeString& text, wchar_t separator) {
    VArray<VUnicodeString> parts;
    size_t start = 0;
    for (;;) {
        const size_t end = text.Find(separator, start);
        if (end == VUnicodeString::npos) break;
        parts.Add(text.Mid(start, end - start));
        start = end + 1;
    }
    parts.Add(text.Mid(start));
    return parts;
}

namespace {

bool ParseInteger(const VUnicodeString& text, int& number) {
    const size_t length = text.GetLength();
    const bool negative = length > 0 && text[0] == L'-';
    const size_t first = negative ? 1 : 0;
    if (length == first) return false;
    int64_t magnitude = 0;
    for (size_t i = first; i < length; ++i) {
        const wchar_t digit = text[i];
        if (digit < L'0' || digit > L'9') return false;
        magnitude = magnitude * 10 + (digit - L'0');
        if (magnitude > int64_t{INT_MAX} + 1) return false;
    }
    const int64_t value = negative ? -magnitude : magnitude;
    if (value > INT_MAX) return false;
    number = static_cast<int>(value);
    return true;
}

}  // namespace

bool ParseIntegers(const VUnicodeString& text, VArray<int>& numbers) {
    VArray<int> parsed;
    if (!text.IsEmpty()) {
        for (const VUnicodeString& part : Split(text, L',')) {
            int number = 0;
            if (!ParseInteger(part, number)) return false;
            parsed.Add(number);
        }
    }
    numbers = parsed;
    return true;
}

VUnicodeString FormatIntegers(const VArray<int>& numbers) {
    VUnicodeString text;
    for (const int number : numbers) {
        if (!text.IsEmpty()) text += L',';
        VUnicodeString digits;
        digits.FormatPrintf(16, L"%d", number);
        text += digits;
    }
    return text;
}

}  // namespace StateText
