// IRemoteHostConfig: the host a session connects to, the user it logs in as,
// the firewall it goes through and the command run before it connects.
#pragma once

#include "IClonable.h"
#include "VString.h"

class IRemoteHostConfig : public IClonable {
public:
    virtual const VUnicodeString& GetHostname() const = 0;
    virtual void SetHostname(const VUnicodeString& hostname) = 0;
    // The firewall's name among the program's firewall definitions; "None"
    // for a direct connection.
    virtual const VUnicodeString& GetFirewallName() const = 0;
    virtual void SetFirewallName(const VUnicodeString& name) = 0;
    // The stored user name; with expand, a stored "%USERNAME%" (any case,
    // nothing around it) gives the logged-on user's name instead.
    virtual VUnicodeString GetUsername(bool expand) const = 0;
    virtual void SetUsername(const VUnicodeString& username) = 0;
    // The command line run before each connection; empty for none.
    virtual const VUnicodeString& GetPreConnectCommand() const = 0;
    virtual void SetPreConnectCommand(const VUnicodeString& commandLine) = 0;

protected:
    ~IRemoteHostConfig() override = default;
};
