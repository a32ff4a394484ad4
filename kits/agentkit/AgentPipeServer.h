// AgentPipeServer: serves the SSH agent protocol on a named pipe, by default
// \\.\pipe\openssh-ssh-agent, where Windows' OpenSSH client looks for its
// agent. The pipe admits only the current user (its access list) and local
// clients; each client is served on a thread of its own, so a client that
// stalls holds up no other. A client that announces an oversized message,
// stops for more than a few seconds in the middle of one, or goes away is
// disconnected; the server goes on. Once a second it drops expired keys.
#pragma once

#include <windows.h>

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>

#include "AgentProtocol.h"
#include "VReportMessageParams.h"
#include "Win32Handle.h"

class AgentPipeServer {
public:
    static constexpr wchar_t DefaultPipeName[] = L"\\\\.\\pipe\\openssh-ssh-agent";
    // How long a client may pause in the middle of a message.
    static constexpr DWORD MessageTimeoutMs = 5000;
    static constexpr size_t MaximumClients = 256;

    // protocol and store are not owned and must outlive the server.
    AgentPipeServer(AgentProtocol& protocol, AgentKeyStore& store,
                    const wchar_t* pipeName = DefaultPipeName);
    // Stops the server.
    ~AgentPipeServer();
    AgentPipeServer(const AgentPipeServer&) = delete;
    AgentPipeServer& operator=(const AgentPipeServer&) = delete;

    // Creates the pipe and starts serving. False with report when another
    // program serves the pipe already (AGENT_PIPE_IN_USE) or it cannot be
    // made (AGENT_PIPE_FAILED). Call once, from the thread that will Stop.
    bool Start(VReportMessageParams& report);
    // Ends every connection and waits for the server's threads. Idempotent.
    void Stop();

    // Clients being served now.
    size_t GetClientCount() const noexcept { return clients_.load(); }

private:
    FileHandle CreateInstance(bool first);
    void AcceptLoop(FileHandle pipe);
    void Serve(FileHandle pipe);
    bool Move(HANDLE pipe, HANDLE done, uint8_t* data, size_t count, bool write, DWORD timeout,
              size_t& moved);
    bool WriteAll(HANDLE pipe, HANDLE done, AgentBytes& data);

    AgentProtocol& protocol_;
    AgentKeyStore& store_;
    VUnicodeString pipeName_;
    KernelHandle stopEvent_;
    std::thread acceptThread_;
    std::atomic<size_t> clients_{0};
    std::mutex mutex_;
    std::condition_variable allGone_;
};

// The program at the other end of a pipe, as "name.exe (pid)"; "process pid"
// when its name cannot be read.
VUnicodeString PipeClientName(HANDLE pipe);
