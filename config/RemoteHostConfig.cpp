#include "RemoteHostConfig.h"

#include <iterator>

#include "VCommandSocket.h"

namespace {

constexpr wchar_t UseFirewallName[] = L"Use Firewall";
constexpr wchar_t OlderPreConnectName[] = L"Local Shell Command Pre-connect";
constexpr wchar_t UserNameVariable[] = L"%USERNAME%";

}  // namespace

RemoteHostConfig::RemoteHostConfig(VProfileKey* key) : ProfileValueList(L"Remote Host") {
    Load(key);
}

void RemoteHostConfig::Load(VProfileKey* key) {
    ProfileLoadKey from(key);
    Load(from);
}

void RemoteHostConfig::Load(ProfileLoadKey& from) {
    hostname_.Load(from.For(hostname_.GetName()), VUnicodeString());
    uint32_t useFirewall = 0;
    if (!firewallName_.Load(from.For(firewallName_.GetName()), NoFirewall) &&
        from.For(UseFirewallName).GetDword(UseFirewallName, useFirewall) && useFirewall != 0)
        firewallName_.Load(from.None(), DefaultTerminalFirewall);
    username_.Load(from.For(username_.GetName()), VUnicodeString());
    // Found only under the older name, the command moves to the newer one now.
    if (preConnect_.LoadWithFormerName(from.For(preConnect_.GetName(), OlderPreConnectName),
                                       OlderPreConnectName, VUnicodeString()) &&
        preConnect_.IsModified())
        preConnect_.Save(from.Get(), false);
}

VUnicodeString RemoteHostConfig::GetUsername(bool expand) const {
    const VUnicodeString& stored = username_.Get();
    if (!expand || !stored.EqualsNoCase(UserNameVariable)) return stored;
    wchar_t expanded[256 + 1];
    const DWORD length = ExpandEnvironmentStringsW(UserNameVariable, expanded, 257);
    // Unexpanded (no such variable) or too long: the stored text, as it stands.
    if (length == 0 || length > 257) return stored;
    return VUnicodeString(expanded);
}

bool RemoteHostConfig::UsesFirewall() const {
    return !firewallName_.Get().IsEmpty() && !firewallName_.Get().EqualsNoCase(NoFirewall);
}

IStreamSocket* RemoteHostConfig::CreateConnectSocket(IStreamSocket* inner, ISocketEvents* events,
                                                     ISocketCommandStatus* reporter) const {
    if (preConnect_.Get().IsEmpty()) {
        inner->AddRef();
        inner->SetEventSink(events);
        return inner;
    }
    return new VCommandSocket(inner, events, reporter, preConnect_.Get());
}

bool RemoteHostConfig::Equals(const RemoteHostConfig& other) const {
    return SameTableValue(hostname_, other.hostname_) &&
           SameTableValue(firewallName_, other.firewallName_) &&
           SameTableValue(username_, other.username_) &&
           SameTableValue(preConnect_, other.preConnect_);
}

VProfileData& RemoteHostConfig::GetMember(size_t index) {
    VProfileData* const members[] = {&hostname_, &firewallName_, &username_, &preConnect_};
    if (index >= std::size(members)) throw VContainerOutOfRange();
    return *members[index];
}
