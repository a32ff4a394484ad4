#include "VAddressIPv4.h"

bool IPv4Family::ParseHost(const char* host, SocketAddress& address) {
    // The limited broadcast address can never name a peer or a listener.
    return inet_pton(AF_INET, host, &address.sin_addr) == 1 &&
           address.sin_addr.s_addr != INADDR_BROADCAST;
}

VString IPv4Family::FormatHost(const SocketAddress& address) {
    char text[23];
    if (!inet_ntop(AF_INET, &address.sin_addr, text, sizeof text)) return VString();
    return VString(text);
}

bool IPv4Family::IsLoopback(const SocketAddress& address) { return Bytes(address)[0] == 127; }
