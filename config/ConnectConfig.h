// ConnectConfig: the connection part of a session for one protocol of the
// protocol table (its port, its device, its command), read from the
// session's own key. The host, user and firewall that network protocols
// share are the session's RemoteHostConfig, which the part is given when
// asked. ConnectConfigPtr is a handle to one part.
//
// Used by one thread at a time; reference-counted atomically.
#pragma once

#include "IClonable.h"
#include "ProfileLoadKey.h"
#include "ProfileValueList.h"
#include "RemoteHostConfig.h"

class ConnectConfig : public VUnknown<IClonable>, public ProfileValueList {
public:
    // The protocol's name as the protocol table has it.
    const VUnicodeString& GetProtocolName() const { return GetName(); }

    // Reads the part's values from the session's key.
    virtual void Load(ProfileLoadKey& from) = 0;
    // The firewall this connection goes through, host being the session's
    // remote host; "None" for a direct one.
    virtual VUnicodeString GetFirewallName(const RemoteHostConfig& host) const = 0;
    // What the terminal client's command line takes to open this connection
    // (the protocol, its options, the host last); empty when there is
    // nothing to connect to.
    virtual VUnicodeString GetArguments(const RemoteHostConfig& host) const = 0;
    // other is a part of the same protocol holding equal values.
    virtual bool Equals(const ConnectConfig& other) const = 0;

protected:
    explicit ConnectConfig(const VUnicodeString& protocolName) : ProfileValueList(protocolName) {}
};

using ConnectConfigPtr = VRefPtr<ConnectConfig>;

// One command-line argument as the C runtime splits command lines: quoted
// when it is empty or holds a blank, tab or quote, with quotes and the
// backslashes before them escaped.
VUnicodeString QuoteArgument(const VUnicodeString& argument);
