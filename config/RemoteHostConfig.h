// RemoteHostConfig: the remote host part of a session, kept in the session's
// own key: "Hostname", "Firewall Name", "Username" and "Local Shell Command
// Pre-connect V2". The pre-connect command runs through a command socket
// (VCommandSocket) that this object puts around the connection's socket.
//
// Older sessions carry two earlier forms, which loading converts:
// - no "Firewall Name" but the dword "Use Firewall" set: the firewall is
//   "DefaultTerminalFirewall" (the one firewall older versions had);
// - "Local Shell Command Pre-connect": carried into the V2 name and blanked,
//   both written to the key at once (kept for the next Save when the key
//   cannot be written).
//
// Used by one thread at a time; reference-counted atomically.
#pragma once

#include "IRemoteHostConfig.h"
#include "ISocket.h"
#include "ISocketCommandStatus.h"
#include "ProfileValueList.h"
#include "SessionValueKinds.h"

class RemoteHostConfig final : public VUnknown<IRemoteHostConfig>, public ProfileValueList {
public:
    static constexpr wchar_t NoFirewall[] = L"None";
    static constexpr wchar_t DefaultTerminalFirewall[] = L"DefaultTerminalFirewall";

    // Reads the values from key (null, or a key that holds them not: the
    // defaults). Allocate with new, or keep it in an object that owns it.
    explicit RemoteHostConfig(VProfileKey* key = nullptr);

    // Reads every value again from key (null: the defaults).
    void Load(VProfileKey* key);
    void Load(ProfileLoadKey& from);

    IClonable* Clone() const override { return new RemoteHostConfig(*this); }

    const VUnicodeString& GetHostname() const override { return hostname_.Get(); }
    void SetHostname(const VUnicodeString& hostname) override { hostname_.Set(hostname); }
    const VUnicodeString& GetFirewallName() const override { return firewallName_.Get(); }
    void SetFirewallName(const VUnicodeString& name) override { firewallName_.Set(name); }
    VUnicodeString GetUsername(bool expand) const override;
    void SetUsername(const VUnicodeString& username) override { username_.Set(username); }
    const VUnicodeString& GetPreConnectCommand() const override { return preConnect_.Get(); }
    void SetPreConnectCommand(const VUnicodeString& commandLine) override {
        preConnect_.Set(commandLine);
    }

    // Whether the connection goes through a firewall (a name other than "None").
    bool UsesFirewall() const;

    // The socket to connect with: inner itself (a new reference) when there
    // is no pre-connect command, else a VCommandSocket around inner that runs
    // the command before each connect and reports its start and end to
    // reporter (may be null). events (may be null) hears the socket's
    // events. The caller releases the result.
    IStreamSocket* CreateConnectSocket(IStreamSocket* inner, ISocketEvents* events,
                                       ISocketCommandStatus* reporter) const;

    bool Equals(const RemoteHostConfig& other) const;

    size_t GetMemberCount() const override { return 4; }
    VProfileData& GetMember(size_t index) override;
    using ProfileValueList::GetMember;

private:
    SessionKind::Text hostname_{L"Hostname"};
    SessionKind::Text firewallName_{L"Firewall Name", NoFirewall};
    SessionKind::Text username_{L"Username"};
    SessionKind::Text preConnect_{L"Local Shell Command Pre-connect V2"};
};
