// The shared body of VAddressIPv4 and VAddressIPv6: validity, socket type,
// protocol and the system's socket address of one family, with every
// IInternetAddress operation. The family (its socket address layout, literal
// parsing and formatting, loopback rule) comes from the Family traits.
//
// An address is used by one thread at a time.
#pragma once

#include <cstddef>
#include <cstdint>

#include "IInternetAddress.h"

template <class Family>
class VInternetAddress : public VUnknown<IInternetAddress> {
public:
    using SocketAddress = typename Family::SocketAddress;
    static constexpr size_t AddressLength = Family::AddressLength;

    // Valid: the all-zero address of the family, port 0, stream socket, TCP.
    VInternetAddress();

    bool IsValid() const override { return valid_; }
    bool Equals(const IInternetAddress& other) const override;
    // bits beyond the address length count as the whole address.
    bool MatchesPrefix(const IInternetAddress& other, uint32_t bits) const override;
    bool IsAnyAddress() const override;
    bool IsLoopback() const override;
    bool SetFromSocketAddress(const sockaddr* address, int length) override;
    bool SetFromAddressInfo(const addrinfo& info) override;
    // Wide text holding anything but ASCII is refused: no address or port
    // has other characters, and a code-page conversion could map look-alike
    // digits onto real ones.
    bool SetFromText(const wchar_t* host, uint16_t port) override;
    bool SetFromText(const char* host, uint16_t port) override;
    bool SetFromText(const wchar_t* text) override;
    bool SetFromText(const char* text) override;
    void SetPort(uint16_t port) override;
    void SetSocketType(int type) override { socketType_ = type; }
    void SetProtocol(int protocol) override { protocol_ = protocol; }
    bool SetFromBytes(const void* bytes, size_t length) override;
    VString ToString(bool withPort) const override;
    VUnicodeString ToUnicodeString(bool withPort) const override;

    uint16_t GetPort() const;
    int GetSocketType() const { return socketType_; }
    int GetProtocol() const { return protocol_; }
    const SocketAddress& GetSocketAddress() const { return address_; }
    // AddressLength bytes in network order.
    const uint8_t* GetAddressBytes() const { return Family::Bytes(address_); }

private:
    bool valid_ = true;
    int socketType_ = SOCK_STREAM;
    int protocol_ = IPPROTO_TCP;
    SocketAddress address_{};
};

// Where a family's socket address keeps its address bytes and its port.
template <class Address, ADDRESS_FAMILY family, size_t length, auto addressField, auto portField>
struct FamilyLayout {
    using SocketAddress = Address;
    static constexpr ADDRESS_FAMILY Family = family;
    static constexpr size_t AddressLength = length;

    static const uint8_t* Bytes(const Address& address) {
        return reinterpret_cast<const uint8_t*>(&(address.*addressField));
    }
    static uint8_t* Bytes(Address& address) {
        return reinterpret_cast<uint8_t*>(&(address.*addressField));
    }
    static u_short& Port(Address& address) { return address.*portField; }
    static u_short Port(const Address& address) { return address.*portField; }
};

struct IPv4Family
    : FamilyLayout<sockaddr_in, AF_INET, 4, &sockaddr_in::sin_addr, &sockaddr_in::sin_port> {
    // A dotted literal, refusing the limited broadcast address.
    static bool ParseHost(const char* host, SocketAddress& address);
    static VString FormatHost(const SocketAddress& address);
    static bool IsLoopback(const SocketAddress& address);
};

struct IPv6Family
    : FamilyLayout<sockaddr_in6, AF_INET6, 16, &sockaddr_in6::sin6_addr, &sockaddr_in6::sin6_port> {
    // A literal with an optional "%<decimal scope identifier>".
    static bool ParseHost(const char* host, SocketAddress& address);
    static VString FormatHost(const SocketAddress& address);
    static bool IsLoopback(const SocketAddress& address);
};

extern template class VInternetAddress<IPv4Family>;
extern template class VInternetAddress<IPv6Family>;
