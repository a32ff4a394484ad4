// What a socket tells: a connect request's outcome, data that arrived, and
// the end of the connection. Sinks are called on whichever thread did the
// work (the command socket's worker thread for a deferred connect) and must
// not throw.
#pragma once

#include <windows.h>

#include <unknwn.h>

#include <cstddef>

// IUnknown is a virtual base, so that one object can implement several of
// these interfaces and still count its references once.
class ISocketSink : public virtual IUnknown {
public:
    // error is 0 when connected, else the Winsock (or system) error.
    virtual void OnConnect(DWORD error) = 0;

protected:
    virtual ~ISocketSink() = default;
};

class IInputOutputSink : public virtual IUnknown {
public:
    // The data is valid during the call only.
    virtual void OnReceive(const void* data, size_t length) = 0;

protected:
    virtual ~IInputOutputSink() = default;
};

class IShutdownSocketSink : public virtual IUnknown {
public:
    // error is 0 when the peer ended the stream, else why the connection broke.
    virtual void OnShutdown(DWORD error) = 0;

protected:
    virtual ~IShutdownSocketSink() = default;
};

// Every event of a socket, for the one sink a socket reports to.
class ISocketEvents : public ISocketSink, public IInputOutputSink, public IShutdownSocketSink {
protected:
    ~ISocketEvents() override = default;
};
