// ISessionConfig: what the tray program asks of a saved session: which it
// is, whether it is the default session, its protocol, and the command line
// that opens it in the terminal client.
#pragma once

#include "IClonable.h"
#include "VString.h"

class ISessionConfig : public IClonable {
public:
    // The session's name (the last part of its path) and its path below "Sessions".
    virtual const VUnicodeString& GetSessionName() const = 0;
    virtual const VUnicodeString& GetSessionPath() const = 0;
    // Both the name and the path are exactly "Default".
    virtual bool IsDefaultSession() const = 0;
    // The protocol the session connects with, for the mode it was read for.
    virtual VUnicodeString GetProtocolName() const = 0;
    // The arguments that open the session in the terminal client.
    virtual VUnicodeString GetCommandLineForm() const = 0;

protected:
    ~ISessionConfig() override = default;
};
