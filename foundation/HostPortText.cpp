#include "HostPortText.h"

#include <string_view>

namespace {

template <class Char>
constexpr Char Literal(char character) {
    return static_cast<Char>(character);
}

}  // namespace

bool SplitHostPort(const char* text, VString& host, uint16_t& port) {
    if (!text) return false;
    const std::string_view whole(text);
    const size_t lastColon = whole.rfind(':');
    port = 0;
    if (lastColon == std::string_view::npos) {
        host = text;
        return true;
    }
    size_t hostBegin = 0;
    size_t hostEnd = lastColon;
    if (whole.find(':') < lastColon) {
        const size_t open = whole.find('[');
        const size_t close = whole.rfind(']');
        if ((open == std::string_view::npos) != (close == std::string_view::npos)) return false;
        if (open == std::string_view::npos) {
            host = text;
            return true;
        }
        // "[" first in the text also rules out a "[" after the "]".
        if (open != 0) return false;
        hostBegin = 1;
        hostEnd = close;
        if (lastColon < close) {
            // The last ":" is the address's own: no port, and nothing may trail.
            if (close + 1 != whole.size()) return false;
            host = VString(text + hostBegin, hostEnd - hostBegin);
            return true;
        }
        // "[::1]x:22" would otherwise pass as ::1 port 22.
        if (lastColon != close + 1) return false;
    }
    uint64_t number = 0;
    if (!VString::ParseUnsigned(text + lastColon + 1, number) || number > 0xFFFF) return false;
    host = VString(text + hostBegin, hostEnd - hostBegin);
    port = static_cast<uint16_t>(number);
    return true;
}

template <class Char>
VBasicString<Char> JoinHostPort(const VBasicString<Char>& host, const VBasicString<Char>& port) {
    VBasicString<Char> joined;
    const bool bracketed =
        host.IsEmpty() || host.Find(Literal<Char>(':')) != VBasicString<Char>::npos;
    if (bracketed) joined += Literal<Char>('[');
    joined += host;
    if (bracketed) joined += Literal<Char>(']');
    if (!port.IsEmpty()) {
        joined += Literal<Char>(':');
        joined += port;
    }
    return joined;
}

template VString JoinHostPort(const VString&, const VString&);
template VUnicodeString JoinHostPort(const VUnicodeString&, const VUnicodeString&);
