#include "AgentPipeClient.h"

#include <algorithm>

#include "AgentMessageTypes.h"
#include "AgentMessages.h"
#include "SshWire.h"

namespace {

constexpr size_t FirstReadBytes = 8192;

}  // namespace

bool AgentPipeClient::Connect(const wchar_t* pipeName, DWORD timeoutMs,
                              VReportMessageParams& report) {
    report.Clear();
    const ULONGLONG deadline = GetTickCount64() + timeoutMs;
    for (;;) {
        pipe_.Reset(CreateFileW(pipeName, GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                                0, nullptr));
        if (pipe_) return true;
        const DWORD error = GetLastError();
        // All instances busy: wait for one; none there at all: the agent may be starting.
        const ULONGLONG now = GetTickCount64();
        if ((error != ERROR_PIPE_BUSY && error != ERROR_FILE_NOT_FOUND) || now >= deadline) {
            SetAgentReport(report, AGENT_NOT_RUNNING, pipeName, ErrorCodeText(error));
            return false;
        }
        if (error == ERROR_PIPE_BUSY)
            WaitNamedPipeW(pipeName, static_cast<DWORD>(deadline - now));
        else
            Sleep(50);
    }
}

bool AgentPipeClient::Exchange(const AgentBytes& request, AgentBytes& reply) {
    AgentBytes sent;
    SshWriter(sent).String(request);
    DWORD moved = 0;
    if (!WriteFile(pipe_.Get(), sent.data(), static_cast<DWORD>(sent.size()), &moved, nullptr) ||
        moved != sent.size())
        return false;
    // One read takes most answers whole; their length tells what is left.
    AgentBytes frame(FirstReadBytes);
    size_t have = 0;
    auto readUpTo = [&](size_t wanted) {
        while (have < wanted) {
            DWORD got = 0;
            const size_t room = have < 4 ? frame.size() - have : wanted - have;
            if (!ReadFile(pipe_.Get(), frame.data() + have, static_cast<DWORD>(room), &got,
                          nullptr) ||
                got == 0)
                return false;
            have += got;
        }
        return true;
    };
    uint32_t count;
    if (!readUpTo(4) || !SshReader(frame.data(), 4).Uint32(count) || count == 0 ||
        count > MaximumAgentMessage)
        return false;
    frame.resize(std::max(frame.size(), size_t{4} + count));
    // More than the answer holds is a broken agent: its next answer would not line up.
    if (!readUpTo(size_t{4} + count) || have != size_t{4} + count) return false;
    reply.assign(frame.begin() + 4, frame.begin() + 4 + count);
    return true;
}

bool AgentPipeClient::Command(const AgentBytes& request) {
    AgentBytes reply;
    return Exchange(request, reply) && reply.size() == 1 && reply[0] == AgentMessage::Success;
}

bool AgentPipeClient::List(std::vector<AgentIdentity>& identities) {
    identities.clear();
    AgentBytes reply;
    if (!Exchange(AgentBytes{AgentMessage::RequestIdentities}, reply)) return false;
    SshReader reader(reply);
    uint8_t type;
    uint32_t count;
    if (!reader.Byte(type) || type != AgentMessage::IdentitiesAnswer || !reader.Uint32(count))
        return false;
    for (uint32_t index = 0; index < count; ++index) {
        AgentIdentity identity;
        if (!reader.String(identity.publicBlob) || !reader.String(identity.comment)) return false;
        identities.push_back(std::move(identity));
    }
    return reader.AtEnd();
}

bool AgentPipeClient::Sign(const AgentBytes& publicBlob, const uint8_t* data, size_t count,
                           uint32_t flags, AgentBytes& signature) {
    AgentBytes request, reply;
    SshWriter writer(request);
    writer.Byte(AgentMessage::SignRequest);
    writer.String(publicBlob);
    writer.String(data, count);
    writer.Uint32(flags);
    if (!Exchange(request, reply)) return false;
    SshReader reader(reply);
    uint8_t type;
    return reader.Byte(type) && type == AgentMessage::SignResponse && reader.String(signature) &&
           reader.AtEnd();
}

bool AgentPipeClient::Add(const AgentKey& key, const AgentText& comment, uint32_t lifetime,
                          bool confirm) {
    AgentBytes request;
    SshWriter writer(request);
    const bool constrained = lifetime != 0 || confirm;
    writer.Byte(constrained ? AgentMessage::AddIdentityConstrained : AgentMessage::AddIdentity);
    key.Write(writer);
    writer.String(comment.data(), comment.size());
    if (lifetime) {
        writer.Byte(AgentConstraint::Lifetime);
        writer.Uint32(lifetime);
    }
    if (confirm) writer.Byte(AgentConstraint::Confirm);
    return Command(request);
}

bool AgentPipeClient::Remove(const AgentBytes& publicBlob) {
    return Command(AgentMessage::RemoveIdentity, publicBlob);
}

bool AgentPipeClient::RemoveAll() { return Command(AgentBytes{AgentMessage::RemoveAllIdentities}); }

bool AgentPipeClient::Lock(const AgentBytes& passphrase) {
    return Command(AgentMessage::Lock, passphrase);
}

bool AgentPipeClient::Unlock(const AgentBytes& passphrase) {
    return Command(AgentMessage::Unlock, passphrase);
}

bool AgentPipeClient::Command(uint8_t type, const AgentBytes& argument) {
    AgentBytes request;
    SshWriter writer(request);
    writer.Byte(type);
    writer.String(argument);
    return Command(request);
}
