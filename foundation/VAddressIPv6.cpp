#include "VAddressIPv6.h"

#include <algorithm>
#include <charconv>
#include <cstring>

namespace {

constexpr char ScopeMark = '%';

// Only decimal digits, nothing around them, within 32 bits.
bool ParseScope(const char* text, ULONG& scope) {
    const char* end = text + std::strlen(text);
    if (text == end || !std::all_of(text, end, [](char c) { return c >= '0' && c <= '9'; }))
        return false;
    uint32_t value = 0;
    const auto parsed = std::from_chars(text, end, value);
    if (parsed.ec != std::errc() || parsed.ptr != end) return false;
    scope = value;
    return true;
}

}  // namespace

bool IPv6Family::ParseHost(const char* host, SocketAddress& address) {
    const char* mark = std::strchr(host, ScopeMark);
    address.sin6_scope_id = 0;
    if (!mark) return inet_pton(AF_INET6, host, &address.sin6_addr) == 1;
    // The system's literal reader knows no scope: it gets the address alone.
    const VString literal(host, static_cast<size_t>(mark - host));
    return ParseScope(mark + 1, address.sin6_scope_id) &&
           inet_pton(AF_INET6, literal.c_str(), &address.sin6_addr) == 1;
}

VString IPv6Family::FormatHost(const SocketAddress& address) {
    char text[INET6_ADDRSTRLEN];
    if (!inet_ntop(AF_INET6, &address.sin6_addr, text, sizeof text)) return VString();
    VString formatted(text);
    if (address.sin6_scope_id != 0) {
        char digits[12];
        const auto written = std::to_chars(digits, digits + sizeof digits, address.sin6_scope_id);
        formatted += ScopeMark;
        formatted.Append(digits, static_cast<size_t>(written.ptr - digits));
    }
    return formatted;
}

bool IPv6Family::IsLoopback(const SocketAddress& address) {
    static constexpr uint8_t loopback[AddressLength] = {0, 0, 0, 0, 0, 0, 0, 0,
                                                        0, 0, 0, 0, 0, 0, 0, 1};
    return std::memcmp(Bytes(address), loopback, AddressLength) == 0;
}
