#include "ManageAgentKeysDialog.h"

#include <commctrl.h>

#include <iterator>
#include <string>
#include <vector>

#include <commdlg.h>

#include "AddKeyDialog.h"
#include "KeyFile.h"
#include "Utf8Text.h"
#include "VMessageBox.h"

namespace {

// The columns of the key list, with their widths in pixels until the user
// changes them.
struct Column {
    const wchar_t* title;
    int width;
};

constexpr Column Columns[] = {
    {L"Type", 70},
    {L"Bits", 45},
    {L"Fingerprint", 365},
    {L"Comment", 125},
};

// Other processes (the pipe's clients, a second window) change the keys;
// the window looks for a change this often.
constexpr UINT_PTR RefreshTimer = 1;
constexpr UINT RefreshMs = 1000;

VUnicodeString Wide(const AgentText& utf8) {
    VUnicodeString text;
    if (!ReadUtf8(reinterpret_cast<const uint8_t*>(utf8.data()), utf8.size(), text)) text = L"?";
    return text;
}

constexpr int ColumnCount = static_cast<int>(std::size(Columns));

VUnicodeString ItemText(HWND list, int item, int column) {
    wchar_t text[512] = {};
    ListView_GetItemText(list, item, column, text, static_cast<int>(std::size(text)));
    return VUnicodeString(text);
}

struct SortOrder {
    HWND list;
    int column;
    bool ascending;
};

int CALLBACK CompareItems(LPARAM first, LPARAM second, LPARAM order) {
    const auto& sort = *reinterpret_cast<const SortOrder*>(order);
    const int compared =
        ItemText(sort.list, static_cast<int>(first), sort.column)
            .CompareNoCase(ItemText(sort.list, static_cast<int>(second), sort.column));
    return sort.ascending ? compared : -compared;
}

}  // namespace

ManageAgentKeysDialog::ManageAgentKeysDialog(VListViewState& state, AgentKeyStore& store,
                                             HWND parent)
    : VDialog(template_, parent), template_(MakeTemplate()), state_(state), store_(store) {}

VDialogTemplate ManageAgentKeysDialog::MakeTemplate() {
    // Wide enough for the columns' own widths, with room for a scroll bar.
    VDialogTemplate dialog(L"Manage Agent Keys", 434, 186);
    dialog.AddControl(L"Static", L"", ProtectionTextId, 7, 7, 420, 10, SS_LEFT);
    dialog.AddControl(WC_LISTVIEWW, L"", ListViewId, 7, 20, 420, 138,
                      LVS_REPORT | LVS_SHOWSELALWAYS | WS_TABSTOP, WS_EX_CLIENTEDGE);
    dialog.AddControl(L"Button", L"&Add Key...", AddKeyId, 7, 165, 60, 14,
                      BS_PUSHBUTTON | WS_TABSTOP);
    dialog.AddControl(L"Button", L"&Remove", RemoveId, 71, 165, 50, 14, BS_PUSHBUTTON | WS_TABSTOP);
    dialog.AddControl(L"Button", L"Remove A&ll", RemoveAllId, 125, 165, 55, 14,
                      BS_PUSHBUTTON | WS_TABSTOP);
    dialog.AddControl(L"Button", L"Close", IDOK, 377, 165, 50, 14, BS_DEFPUSHBUTTON | WS_TABSTOP);
    return dialog;
}

bool ManageAgentKeysDialog::OnInitDialog() {
    list_ = GetItem(ListViewId);
    ListView_SetExtendedListViewStyle(list_, LVS_EX_FULLROWSELECT | LVS_EX_HEADERDRAGDROP);
    AddColumns();
    Refresh();
    ApplyState();
    SetTimer(GetHwnd(), RefreshTimer, RefreshMs, nullptr);
    // Tells the user how keys kept by the agent are sealed, or why the
    // agent's keys cannot be shown.
    VReportMessageParams report;
    SetItemText(ProtectionTextId,
                store_.CheckOpen(report)
                    ? L"Keys are held for this logon session only, sealed with your Windows logon."
                    : report.GetTextAsString().c_str());
    // Opened from the tray, the window has no owner to stand in front of.
    SetForegroundWindow(GetHwnd());
    return true;
}

void ManageAgentKeysDialog::OnOK() { Close(IDOK); }

void ManageAgentKeysDialog::OnCancel() { Close(IDCANCEL); }

bool ManageAgentKeysDialog::OnCommand(WORD id, WORD notifyCode, HWND control) {
    switch (id) {
        case AddKeyId:
            AddKey();
            return true;
        case RemoveId:
            RemoveSelected();
            return true;
        case RemoveAllId:
            store_.RemoveAll();
            Refresh();
            return true;
        default:
            return VDialog::OnCommand(id, notifyCode, control);
    }
}

bool ManageAgentKeysDialog::OnMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) {
    if (message == WM_TIMER && wParam == RefreshTimer) {
        if (store_.GetGeneration() != generation_) Refresh();
        result = 0;
        return true;
    }
    if (message != WM_NOTIFY) return false;
    const auto* header = reinterpret_cast<const NMHDR*>(lParam);
    if (header->idFrom != ListViewId || header->code != LVN_COLUMNCLICK) return false;
    const int column = reinterpret_cast<const NMLISTVIEW*>(lParam)->iSubItem;
    SortBy(column, column == sortColumn_ ? !sortAscending_ : true);
    result = 0;
    return true;
}

void ManageAgentKeysDialog::AddColumns() {
    for (int index = 0; index < ColumnCount; ++index) {
        LVCOLUMNW column{};
        column.mask = LVCF_TEXT | LVCF_WIDTH | LVCF_SUBITEM;
        column.pszText = const_cast<wchar_t*>(Columns[index].title);
        column.cx = Columns[index].width;
        column.iSubItem = index;
        ListView_InsertColumn(list_, index, &column);
    }
}

// A layout saved for another set of columns (an older version) is not applied.
void ManageAgentKeysDialog::ApplyState() {
    if (state_.widths.GetCount() != static_cast<size_t>(ColumnCount)) return;
    for (int index = 0; index < ColumnCount; ++index)
        ListView_SetColumnWidth(list_, index, state_.widths[static_cast<size_t>(index)]);
    if (state_.order.GetCount() == static_cast<size_t>(ColumnCount)) {
        std::vector<int> order(state_.order.begin(), state_.order.end());
        ListView_SetColumnOrderArray(list_, ColumnCount, order.data());
    }
    if (state_.sortColumn >= 0 && state_.sortColumn < ColumnCount)
        SortBy(state_.sortColumn, state_.sortAscending);
}

void ManageAgentKeysDialog::KeepState() {
    VListViewState state;
    state.sortColumn = sortColumn_;
    state.sortAscending = sortAscending_;
    std::vector<int> order(ColumnCount);
    ListView_GetColumnOrderArray(list_, ColumnCount, order.data());
    for (int index = 0; index < ColumnCount; ++index) {
        state.widths.Add(ListView_GetColumnWidth(list_, index));
        state.order.Add(order[static_cast<size_t>(index)]);
    }
    state_ = state;
}

void ManageAgentKeysDialog::SortBy(int column, bool ascending) {
    sortColumn_ = column;
    sortAscending_ = ascending;
    // The header shows the sorted column with its arrow.
    const HWND header = ListView_GetHeader(list_);
    for (int index = 0; index < ColumnCount; ++index) {
        HDITEMW item{};
        item.mask = HDI_FORMAT;
        Header_GetItem(header, index, &item);
        item.fmt &= ~(HDF_SORTUP | HDF_SORTDOWN);
        if (index == column) item.fmt |= ascending ? HDF_SORTUP : HDF_SORTDOWN;
        Header_SetItem(header, index, &item);
    }
    SortOrder order{list_, column, ascending};
    ListView_SortItemsEx(list_, CompareItems, reinterpret_cast<LPARAM>(&order));
}

void ManageAgentKeysDialog::Refresh() {
    generation_ = store_.GetGeneration();
    keys_ = store_.List();
    ListView_DeleteAllItems(list_);
    for (size_t index = 0; index < keys_.size(); ++index) {
        const AgentKeyInfo& info = keys_[index];
        // The type and bits come from the public key alone.
        const wchar_t* label;
        unsigned bits;
        DescribePublicKey(info.publicBlob, label, bits);
        const AgentText fingerprint = KeyFingerprint(info.publicBlob);
        const std::wstring texts[ColumnCount] = {
            label, std::to_wstring(bits), std::wstring(fingerprint.begin(), fingerprint.end()),
            Wide(info.comment).c_str()};
        LVITEMW item{};
        item.mask = LVIF_TEXT | LVIF_PARAM;
        item.iItem = static_cast<int>(index);
        item.pszText = const_cast<wchar_t*>(texts[0].c_str());
        item.lParam = static_cast<LPARAM>(index);
        const int at = ListView_InsertItem(list_, &item);
        for (int column = 1; column < ColumnCount; ++column)
            ListView_SetItemText(list_, at, column, const_cast<wchar_t*>(texts[column].c_str()));
    }
    if (sortColumn_ >= 0) SortBy(sortColumn_, sortAscending_);
}

void ManageAgentKeysDialog::AddKey() {
    wchar_t path[MAX_PATH] = {};
    OPENFILENAMEW open{};
    open.lStructSize = sizeof open;
    open.hwndOwner = GetHwnd();
    open.lpstrFilter = L"Private key files\0*.*\0";
    open.lpstrFile = path;
    open.nMaxFile = MAX_PATH;
    open.lpstrTitle = L"Add Key";
    open.Flags = OFN_FILEMUSTEXIST | OFN_PATHMUSTEXIST | OFN_HIDEREADONLY | OFN_EXPLORER;
    if (!GetOpenFileNameW(&open)) return;

    VReportMessageParams report;
    LoadedKey key;
    if (LoadKeyAsking(VUnicodeString(path), true, GetHwnd(), keyOptions_, key, report)) {
        if (!store_.Add(key.key, key.comment, keyOptions_.LifetimeSeconds(), keyOptions_.confirm,
                        report))
            VMessageBox(report, MB_OK | MB_ICONEXCLAMATION, GetHwnd());
    } else if (report.GetMessageCode() != 0) {
        VMessageBox(report, MB_OK | MB_ICONEXCLAMATION, GetHwnd());
    }
    Refresh();
}

void ManageAgentKeysDialog::RemoveSelected() {
    for (int item = -1; (item = ListView_GetNextItem(list_, item, LVNI_SELECTED)) >= 0;) {
        LVITEMW read{};
        read.mask = LVIF_PARAM;
        read.iItem = item;
        if (ListView_GetItem(list_, &read))
            store_.Remove(keys_[static_cast<size_t>(read.lParam)].publicBlob);
    }
    Refresh();
}

void ManageAgentKeysDialog::Close(INT_PTR result) {
    KillTimer(GetHwnd(), RefreshTimer);
    KeepState();
    EndDialog(result);
}
