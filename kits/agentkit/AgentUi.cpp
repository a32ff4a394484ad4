#include "AgentUi.h"

#include <stdexcept>

#include "AgentUiFunctions.h"
#include "ManageAgentKeysDialog.h"

namespace {

AgentUiFunctions g_functions;

}  // namespace

const AgentUiFunctions& GetAgentUiFunctions() { return g_functions; }

namespace SSH2 {

void ClientUiInit(
    bool (*isConfigPassphraseDisabled)(), VUnicodeString (*getConfigPassphrase)(),
    bool (*updateProfileEncryptedString)(VProfileEncryptedString&, const VUnicodeString&),
    VUnicodeString (*getProfileEncryptedPlaintextString)(const VProfileEncryptedString&)) {
    if (!isConfigPassphraseDisabled || !getConfigPassphrase || !updateProfileEncryptedString ||
        !getProfileEncryptedPlaintextString)
        throw std::invalid_argument("SSH2::ClientUiInit: every function is needed");
    g_functions = {isConfigPassphraseDisabled, getConfigPassphrase, updateProfileEncryptedString,
                   getProfileEncryptedPlaintextString};
}

bool LaunchManageAgentKeys(VProfileListViewState& listViewState, HWND parent,
                           VDialog** openDialog) {
    VListViewState state = listViewState.Get();
    AgentKeyStore store;
    ManageAgentKeysDialog dialog(state, store, parent);
    if (openDialog) *openDialog = &dialog;
    const INT_PTR result = dialog.DoModal();
    if (openDialog) *openDialog = nullptr;
    if (result == -1) return false;
    if (!(state == listViewState.Get())) listViewState.Set(state);
    return true;
}

}  // namespace SSH2
