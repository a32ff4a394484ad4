// AgentPipeClient: our side of the SSH agent protocol over the agent's pipe,
// speaking as ssh-add does: list, sign, add (with a lifetime and
// confirmation), remove, remove all, lock and unlock. traywell.exe /AddKey
// hands keys to the running copy with it. One thread at a time.
#pragma once

#include <windows.h>

#include <cstdint>
#include <vector>

#include "AgentBytes.h"
#include "AgentKey.h"
#include "VReportMessageParams.h"
#include "Win32Handle.h"

struct AgentIdentity {
    AgentBytes publicBlob;
    AgentText comment;
};

class AgentPipeClient {
public:
    // Connects to pipeName, waiting up to timeoutMs for a free instance.
    // False with report AGENT_NOT_RUNNING when no agent answers.
    bool Connect(const wchar_t* pipeName, DWORD timeoutMs, VReportMessageParams& report);
    bool IsConnected() const noexcept { return pipe_.IsValid(); }
    void Disconnect() noexcept { pipe_.Reset(); }
    HANDLE GetPipe() const noexcept { return pipe_.Get(); }

    // Sends one message (without its length field) and reads the answer into
    // reply. False when the pipe breaks or the answer is malformed.
    bool Exchange(const AgentBytes& request, AgentBytes& reply);

    bool List(std::vector<AgentIdentity>& identities);
    bool Sign(const AgentBytes& publicBlob, const uint8_t* data, size_t count, uint32_t flags,
              AgentBytes& signature);
    // lifetime in seconds, 0 for none.
    bool Add(const AgentKey& key, const AgentText& comment, uint32_t lifetime, bool confirm);
    bool Remove(const AgentBytes& publicBlob);
    bool RemoveAll();
    bool Lock(const AgentBytes& passphrase);
    bool Unlock(const AgentBytes& passphrase);

private:
    // Exchange that expects SSH_AGENT_SUCCESS.
    bool Command(const AgentBytes& request);
    // The same for a message of type with one string.
    bool Command(uint8_t type, const AgentBytes& argument);

    FileHandle pipe_;
};
