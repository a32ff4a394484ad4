// The body of an "OPENSSH PRIVATE KEY" block, after its Base64 is decoded.
// Private to the key-file readers.
#pragma once

#include "KeyFile.h"

bool OpenSshKeyIsSealed(const AgentBytes& body);
KeyFileError ParseOpenSshKey(const AgentBytes& body, const AgentBytes& passphrase, LoadedKey& key,
                             AgentText& unsupportedWhat);
