#include "VProfileMultiLineString.h"

VStringArray VProfileMultiLineSz::SplitLines(const VUnicodeString& text) {
    VStringArray lines;
    const wchar_t* start = text.c_str();
    const wchar_t* const end = start + text.GetLength();
    for (const wchar_t* at = start; at <= end; ++at) {
        if (at < end && *at != L'\r' && *at != L'\n') continue;
        if (at > start) lines.Add(VUnicodeString(start, static_cast<size_t>(at - start)));
        start = at + 1;
    }
    return lines;
}

VUnicodeString VProfileMultiLineSz::JoinLines(const VStringArray& lines) {
    VUnicodeString text;
    for (const VUnicodeString& line : lines) {
        if (!text.IsEmpty()) text += L"\r\n";
        text += line;
    }
    return text;
}

bool VProfileMultiLineSz::ReadValue(VProfileKey& key, const VUnicodeString& name,
                                    VUnicodeString& out) {
    VStringArray lines;
    if (!key.GetMultiString(name, lines)) return false;
    out = JoinLines(lines);
    return true;
}

bool VProfileMultiLineSz::WriteValue(VProfileKey& key, const VUnicodeString& name,
                                     const VUnicodeString& value) {
    return key.SetMultiString(name, SplitLines(value));
}
