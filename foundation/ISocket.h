// A stream socket: connecting, and its input/output. A socket is used by one
// thread at a time; a connect's completion may come on another thread (see
// VCommandSocket), after which the caller may use the socket again.
#pragma once

#include <cstdint>

#include "ISocketSink.h"
#include "VReportMessageParams.h"

class ISocket : public virtual IUnknown {
public:
    // The sink told of every event, or null. The socket holds no reference:
    // set null before the sink goes away.
    virtual void SetEventSink(ISocketEvents* sink) = 0;
    // Connects to "host:port" (see SplitHostPort; the host is a name or an
    // address). True when the request was taken: completion (may be null) and
    // the event sink then hear its outcome, possibly before Connect returns.
    // False, with the Winsock error in report and nobody told, when it is
    // refused at once: bad text, no port, or a connection already there.
    virtual bool Connect(const char* destination, ISocketSink* completion,
                         VReportMessageParams& report) = 0;
    // As above, to host at port; with port 0, at the port that service names
    // (a number, or a name the system knows, such as "ssh").
    virtual bool Connect(const char* service, const char* host, uint16_t port,
                         ISocketSink* completion, VReportMessageParams& report) = 0;
    virtual bool IsConnected() const = 0;
    // Sends no more: the peer reads the end of the stream. False, with the
    // Winsock error in report, when that fails.
    virtual bool Shutdown(VReportMessageParams& report) = 0;
    // Drops the connection at once; no event follows. The socket can connect again.
    virtual void Close() = 0;

protected:
    virtual ~ISocket() = default;
};

class IInputOutput : public virtual IUnknown {
public:
    // Sends all of data. False, with the Winsock error in report, when the
    // connection fails or there is none.
    virtual bool Send(const void* data, size_t length, VReportMessageParams& report) = 0;
    // Waits up to timeout for data and hands what arrives to the event sink
    // (OnReceive), or the end of the stream (OnShutdown(0), once). True also
    // when nothing came. False, with the error in report, when there is no
    // connection or it broke (the sink then hears OnShutdown(error)).
    virtual bool Receive(DWORD timeoutMilliseconds, VReportMessageParams& report) = 0;

protected:
    virtual ~IInputOutput() = default;
};

// A socket with its input/output, as VTcpSocket and VCommandSocket are.
class IStreamSocket : public ISocket, public IInputOutput {
protected:
    ~IStreamSocket() override = default;
};
