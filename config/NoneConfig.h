// NoneConfig: the connection part of the protocol "None", a session that
// connects nowhere. It stores no values and answers "None" where a protocol
// or firewall name is asked of it.
#pragma once

#include "ConnectConfig.h"

class NoneConfig final : public ConnectConfig {
public:
    static constexpr wchar_t ProtocolName[] = L"None";

    NoneConfig() : ConnectConfig(ProtocolName) {}

    IClonable* Clone() const override { return new NoneConfig(*this); }
    void Load(ProfileLoadKey&) override {}
    VUnicodeString GetFirewallName(const RemoteHostConfig&) const override { return ProtocolName; }
    // Nothing to connect to.
    VUnicodeString GetArguments(const RemoteHostConfig&) const override { return {}; }
    bool Equals(const ConnectConfig& other) const override {
        return dynamic_cast<const NoneConfig*>(&other) != nullptr;
    }

    size_t GetMemberCount() const override { return 0; }
    VProfileData& GetMember(size_t) override { throw VContainerOutOfRange(); }
    using ProfileValueList::GetMember;
};
