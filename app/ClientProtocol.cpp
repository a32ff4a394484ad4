#include "ClientProtocol.h"

#include <cwchar>

namespace ClientProtocol {

size_t SessionDataSize(const VArray<VUnicodeString>& sessions) {
    size_t size = 0;
    for (const VUnicodeString& session : sessions)
        size += (session.GetLength() + 1) * sizeof(wchar_t);
    return size;
}

bool WriteSessions(IBuffer& buffer, const VArray<VUnicodeString>& sessions) {
    for (const VUnicodeString& session : sessions) {
        // c_str() is NUL-terminated, so the terminator is copied with the text.
        if (!buffer.Append(session.c_str(), (session.GetLength() + 1) * sizeof(wchar_t)))
            return false;
    }
    return true;
}

VArray<VUnicodeString> ReadSessions(const void* data, size_t length) {
    VArray<VUnicodeString> sessions;
    const auto* text = static_cast<const wchar_t*>(data);
    const size_t count = length / sizeof(wchar_t);
    size_t start = 0;
    while (start < count) {
        size_t end = start;
        while (end < count && text[end] != L'\0') ++end;
        if (end == start) break;
        sessions.Add(VUnicodeString(text + start, end - start));
        start = end + 1;
    }
    return sessions;
}

void SplitSession(const VUnicodeString& session, uint32_t& number, VUnicodeString& caption) {
    number = 0;
    const size_t comma = session.Find(L',');
    if (comma == VUnicodeString::npos) {
        caption = session.Left(MaxCaptionLength);
        return;
    }
    uint64_t parsed = 0;
    if (session.Left(comma).ParseUnsigned(parsed) && parsed <= 0xFFFFFFFFu)
        number = static_cast<uint32_t>(parsed);
    caption = session.Mid(comma + 1, MaxCaptionLength);
}

}  // namespace ClientProtocol
