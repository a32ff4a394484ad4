// Shared by the agent's tests and the tray program's: the key files ssh-keygen
// wrote for them (tests/kits/agentkit/keys, AGENT_TEST_KEYS_DIR),
// fresh names for stores and pipes, and a confirmation that answers as told.
#pragma once

#include <string>

#include "AgentPipeClient.h"
#include "AgentProtocol.h"
#include "KeyFile.h"

std::wstring TestKeyPath(const char* name);
// keys/<name>, loaded with passphrase; fails the test when it does not load.
LoadedKey LoadTestKey(const char* name, const wchar_t* passphrase = L"");
// The blob and comment of keys/<name>.pub.
AgentIdentity ReadPublicKeyFile(const char* name);
// A name no other test (or test process) uses.
std::wstring UniqueName(const wchar_t* prefix);

struct RecordingConfirm : IAgentConfirm {
    bool answer = true;
    int asked = 0;
    VUnicodeString client;
    bool ConfirmUse(const AgentKeyInfo&, const VUnicodeString& from) override {
        ++asked;
        client = from;
        return answer;
    }
};
