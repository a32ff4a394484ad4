// AgentProtocol: answers one SSH agent message at a time (list, sign, add,
// remove, remove all, lock, unlock) from the key store. Anything malformed,
// truncated, unknown or refused is answered with SSH_AGENT_FAILURE and
// changes nothing. Any thread; one object serves all the pipe's clients.
#pragma once

#include <windows.h>

#include <cstdint>

#include "AgentBytes.h"
#include "AgentKeyStore.h"
#include "VString.h"

// Asks the user whether a key marked for confirmation may sign for a client.
class IAgentConfirm {
public:
    virtual ~IAgentConfirm() = default;
    // key names the key; client is the requesting program ("ssh.exe (1234)").
    // Called on the client's thread; may block while the user decides.
    virtual bool ConfirmUse(const AgentKeyInfo& key, const VUnicodeString& client) = 0;
};

class AgentProtocol {
public:
    // store and confirm are not owned and must outlive the object.
    AgentProtocol(AgentKeyStore& store, IAgentConfirm& confirm)
        : store_(store), confirm_(confirm) {}

    // Answers request (the message without its length field), from the
    // client named client, into reply (likewise without length).
    void Handle(const uint8_t* request, size_t count, const VUnicodeString& client,
                AgentBytes& reply);

private:
    bool ListIdentities(AgentBytes& reply);
    bool Sign(SshReader& reader, const VUnicodeString& client, AgentBytes& reply);
    bool AddIdentity(SshReader& reader, bool constrained);

    AgentKeyStore& store_;
    IAgentConfirm& confirm_;
};
