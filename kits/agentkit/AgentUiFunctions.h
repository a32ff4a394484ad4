// The configuration library's functions that SSH2::ClientUiInit hands to the
// agent's windows. Private to Agentkit.
#pragma once

#include "VProfileEncryptedString.h"
#include "VString.h"

struct AgentUiFunctions {
    bool (*isConfigPassphraseDisabled)() = nullptr;
    VUnicodeString (*getConfigPassphrase)() = nullptr;
    bool (*updateProfileEncryptedString)(VProfileEncryptedString&, const VUnicodeString&) = nullptr;
    VUnicodeString (*getProfileEncryptedPlaintextString)(const VProfileEncryptedString&) = nullptr;
};

// The functions given to ClientUiInit; all null before it. UI thread.
const AgentUiFunctions& GetAgentUiFunctions();
