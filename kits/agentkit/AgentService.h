// AgentService: the SSH agent as the tray program runs it: the session's key
// store, the protocol, confirmation by message box, and the pipe server. The
// object holds the store's shared block from construction to destruction,
// so the keys outlive every other holder of the block. Also
// AddKeyThroughAgent, which hands a key file to the running agent. UI thread
// for Start, Stop and AddKeyThroughAgent.
#pragma once

#include <windows.h>

#include <memory>

#include "AddKeyDialog.h"
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
    // The session's store and pipe; nothing is served before Start.
    AgentService();
    // Starts serving; with holdStore, opens the key store now and holds it
    // until the service ends, else at the first request that needs it. False
    // with report when the store (if asked for now) or the pipe fails.
    bool Start(bool holdStore, VReportMessageParams& report);
    void Stop() { server_.Stop(); }

private:
    AgentKeyStore store_;
    MessageBoxConfirm confirm_;
    AgentProtocol protocol_;
    AgentPipeServer server_;
};

// Loads the key file at path (asking for its pass phrase in the Add Key
// window when it is sealed, which also offers options) and adds it, with
// options, to the agent serving pipeName; an agent still starting is waited
// for up to 10 seconds. While the window is up, *openDialog (when not null)
// points to it. False with report when the file cannot be loaded, no agent
// answers, or the agent refuses the key; false with report cleared (code 0)
// when the user cancels.
bool AddKeyThroughAgent(const VUnicodeString& path, AgentKeyOptions options,
                        const wchar_t* pipeName, VReportMessageParams& report,
                        VDialog** openDialog = nullptr);
