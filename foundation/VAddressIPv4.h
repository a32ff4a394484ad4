// An IPv4 address with its port, parsed from and formatted to dotted text.
// The limited broadcast address 255.255.255.255 is refused as text input.
#pragma once

#include "VInternetAddress.h"

class VAddressIPv4 final : public VInternetAddress<IPv4Family> {
public:
    // A local object is fine as long as nobody takes a reference to it;
    // one shared through the interface is allocated with new.
    VAddressIPv4() = default;
};
