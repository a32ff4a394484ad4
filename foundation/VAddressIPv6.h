// An IPv6 address with its port and scope. Text names the scope as a decimal
// interface index after "%" ("fe80::1%3"); a scope of 0 is not written.
#pragma once

#include "VInternetAddress.h"

class VAddressIPv6 final : public VInternetAddress<IPv6Family> {
public:
    // A local object is fine as long as nobody takes a reference to it;
    // one shared through the interface is allocated with new.
    VAddressIPv6() = default;

    uint32_t GetScopeId() const { return GetSocketAddress().sin6_scope_id; }
};
