// The session database of the program that hosts the configuration library:
// where it keeps sessions and firewall definitions. The library reaches it
// through the host executable's export "GetSessionDatabaseImpl", which a
// host that keeps a database provides:
//
//   extern "C" __declspec(dllexport) ISessionDatabase* GetSessionDatabaseImpl();
//
// returning an object that lives as long as the process (no reference is
// handed over). Traywell itself exports none: what its prompts are told to
// save is then kept for the connection only.
#pragma once

#include "FirewallConfig.h"
#include "VReportMessageParams.h"

class ISessionDatabase : public IUnknown {
public:
    // Writes firewall's stored values back under its name. False, with
    // report telling why, when it cannot. UI thread.
    virtual bool SaveFirewall(FirewallConfig& firewall, VReportMessageParams& report) = 0;

protected:
    virtual ~ISessionDatabase() = default;
};

using GetSessionDatabaseImplFunction = ISessionDatabase* (*)();

// The host's database, looked up once in the process's executable and kept;
// null when the host exports none. Any thread.
ISessionDatabase* GetSessionDatabase();
