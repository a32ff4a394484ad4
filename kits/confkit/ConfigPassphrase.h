// The configuration pass phrase of the process, and the four functions through
// which the configuration library hands it, and the plain text of protected
// values, to the session and firewall configurations and to the agent-key
// user interface (SSH2::ClientUiInit takes them as pointers, in this order).
//
// The pass phrase is set once at start-up (from the "/ConfigPassphrase"
// command-line option, or from the global options once they are loaded) and
// may be changed later; every function reads the one in force at the call.
// All functions are safe to call from any thread.
#pragma once

#include "IPassphraseProvider.h"
#include "VProfileEncryptedString.h"
#include "VString.h"

// Makes passphrase the configuration pass phrase; an empty one switches it off.
void SetConfigPassphrase(const VUnicodeString& passphrase);

// True when no configuration pass phrase is in use. Protected values are then
// sealed with the user's Windows logon ("CAPI:") instead.
bool IsConfigPassphraseDisabled();

// The configuration pass phrase, in a sensitive string; empty when none.
VUnicodeString GetConfigPassphrase();

// Seals plainText into value under the configuration pass phrase ("02:"), or
// with the user's logon ("CAPI:") when IsConfigPassphraseDisabled. value
// takes this library's provider, so that it is opened later with the pass
// phrase then in force. False, with value unchanged, when the text cannot be
// sealed (a lone surrogate, a failure of the system).
bool UpdateProfileEncryptedString(VProfileEncryptedString& value, const VUnicodeString& plainText);

// The plain text of value (sensitive), opened with value's own provider or,
// when it has none, with the configuration pass phrase. Empty when it cannot
// be opened: another pass phrase, another user's "CAPI:" text, a damaged text.
VUnicodeString GetProfileEncryptedPlaintextString(const VProfileEncryptedString& value);

// The provider that answers the configuration pass phrase in force; one
// object for the life of the process (callers may keep references to it).
IPassphraseProvider* GetConfigPassphraseProvider();
