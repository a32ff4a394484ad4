#include "ConnectConfig.h"

VUnicodeString QuoteArgument(const VUnicodeString& argument) {
    if (!argument.IsEmpty() && argument.Find(L" ") == VUnicodeString::npos &&
        argument.Find(L"\t") == VUnicodeString::npos &&
        argument.Find(L"\"") == VUnicodeString::npos)
        return argument;
    VUnicodeString quoted(L"\"");
    size_t backslashes = 0;
    for (size_t i = 0; i < argument.GetLength(); ++i) {
        const wchar_t character = argument[i];
        if (character == L'\\') {
            ++backslashes;
        } else {
            // Backslashes before a quote are doubled, and the quote escaped.
            if (character == L'"')
                for (size_t extra = 0; extra <= backslashes; ++extra) quoted += L'\\';
            backslashes = 0;
        }
        quoted += character;
    }
    // Backslashes before the closing quote are doubled too.
    for (; backslashes > 0; --backslashes) quoted += L'\\';
    quoted += L'"';
    return quoted;
}
