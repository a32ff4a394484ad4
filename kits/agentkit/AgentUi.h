// Agentkit: the SSH agent's user interface. ClientUiInit hands it the
// configuration library's protected-string functions; LaunchManageAgentKeys
// shows the Manage Agent Keys window. UI thread only.
#pragma once

#include <windows.h>

#include "VListViewState.h"
#include "VProfileEncryptedString.h"
#include "VString.h"

class VDialog;

namespace SSH2 {

// The configuration library's functions, kept for the agent's windows: they
// read and write protected profile strings, and tell how new ones are sealed.
// Call once at start-up, after a successful SSH2::Init. Null pointers are
// misuse (std::invalid_argument).
void ClientUiInit(
    bool (*isConfigPassphraseDisabled)(), VUnicodeString (*getConfigPassphrase)(),
    bool (*updateProfileEncryptedString)(VProfileEncryptedString&, const VUnicodeString&),
    VUnicodeString (*getProfileEncryptedPlaintextString)(const VProfileEncryptedString&));

// Shows the Manage Agent Keys window modally, owned by parent (may be null),
// and returns when the user closes it. The list view's columns take their
// widths, order and sorting from listViewState when it holds a layout for
// them, and the layout the user leaves is set into listViewState on closing
// (the caller saves it). While the window is up, *openDialog (when
// openDialog is not null) points to it, so that the caller can bring it
// forward; it is null again on return. False, with GetLastError telling why,
// when the window cannot be made.
bool LaunchManageAgentKeys(VProfileListViewState& listViewState, HWND parent, VDialog** openDialog);

}  // namespace SSH2
