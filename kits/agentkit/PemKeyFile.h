// The body of a PEM "RSA PRIVATE KEY" or "EC PRIVATE KEY" block, after its
// Base64 is decoded, with the block's headers (a sealed block names its
// cipher and IV in "DEK-Info"). Private to the key-file readers.
#pragma once

#include <string>

#include "KeyFile.h"

enum class PemKind { Rsa, Ec };

// dekInfo is the value of the "DEK-Info" header, empty for a plain block.
KeyFileError ParsePemKey(PemKind kind, const std::string& dekInfo, const AgentBytes& body,
                         const AgentBytes& passphrase, LoadedKey& key, AgentText& unsupportedWhat);
