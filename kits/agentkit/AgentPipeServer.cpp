#include "AgentPipeServer.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "AgentMessageTypes.h"
#include "AgentMessages.h"
#include "VSecurityDescriptor.h"

namespace {

constexpr DWORD BufferBytes = 64 * 1024;
constexpr DWORD ExpiryCheckMs = 1000;

uint32_t BigEndian(const uint8_t* bytes) {
    return (uint32_t{bytes[0]} << 24) | (uint32_t{bytes[1]} << 16) | (uint32_t{bytes[2]} << 8) |
           bytes[3];
}

}  // namespace

VUnicodeString PipeClientName(HANDLE pipe) {
    ULONG id = 0;
    if (!GetNamedPipeClientProcessId(pipe, &id)) return VUnicodeString(L"an unknown program");
    std::wstring name = L"process " + std::to_wstring(id);
    if (const KernelHandle process(OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, id));
        process) {
        wchar_t path[MAX_PATH];
        DWORD length = MAX_PATH;
        if (QueryFullProcessImageNameW(process.Get(), 0, path, &length)) {
            const std::wstring full(path, length);
            name = full.substr(full.find_last_of(L"\\/") + 1) + L" (" + std::to_wstring(id) + L")";
        }
    }
    return VUnicodeString(name.c_str());
}

AgentPipeServer::AgentPipeServer(AgentProtocol& protocol, AgentKeyStore& store,
                                 const wchar_t* pipeName)
    : protocol_(protocol),
      store_(store),
      pipeName_(pipeName),
      stopEvent_(CreateEventW(nullptr, TRUE, FALSE, nullptr)) {}

AgentPipeServer::~AgentPipeServer() { Stop(); }

FileHandle AgentPipeServer::CreateInstance(bool first) {
    VSecurityDescriptor descriptor;
    if (!descriptor.AssignCurrentUserAccess()) return FileHandle();
    SECURITY_ATTRIBUTES attributes = descriptor.GetSecurityAttributes();
    return FileHandle(CreateNamedPipeW(
        pipeName_.c_str(),
        PIPE_ACCESS_DUPLEX | FILE_FLAG_OVERLAPPED | (first ? FILE_FLAG_FIRST_PIPE_INSTANCE : 0),
        PIPE_TYPE_BYTE | PIPE_READMODE_BYTE | PIPE_WAIT | PIPE_REJECT_REMOTE_CLIENTS,
        PIPE_UNLIMITED_INSTANCES, BufferBytes, BufferBytes, 0, &attributes));
}

bool AgentPipeServer::Start(VReportMessageParams& report) {
    report.Clear();
    // Another server answers (or is busy): not all platforms refuse a first
    // instance flag for a pipe that exists, so ask the pipe itself.
    const FileHandle probe(CreateFileW(pipeName_.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                       OPEN_EXISTING, 0, nullptr));
    if (probe || GetLastError() == ERROR_PIPE_BUSY) {
        SetAgentReport(report, AGENT_PIPE_IN_USE, pipeName_);
        return false;
    }
    FileHandle pipe = CreateInstance(true);
    if (!pipe) {
        const DWORD error = GetLastError();
        if (error == ERROR_ACCESS_DENIED || error == ERROR_PIPE_BUSY)
            SetAgentReport(report, AGENT_PIPE_IN_USE, pipeName_);
        else
            SetAgentReport(report, AGENT_PIPE_FAILED, pipeName_, ErrorCodeText(error));
        return false;
    }
    ResetEvent(stopEvent_.Get());
    acceptThread_ = std::thread(&AgentPipeServer::AcceptLoop, this, std::move(pipe));
    return true;
}

void AgentPipeServer::Stop() {
    if (!acceptThread_.joinable()) return;
    SetEvent(stopEvent_.Get());
    acceptThread_.join();
    std::unique_lock<std::mutex> hold(mutex_);
    allGone_.wait(hold, [this] { return clients_.load() == 0; });
}

void AgentPipeServer::AcceptLoop(FileHandle pipe) {
    const KernelHandle connected(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    while (pipe) {
        OVERLAPPED overlapped{};
        overlapped.hEvent = connected.Get();
        ResetEvent(connected.Get());
        bool isConnected =
            ConnectNamedPipe(pipe.Get(), &overlapped) || GetLastError() == ERROR_PIPE_CONNECTED;
        if (!isConnected && GetLastError() != ERROR_IO_PENDING) {
            pipe = CreateInstance(false);  // this instance is broken: try a fresh one
            if (WaitForSingleObject(stopEvent_.Get(), 100) == WAIT_OBJECT_0) return;
            continue;
        }
        const HANDLE events[] = {connected.Get(), stopEvent_.Get()};
        while (!isConnected) {
            const DWORD woken = WaitForMultipleObjects(2, events, FALSE, ExpiryCheckMs);
            if (woken == WAIT_OBJECT_0) {
                DWORD ignored;
                isConnected =
                    GetOverlappedResult(pipe.Get(), &overlapped, &ignored, FALSE) != FALSE;
                if (!isConnected) break;
            } else if (woken == WAIT_TIMEOUT) {
                store_.RemoveExpired();
            } else {
                CancelIoEx(pipe.Get(), &overlapped);
                DWORD ignored;
                GetOverlappedResult(pipe.Get(), &overlapped, &ignored, TRUE);
                return;
            }
        }
        if (isConnected && clients_.load() < MaximumClients) {
            ++clients_;
            std::thread(&AgentPipeServer::Serve, this, std::move(pipe)).detach();
        }
        pipe = CreateInstance(false);
    }
}

// One read or write of up to count bytes; false when it moved nothing: after
// timeout (INFINITE: only the server's stop ends the wait), when the client
// goes, or when the server stops. moved receives how many bytes went.
bool AgentPipeServer::Move(HANDLE pipe, HANDLE done, uint8_t* data, size_t count, bool write,
                           DWORD timeout, size_t& moved) {
    OVERLAPPED overlapped{};
    overlapped.hEvent = done;
    const DWORD chunk = static_cast<DWORD>(std::min<size_t>(count, BufferBytes));
    const BOOL started = write ? WriteFile(pipe, data, chunk, nullptr, &overlapped)
                               : ReadFile(pipe, data, chunk, nullptr, &overlapped);
    if (!started && GetLastError() != ERROR_IO_PENDING) return false;
    // A transfer done at once needs no wait (most are, and each wait costs).
    const HANDLE events[] = {done, stopEvent_.Get()};
    if (!HasOverlappedIoCompleted(&overlapped) &&
        WaitForMultipleObjects(2, events, FALSE, timeout) != WAIT_OBJECT_0)
        CancelIoEx(pipe, &overlapped);
    DWORD got = 0;
    if (!GetOverlappedResult(pipe, &overlapped, &got, TRUE) || got == 0) return false;
    moved = got;
    return true;
}

bool AgentPipeServer::WriteAll(HANDLE pipe, HANDLE done, AgentBytes& data) {
    for (size_t sent = 0, moved; sent < data.size(); sent += moved)
        if (!Move(pipe, done, data.data() + sent, data.size() - sent, true, MessageTimeoutMs,
                  moved))
            return false;
    return true;
}

void AgentPipeServer::Serve(FileHandle pipe) {
    const VUnicodeString client = PipeClientName(pipe.Get());
    const KernelHandle done(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    // Reads take whatever the client has sent, so that a message usually
    // comes in one read; requests hold keys and pass phrases, so what is
    // handled is wiped at once.
    AgentBytes inbox(BufferBytes), reply, frame;
    size_t have = 0;
    for (;;) {
        if (have >= 4) {
            const uint32_t count = BigEndian(inbox.data());
            if (count == 0 || count > MaximumAgentMessage) break;
            const size_t whole = size_t{4} + count;
            if (have >= whole) {
                protocol_.Handle(inbox.data() + 4, count, client, reply);
                std::memmove(inbox.data(), inbox.data() + whole, have - whole);
                SecureZeroMemory(inbox.data() + have - whole, whole);
                have -= whole;
                frame.clear();
                SshWriter(frame).String(reply);
                if (!WriteAll(pipe.Get(), done.Get(), frame)) break;
                continue;
            }
            if (inbox.size() < whole) inbox.resize(whole);
        }
        // A client may stay connected, silent, as long as it likes (ssh keeps
        // its agent connection for the whole session); inside a message it may not.
        size_t moved;
        if (!Move(pipe.Get(), done.Get(), inbox.data() + have, inbox.size() - have, false,
                  have == 0 ? INFINITE : MessageTimeoutMs, moved))
            break;
        have += moved;
    }
    DisconnectNamedPipe(pipe.Get());
    pipe.Reset();
    std::lock_guard<std::mutex> hold(mutex_);
    if (--clients_ == 0) allGone_.notify_all();
}
