#include "VInternetAddress.h"

#include <algorithm>
#include <charconv>
#include <cstring>

#include "HostPortText.h"

namespace {

// False for a null text or any character beyond ASCII.
bool ToAscii(const wchar_t* text, VString& narrow) {
    if (!text) return false;
    const size_t length = std::wcslen(text);
    if (std::any_of(text, text + length, [](wchar_t c) { return c > 0x7F; })) return false;
    char* buffer = narrow.GetBuffer(length);
    std::transform(text, text + length, buffer, [](wchar_t c) { return static_cast<char>(c); });
    narrow.ReleaseBuffer(length);
    return true;
}

}  // namespace

template <class Family>
VInternetAddress<Family>::VInternetAddress() {
    // Every socket address starts with its family, the common sockaddr header.
    reinterpret_cast<sockaddr*>(&address_)->sa_family = Family::Family;
}

template <class Family>
bool VInternetAddress<Family>::Equals(const IInternetAddress& other) const {
    return MatchesPrefix(other, AddressLength * 8);
}

template <class Family>
bool VInternetAddress<Family>::MatchesPrefix(const IInternetAddress& other, uint32_t bits) const {
    const auto* peer = dynamic_cast<const VInternetAddress*>(&other);
    if (!valid_ || !peer || !peer->valid_) return false;
    const uint16_t port = GetPort();
    const uint16_t peerPort = peer->GetPort();
    if (port != 0 && peerPort != 0 && port != peerPort) return false;

    bits = std::min<uint32_t>(bits, AddressLength * 8);
    const uint8_t* mine = GetAddressBytes();
    const uint8_t* theirs = peer->GetAddressBytes();
    const size_t wholeBytes = bits / 8;
    if (std::memcmp(mine, theirs, wholeBytes) != 0) return false;
    const uint32_t restBits = bits % 8;
    if (restBits == 0) return true;
    const auto mask = static_cast<uint8_t>(0xFF << (8 - restBits));
    return ((mine[wholeBytes] ^ theirs[wholeBytes]) & mask) == 0;
}

template <class Family>
bool VInternetAddress<Family>::IsAnyAddress() const {
    const uint8_t* bytes = GetAddressBytes();
    return valid_ &&
           std::all_of(bytes, bytes + AddressLength, [](uint8_t byte) { return byte == 0; });
}

template <class Family>
bool VInternetAddress<Family>::IsLoopback() const {
    return valid_ && Family::IsLoopback(address_);
}

template <class Family>
bool VInternetAddress<Family>::SetFromSocketAddress(const sockaddr* address, int length) {
    valid_ = false;
    if (!address || length < static_cast<int>(sizeof(SocketAddress)) ||
        address->sa_family != Family::Family)
        return false;
    std::memcpy(&address_, address, sizeof(SocketAddress));
    valid_ = true;
    return true;
}

template <class Family>
bool VInternetAddress<Family>::SetFromAddressInfo(const addrinfo& info) {
    if (!SetFromSocketAddress(info.ai_addr, static_cast<int>(info.ai_addrlen))) return false;
    socketType_ = info.ai_socktype;
    protocol_ = info.ai_protocol;
    return true;
}

template <class Family>
bool VInternetAddress<Family>::SetFromText(const wchar_t* host, uint16_t port) {
    VString narrow;
    if (!ToAscii(host, narrow)) {
        valid_ = false;
        return false;
    }
    return SetFromText(narrow.c_str(), port);
}

template <class Family>
bool VInternetAddress<Family>::SetFromText(const char* host, uint16_t port) {
    valid_ = false;
    SetPort(port);
    valid_ = host && Family::ParseHost(host, address_);
    return valid_;
}

template <class Family>
bool VInternetAddress<Family>::SetFromText(const wchar_t* text) {
    VString narrow;
    if (!ToAscii(text, narrow)) {
        valid_ = false;
        return false;
    }
    return SetFromText(narrow.c_str());
}

template <class Family>
bool VInternetAddress<Family>::SetFromText(const char* text) {
    VString host;
    uint16_t port = 0;
    if (!SplitHostPort(text, host, port)) {
        valid_ = false;
        return false;
    }
    return SetFromText(host.c_str(), port);
}

template <class Family>
void VInternetAddress<Family>::SetPort(uint16_t port) {
    Family::Port(address_) = htons(port);
}

template <class Family>
bool VInternetAddress<Family>::SetFromBytes(const void* bytes, size_t length) {
    valid_ = false;
    if (!bytes || length != AddressLength) return false;
    std::memcpy(Family::Bytes(address_), bytes, AddressLength);
    valid_ = true;
    return true;
}

template <class Family>
VString VInternetAddress<Family>::ToString(bool withPort) const {
    if (!valid_) return VString();
    const VString host = Family::FormatHost(address_);
    if (!withPort) return host;
    char digits[8];
    const auto written = std::to_chars(digits, digits + sizeof digits, GetPort());
    // "address:port" for both families, as settings have always been written;
    // for IPv6 that text does not read back (JoinHostPort's "[address]:port" does).
    return host + ":" + VString(digits, static_cast<size_t>(written.ptr - digits));
}

template <class Family>
VUnicodeString VInternetAddress<Family>::ToUnicodeString(bool withPort) const {
    return VUnicodeString(ToString(withPort));  // ASCII only, so any code page converts it
}

template <class Family>
uint16_t VInternetAddress<Family>::GetPort() const {
    return ntohs(Family::Port(address_));
}

template class VInternetAddress<IPv4Family>;
template class VInternetAddress<IPv6Family>;
