// ManageAgentKeysDialog: the Manage Agent Keys window, a list view of the keys
// that the SSH agent holds (none until the agent can load keys), whose column
// layout is kept in a list-view state value. Private to Agentkit.
#pragma once

#include "VDialog.h"
#include "VDialogTemplate.h"
#include "VListViewState.h"

class ManageAgentKeysDialog : public VDialog {
public:
    static constexpr int ListViewId = 1001;
    static constexpr int ProtectionTextId = 1002;

    // state (not owned) gives the layout on opening and receives it on closing.
    ManageAgentKeysDialog(VListViewState& state, HWND parent);

protected:
    bool OnInitDialog() override;
    void OnOK() override;
    void OnCancel() override;
    bool OnMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) override;

private:
    static VDialogTemplate MakeTemplate();
    void AddColumns();
    void ApplyState();
    void KeepState();
    void SortBy(int column, bool ascending);
    void Close(INT_PTR result);

    VDialogTemplate template_;
    VListViewState& state_;
    HWND list_ = nullptr;
    int sortColumn_ = -1;
    bool sortAscending_ = true;
};
