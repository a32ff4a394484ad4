// A TCP connection over Winsock: resolves the host, connects to each of its
// addresses in turn, sends and receives, all blocking on the calling thread.
#pragma once

#include <atomic>

#include "ISocket.h"
#include "VUnknown.h"
#include "WinsockSupport.h"

class VTcpSocket final : public VUnknown<IStreamSocket> {
public:
    // Allocate with new; the last Release closes the connection.
    VTcpSocket() = default;

    void SetEventSink(ISocketEvents* sink) override { sink_ = sink; }
    // Connecting blocks until the connection is made or every address of
    // the host has failed; the outcome is told before Connect returns.
    bool Connect(const char* destination, ISocketSink* completion,
                 VReportMessageParams& report) override;
    bool Connect(const char* service, const char* host, uint16_t port, ISocketSink* completion,
                 VReportMessageParams& report) override;
    bool IsConnected() const override { return connected_; }
    bool Shutdown(VReportMessageParams& report) override;
    void Close() override;
    bool Send(const void* data, size_t length, VReportMessageParams& report) override;
    bool Receive(DWORD timeoutMilliseconds, VReportMessageParams& report) override;

private:
    ~VTcpSocket() override = default;

    // 0 when connected to one of the addresses of host and service, else
    // the last error met.
    DWORD ConnectTo(const char* host, const char* service);
    bool Refuse(DWORD error, VReportMessageParams& report);
    // The connection broke: the sink hears it, and the report tells why.
    bool Broken(DWORD error, VReportMessageParams& report);

    SocketHandle socket_;
    // Set from the owner's thread while a deferred connect may read it.
    std::atomic<ISocketEvents*> sink_{nullptr};
    bool connected_ = false;
    bool ended_ = false;  // the peer ended its stream
};
