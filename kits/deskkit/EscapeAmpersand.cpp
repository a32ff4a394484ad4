#include "EscapeAmpersand.h"

VUnicodeString EscapeAmpersand(const VUnicodeString& text) {
    VUnicodeString escaped = text.Left(0);  // empty, with text's sensitivity
    for (size_t start = 0; start < text.GetLength();) {
        size_t end = text.Find(L'&', start);
        end = end == VUnicodeString::npos ? text.GetLength() : end + 1;
        escaped.Append(text.c_str() + start, end - start);
        if (text.GetAt(end - 1) == L'&') escaped.Append(L'&');
        start = end;
    }
    return escaped;
}
