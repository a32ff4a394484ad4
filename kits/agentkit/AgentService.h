// AgentService: the SSH agent as the tray program runs it: the session's key
// store, the protocol, confirmation by message box, and the pipe server.
// Also the /AddKey command line, which hands a key file to the running
// agent. UI thread for Start, Stop and AddKeyThroughAgent.
#pragma once

#include <windows.h>

#include <memory>

#include "AgentKeyStore.h"
#include "AgentPipeServer.h"
#include "AgentProtocol.h"

// Asks the user in a message box (Yes/No, No by default) whether a client
// may use a key, naming the program and the key. Called on the pipe
// server's threads; the box has no owner and comes to the front.
class MessageBoxConfirm : public IAgentConfirm {
public:
    bool ConfirmUse(const AgentKeyInfo& key, const VUnicodeString& client) override;
};

class AgentService {
public:
    explicit AgentService(const wchar_t* pipeName = AgentPipeServer::DefaultPipeName,
                          const wchar_t* storeName = AgentKeyStore::CacheName);
    // Opens the store and starts serving; false with report when either fails.
    bool Start(VReportMessageParams& report);
    void Stop() { server_.Stop(); }
    AgentKeyStore& GetStore() { return store_; }

private:
    AgentKeyStore store_;
    MessageBoxConfirm confirm_;
    AgentProtocol protocol_;
    AgentPipeServer server_;
};

// Loads the key file at path (asking for its pass phrase in the Add Key
// window when it is sealed, with the lifetime and confirmation options) and
// adds it to the agent serving pipeName. False with report when the file
// cannot be read, the user cancels (report empty), or no agent takes the key.
bool AddKeyThroughAgent(const wchar_t* path, const wchar_t* pipeName, VReportMessageParams& report);
