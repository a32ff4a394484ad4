// An IP address with a port, socket type and protocol, as settings hold them
// in text ("10.0.0.1:22", "[fe80::1%3]:2222"). VAddressIPv4 and VAddressIPv6
// implement it; the operations are declared in the order the shared
// interface fixes.
#pragma once

#include <winsock2.h>
#include <ws2tcpip.h>

#include <cstddef>
#include <cstdint>

#include "VString.h"
#include "VUnknown.h"

class IInternetAddress : public IUnknown {
public:
    virtual bool IsValid() const = 0;
    // Both valid and of the same family; a zero port on either side matches
    // any port; then every address byte is equal.
    virtual bool Equals(const IInternetAddress& other) const = 0;
    // As Equals, comparing only the first bits of the addresses.
    virtual bool MatchesPrefix(const IInternetAddress& other, uint32_t bits) const = 0;
    virtual bool IsAnyAddress() const = 0;
    virtual bool IsLoopback() const = 0;

    // Every setter clears the validity first and answers false, leaving the
    // address invalid, when the input is not an address of this family.
    virtual bool SetFromSocketAddress(const sockaddr* address, int length) = 0;
    // Takes over the record's socket type and protocol as well.
    virtual bool SetFromAddressInfo(const addrinfo& info) = 0;
    // host is an address literal alone; the port is given apart.
    virtual bool SetFromText(const wchar_t* host, uint16_t port) = 0;
    virtual bool SetFromText(const char* host, uint16_t port) = 0;
    // "host" or "host:port" (IPv6 "[host]:port"), split by SplitHostPort.
    virtual bool SetFromText(const wchar_t* text) = 0;
    virtual bool SetFromText(const char* text) = 0;
    virtual void SetPort(uint16_t port) = 0;
    virtual void SetSocketType(int type) = 0;
    virtual void SetProtocol(int protocol) = 0;
    // The address in network order: 4 bytes for IPv4, 16 for IPv6.
    virtual bool SetFromBytes(const void* bytes, size_t length) = 0;

    // The address as text, with ":" and the decimal port when asked (for IPv6
    // too: "fe80::1:22", which JoinHostPort writes readably as "[fe80::1]:22");
    // empty for an invalid address.
    virtual VString ToString(bool withPort) const = 0;
    virtual VUnicodeString ToUnicodeString(bool withPort) const = 0;

protected:
    virtual ~IInternetAddress() = default;
};
