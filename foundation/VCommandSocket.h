// A socket that runs a command before every connection: it wraps the real
// socket, passes every other operation and event straight through, and turns
// each connect request into a deferred one that a VThreadedCommand carries
// out once the command has ended.
//
// What the deferred connect does with the command's outcome: it connects
// whatever the exit code, and also when the command could not be started
// (the status reporter has told the user either way); it drops the request,
// telling its completion sink ERROR_CANCELLED, when the socket was closed
// while the command ran.
#pragma once

#include <atomic>
#include <memory>
#include <mutex>

#include "ISocket.h"
#include "VThreadedCommand.h"

class ICommandSocket : public IStreamSocket, public ISocketEvents, public IThreadedCommandSink {
protected:
    ~ICommandSocket() override = default;
};

class VCommandSocket final : public VUnknown<ICommandSocket> {
public:
    // Wraps inner (one reference held) and becomes its event sink; events go
    // on to sink (may be null; not held). reporter (may be null; one
    // reference held) hears the command's start and end. Allocate with new.
    VCommandSocket(IStreamSocket* inner, ISocketEvents* sink, ISocketCommandStatus* reporter,
                   const VUnicodeString& commandLine);

    // Sets the sink that events are passed to; the inner socket keeps
    // reporting to this command socket.
    void SetEventSink(ISocketEvents* sink) override { sink_ = sink; }
    // Starts the command and returns: the connect follows on the command's
    // worker thread, where completion hears its outcome. False, with
    // WSAEALREADY in report, while an earlier request waits for its command.
    // Throws std::system_error when no thread can be started.
    bool Connect(const char* destination, ISocketSink* completion,
                 VReportMessageParams& report) override;
    bool Connect(const char* service, const char* host, uint16_t port, ISocketSink* completion,
                 VReportMessageParams& report) override;
    bool IsConnected() const override { return inner_->IsConnected(); }
    bool Shutdown(VReportMessageParams& report) override { return inner_->Shutdown(report); }
    // Also drops a request still waiting for its command.
    void Close() override;
    bool Send(const void* data, size_t length, VReportMessageParams& report) override {
        return inner_->Send(data, length, report);
    }
    bool Receive(DWORD timeoutMilliseconds, VReportMessageParams& report) override {
        return inner_->Receive(timeoutMilliseconds, report);
    }

    void OnConnect(DWORD error) override;
    void OnReceive(const void* data, size_t length) override;
    void OnShutdown(DWORD error) override;
    // The command has ended: goes on with the waiting request.
    void OnCommandComplete(void* context, CompletionInfo& info) override;

    bool IsWaitingForCommand() const;
    // The last command's exit code (or start error); false while it runs or
    // before the first.
    bool GetCommandStatus(DWORD& code) const;

private:
    enum class RequestKind { Text = 1, HostAndPort = 2 };
    struct DeferredConnect {
        VRefPtr<VCommandSocket> socket;  // keeps the socket alive while the command runs
        RequestKind kind;
        VString text;  // the destination (kind 1) or the service (kind 2)
        VString host;
        uint16_t port;
        VRefPtr<ISocketSink> completion;
    };

    ~VCommandSocket() override;

    bool Defer(DeferredConnect request, VReportMessageParams& report);

    VRefPtr<IStreamSocket> inner_;
    std::atomic<ISocketEvents*> sink_;
    VUnicodeString commandLine_;
    // Cleared before each request; set when its command has ended.
    std::atomic<uint8_t> commandDone_{0};
    std::atomic<DWORD> commandStatus_{0};
    VRefPtr<VThreadedCommand> command_;
    mutable std::mutex mutex_;
    std::unique_ptr<DeferredConnect> pending_;  // guarded by mutex_
};
