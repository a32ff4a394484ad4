// ManageAgentKeysDialog: the Manage Agent Keys window, a list view of the keys
// the SSH agent holds for the session (type, bits, fingerprint, comment)
// with Add Key, Remove, Remove All and Close, whose column layout is kept in
// a list-view state value. It works on the shared key store directly, so
// what it changes every process of the session sees at once; it refreshes
// itself when another process changes the keys. Private to Agentkit.
#pragma once

#include <vector>

#include "AddKeyDialog.h"
#include "AgentKeyStore.h"
#include "VDialog.h"
#include "VDialogTemplate.h"
#include "VListViewState.h"

class ManageAgentKeysDialog : public VDialog {
public:
    static constexpr int ListViewId = 1001;
    static constexpr int ProtectionTextId = 1002;
    static constexpr int AddKeyId = 1003;
    static constexpr int RemoveId = 1004;
    static constexpr int RemoveAllId = 1005;

    // state (not owned) gives the layout on opening and receives it on
    // closing; store (not owned) holds the keys.
    ManageAgentKeysDialog(VListViewState& state, AgentKeyStore& store, HWND parent);

protected:
    bool OnInitDialog() override;
    void OnOK() override;
    void OnCancel() override;
    bool OnCommand(WORD id, WORD notifyCode, HWND control) override;
    bool OnMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) override;

private:
    static VDialogTemplate MakeTemplate();
    void AddColumns();
    void ApplyState();
    void KeepState();
    void SortBy(int column, bool ascending);
    void Refresh();
    void AddKey();
    void RemoveSelected();
    void Close(INT_PTR result);

    VDialogTemplate template_;
    VListViewState& state_;
    AgentKeyStore& store_;
    std::vector<AgentKeyInfo> keys_;  // item i's lParam is its index here
    uint32_t generation_ = 0;
    HWND list_ = nullptr;
    int sortColumn_ = -1;
    bool sortAscending_ = true;
    AgentKeyOptions keyOptions_;  // the last chosen, offered for the next key
};
