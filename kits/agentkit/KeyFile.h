// Private key files: OpenSSH's own format ("OPENSSH PRIVATE KEY", plain or
// sealed with bcrypt-pbkdf and aes256-ctr) and PEM RSA and EC keys (plain or
// sealed with a pass phrase, as OpenSSL writes them). Any thread.
#pragma once

#include "AgentKey.h"
#include "VReportMessageParams.h"
#include "VString.h"

enum class KeyFileError {
    None,
    NotAKeyFile,      // no key block of a form we read
    Damaged,          // the block or the key in it is broken
    NeedsPassphrase,  // sealed, and no pass phrase was given
    WrongPassphrase,  // sealed, and the pass phrase does not open it
    Unsupported,      // a cipher, key derivation or key type we do not read
    TooSmall,         // an RSA key below 2048 bits
};

struct LoadedKey {
    AgentKey key;
    AgentText comment;  // UTF-8; a PEM file has none, so the caller names it
};

// Whether the file's text is sealed with a pass phrase (false for text that
// is not a key file at all: Parse tells what is wrong with it).
bool KeyFileNeedsPassphrase(const AgentBytes& content);

// Reads the key in content with the pass phrase's UTF-8 bytes (empty for a
// plain file). On failure key is left empty. What remains unsupported is
// named in unsupportedWhat ("aes256-gcm@openssh.com", "ssh-dss", ...).
KeyFileError ParseKeyFile(const AgentBytes& content, const AgentBytes& passphrase, LoadedKey& key,
                          AgentText& unsupportedWhat);

// Reads the file at path (at most 1 MiB), then parses it with passphrase
// (a sensitive string; empty for a plain file). A key without a comment of
// its own is named by the path. On failure returns false with report naming
// the file and what is wrong; error (may be null) receives the kind, so that
// a caller can ask for a pass phrase and try again.
bool LoadKeyFile(const wchar_t* path, const VUnicodeString& passphrase, LoadedKey& key,
                 VReportMessageParams& report, KeyFileError* error = nullptr);

// Reads the whole file (at most 1 MiB); false with report set otherwise.
bool ReadKeyFileBytes(const wchar_t* path, AgentBytes& content, VReportMessageParams& report);

// The UTF-8 bytes of a text (a pass phrase, a comment), in a buffer that is
// wiped when freed; empty for a text with a lone surrogate.
AgentBytes Utf8Bytes(const VUnicodeString& text);
