#include "AgentProtocol.h"

#include "AgentMessageTypes.h"

bool AgentProtocol::ListIdentities(AgentBytes& reply) {
    const std::vector<AgentKeyInfo> keys = store_.List();
    SshWriter writer(reply);
    writer.Byte(AgentMessage::IdentitiesAnswer);
    writer.Uint32(static_cast<uint32_t>(keys.size()));
    for (const AgentKeyInfo& key : keys) {
        writer.String(key.publicBlob);
        writer.String(key.comment.data(), key.comment.size());
    }
    return true;
}

bool AgentProtocol::Sign(SshReader& reader, const VUnicodeString& client, AgentBytes& reply) {
    AgentBytes blob;
    const uint8_t* data;
    size_t count;
    uint32_t flags;
    if (!reader.String(blob) || !reader.String(data, count) || !reader.Uint32(flags) ||
        !reader.AtEnd())
        return false;
    AgentKey key;
    AgentKeyInfo info;
    if (!store_.GetKey(blob, key, info)) return false;
    if (info.confirm && !confirm_.ConfirmUse(info, client)) return false;
    AgentBytes signature;
    if (!key.Sign(data, count, flags, signature)) return false;
    SshWriter writer(reply);
    writer.Byte(AgentMessage::SignResponse);
    writer.String(signature);
    return true;
}

bool AgentProtocol::AddIdentity(SshReader& reader, bool constrained) {
    AgentKey key;
    AgentText comment;
    if (key.Read(reader) != AgentKeyError::None || !reader.String(comment)) return false;
    uint32_t lifetime = 0;
    bool confirm = false;
    while (constrained && !reader.AtEnd()) {
        uint8_t type;
        if (!reader.Byte(type)) return false;
        if (type == AgentConstraint::Lifetime) {
            if (!reader.Uint32(lifetime) || lifetime == 0) return false;
        } else if (type == AgentConstraint::Confirm) {
            confirm = true;
        } else {
            return false;  // a restriction we cannot honour must not be ignored
        }
    }
    if (!reader.AtEnd() || key.Validate() != AgentKeyError::None) return false;
    VReportMessageParams report;
    return store_.Add(key, comment, lifetime, confirm, report);
}

void AgentProtocol::Handle(const uint8_t* request, size_t count, const VUnicodeString& client,
                           AgentBytes& reply) {
    reply.clear();
    SshReader reader(request, count);
    uint8_t type = 0;
    bool done = false;
    if (reader.Byte(type)) {
        switch (type) {
            case AgentMessage::RequestIdentities:
                done = reader.AtEnd() && ListIdentities(reply);
                break;
            case AgentMessage::SignRequest:
                done = Sign(reader, client, reply);
                break;
            case AgentMessage::AddIdentity:
            case AgentMessage::AddIdentityConstrained:
                done = AddIdentity(reader, type == AgentMessage::AddIdentityConstrained);
                break;
            case AgentMessage::RemoveIdentity: {
                AgentBytes blob;
                done = reader.String(blob) && reader.AtEnd() && store_.Remove(blob);
                break;
            }
            case AgentMessage::RemoveAllIdentities:
                done = reader.AtEnd() && store_.RemoveAll();
                break;
            case AgentMessage::Lock:
            case AgentMessage::Unlock: {
                AgentBytes passphrase;
                done = reader.String(passphrase) && reader.AtEnd() &&
                       (type == AgentMessage::Lock ? store_.Lock(passphrase)
                                                   : store_.Unlock(passphrase));
                break;
            }
            default:
                break;  // extensions and smart cards: not offered
        }
    }
    if (!done) {
        reply.assign(1, AgentMessage::Failure);
    } else if (reply.empty()) {
        reply.assign(1, AgentMessage::Success);
    }
}
