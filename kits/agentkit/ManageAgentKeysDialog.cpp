#include "ManageAgentKeysDialog.h"

#include <commctrl.h>

#include <iterator>
#include <vector>

#include "AgentUiFunctions.h"

namespace {

// The columns of the key list, with their widths in pixels until the user
// changes them.
struct Column {
    const wchar_t* title;
    int width;
};

constexpr Column Columns[] = {
    {L"Comment", 160},
    {L"Type", 80},
    {L"Bits", 50},
    {L"Fingerprint", 240},
};

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

ManageAgentKeysDialog::ManageAgentKeysDialog(VListViewState& state, HWND parent)
    : VDialog(template_, parent), template_(MakeTemplate()), state_(state) {}

VDialogTemplate ManageAgentKeysDialog::MakeTemplate() {
    VDialogTemplate dialog(L"Manage Agent Keys", 320, 186);
    dialog.AddControl(L"Static", L"", ProtectionTextId, 7, 7, 306, 10, SS_LEFT);
    dialog.AddControl(WC_LISTVIEWW, L"", ListViewId, 7, 20, 306, 138,
                      LVS_REPORT | LVS_SHOWSELALWAYS | WS_TABSTOP, WS_EX_CLIENTEDGE);
    dialog.AddControl(L"Button", L"Close", IDOK, 263, 165, 50, 14, BS_DEFPUSHBUTTON | WS_TABSTOP);
    return dialog;
}

bool ManageAgentKeysDialog::OnInitDialog() {
    list_ = GetItem(ListViewId);
    ListView_SetExtendedListViewStyle(list_, LVS_EX_FULLROWSELECT | LVS_EX_HEADERDRAGDROP);
    AddColumns();
    ApplyState();
    // Tells the user how keys kept by the agent are sealed in the settings.
    const AgentUiFunctions& functions = GetAgentUiFunctions();
    if (functions.isConfigPassphraseDisabled)
        SetItemText(ProtectionTextId,
                    functions.isConfigPassphraseDisabled()
                        ? L"Stored keys are protected with your Windows logon."
                        : L"Stored keys are protected with the configuration pass phrase.");
    // Opened from the tray, the window has no owner to stand in front of.
    SetForegroundWindow(GetHwnd());
    return true;
}

void ManageAgentKeysDialog::OnOK() { Close(IDOK); }

void ManageAgentKeysDialog::OnCancel() { Close(IDCANCEL); }

bool ManageAgentKeysDialog::OnMessage(UINT message, WPARAM, LPARAM lParam, LRESULT& result) {
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

void ManageAgentKeysDialog::Close(INT_PTR result) {
    KeepState();
    EndDialog(result);
}
