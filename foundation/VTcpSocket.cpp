#include "VTcpSocket.h"

#include <ws2tcpip.h>

#include <algorithm>
#include <charconv>
#include <climits>
#include <memory>

#include "HostPortText.h"

namespace {

constexpr size_t ReceiveBlock = 16384;

}  // namespace

bool VTcpSocket::Refuse(DWORD error, VReportMessageParams& report) {
    report.SetMessageCode(error);
    return false;
}

bool VTcpSocket::Broken(DWORD error, VReportMessageParams& report) {
    connected_ = false;
    if (ISocketEvents* sink = sink_) sink->OnShutdown(error);
    return Refuse(error, report);
}

bool VTcpSocket::Connect(const char* destination, ISocketSink* completion,
                         VReportMessageParams& report) {
    VString host;
    uint16_t port = 0;
    if (!SplitHostPort(destination, host, port)) return Refuse(WSAEINVAL, report);
    return Connect(nullptr, host.c_str(), port, completion, report);
}

bool VTcpSocket::Connect(const char* service, const char* host, uint16_t port,
                         ISocketSink* completion, VReportMessageParams& report) {
    if (!StartWinsock(report)) return false;
    if (!host || !*host || (port == 0 && (!service || !*service))) return Refuse(WSAEINVAL, report);
    if (connected_) return Refuse(WSAEISCONN, report);
    char digits[8] = {};
    std::to_chars(digits, digits + sizeof digits - 1, port);
    const DWORD error = ConnectTo(host, port != 0 ? digits : service);
    connected_ = error == 0;
    ended_ = false;
    if (completion) completion->OnConnect(error);
    if (ISocketEvents* sink = sink_) sink->OnConnect(error);
    return true;
}

DWORD VTcpSocket::ConnectTo(const char* host, const char* service) {
    addrinfo hints{};
    hints.ai_family = AF_UNSPEC;
    hints.ai_socktype = SOCK_STREAM;
    hints.ai_protocol = IPPROTO_TCP;
    addrinfo* found = nullptr;
    if (const int error = getaddrinfo(host, service, &hints, &found))
        return static_cast<DWORD>(error);
    const std::unique_ptr<addrinfo, decltype(&freeaddrinfo)> owner(found, freeaddrinfo);
    DWORD error = WSAHOST_NOT_FOUND;
    for (const addrinfo* address = found; address; address = address->ai_next) {
        SocketHandle candidate(
            socket(address->ai_family, address->ai_socktype, address->ai_protocol));
        if (candidate && connect(candidate.Get(), address->ai_addr,
                                 static_cast<int>(address->ai_addrlen)) == 0) {
            socket_ = std::move(candidate);
            return 0;
        }
        error = static_cast<DWORD>(WSAGetLastError());
    }
    return error;
}

bool VTcpSocket::Shutdown(VReportMessageParams& report) {
    if (!connected_) return Refuse(WSAENOTCONN, report);
    if (shutdown(socket_.Get(), SD_SEND) != 0)
        return Refuse(static_cast<DWORD>(WSAGetLastError()), report);
    return true;
}

void VTcpSocket::Close() {
    socket_.Reset();
    connected_ = false;
    ended_ = false;
}

bool VTcpSocket::Send(const void* data, size_t length, VReportMessageParams& report) {
    if (!connected_) return Refuse(WSAENOTCONN, report);
    const char* next = static_cast<const char*>(data);
    while (length > 0) {
        const int sent =
            send(socket_.Get(), next, static_cast<int>(std::min<size_t>(length, INT_MAX)), 0);
        if (sent == SOCKET_ERROR) return Broken(static_cast<DWORD>(WSAGetLastError()), report);
        next += sent;
        length -= static_cast<size_t>(sent);
    }
    return true;
}

bool VTcpSocket::Receive(DWORD timeoutMilliseconds, VReportMessageParams& report) {
    if (!connected_) return Refuse(WSAENOTCONN, report);
    if (ended_) return true;  // nothing more can come
    fd_set readable;
    FD_ZERO(&readable);
    FD_SET(socket_.Get(), &readable);
    timeval wait{static_cast<long>(timeoutMilliseconds / 1000),
                 static_cast<long>(timeoutMilliseconds % 1000) * 1000};
    const int ready = select(0, &readable, nullptr, nullptr, &wait);
    if (ready == 0) return true;
    if (ready == SOCKET_ERROR) return Broken(static_cast<DWORD>(WSAGetLastError()), report);

    char block[ReceiveBlock];
    const int received = recv(socket_.Get(), block, sizeof block, 0);
    if (received == SOCKET_ERROR) return Broken(static_cast<DWORD>(WSAGetLastError()), report);
    ISocketEvents* sink = sink_;
    if (received == 0) {
        ended_ = true;
        if (sink) sink->OnShutdown(0);
    } else if (sink) {
        sink->OnReceive(block, static_cast<size_t>(received));
    }
    return true;
}
