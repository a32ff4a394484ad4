#include "SessionListDialog.h"

#include <vector>

#include "TraywellMessages.h"
#include "TraywellResources.h"
#include "VMessageBox.h"
#include "WindowLists.h"

SessionListDialog::SessionListDialog(const wchar_t* appName, const VArray<WindowData>& windows)
    : VDialog(IDD_SESSIONS), appName_(appName), windows_(windows) {}

bool SessionListDialog::OnInitDialog() {
    SetCaption(
        (appName_ + L" " + VReportMessageParams(TRAY_SESSIONS_TITLE).GetTextAsString()).c_str());
    const HWND list = GetItem(IDC_SESSIONS_LIST);
    SendMessageW(list, WM_SETREDRAW, FALSE, 0);
    for (const WindowData& record : windows_)
        SendMessageW(list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(record.caption.c_str()));
    SendMessageW(list, WM_SETREDRAW, TRUE, 0);
    return true;
}

void SessionListDialog::OnOK() {
    const HWND list = GetItem(IDC_SESSIONS_LIST);
    const LRESULT count = SendMessageW(list, LB_GETSELCOUNT, 0, 0);
    if (count <= 0) return;
    std::vector<int> selected(static_cast<size_t>(count));
    const LRESULT filled = SendMessageW(list, LB_GETSELITEMS, selected.size(),
                                        reinterpret_cast<LPARAM>(selected.data()));
    bool anyGone = false;
    for (LRESULT i = 0; i < filled; ++i) {
        const auto index = static_cast<size_t>(selected[static_cast<size_t>(i)]);
        if (index >= windows_.GetCount()) continue;
        if (!WindowLists::SelectSession(windows_[index].window, windows_[index].sessionNumber))
            anyGone = true;
    }
    if (anyGone) {
        VReportMessageParams gone(TRAY_WINDOWS_GONE);
        VMessageBox(gone, MB_OK | MB_ICONEXCLAMATION, GetHwnd());
    }
}
