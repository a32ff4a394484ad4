// For the agent's tests: the key files ssh-keygen wrote (AGENT_TEST_KEYS_DIR), a confirmation.
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
