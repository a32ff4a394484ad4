// The Manage Agent Keys window: it opens as the caller's open dialog, lays its
// list view out from the state value, and hands the user's layout back.

#include <gtest/gtest.h>

#include <windows.h>

#include <commctrl.h>

#include <string>
#include <vector>

#include "AgentUi.h"
#include "CommonUi.h"
#include "ModalProbe.h"
#include "VDialog.h"

namespace {

constexpr int ListViewId = 1001;
constexpr int ProtectionTextId = 1002;

bool g_passphraseDisabled = true;
bool PassphraseDisabled() { return g_passphraseDisabled; }
VUnicodeString NoPassphrase() { return VUnicodeString(); }
bool Update(VProfileEncryptedString&, const VUnicodeString&) { return false; }
VUnicodeString Plaintext(const VProfileEncryptedString&) { return VUnicodeString(); }

struct Observed {
    bool openDialogShown = false;
    std::vector<int> widths;
    std::wstring protection;
};

// Reads the open window, then lets the user widen column 1, sort by column 2
// twice (descending) and close the window.
bool ActAsUser(VDialog* const& openDialog, Observed& observed) {
    const HWND window = openDialog ? openDialog->GetHwnd() : nullptr;
    if (!window) return false;
    observed.openDialogShown = IsWindowVisible(window) != FALSE;
    const HWND list = GetDlgItem(window, ListViewId);
    for (int column = 0; column < Header_GetItemCount(ListView_GetHeader(list)); ++column)
        observed.widths.push_back(ListView_GetColumnWidth(list, column));
    wchar_t text[128] = {};
    GetDlgItemTextW(window, ProtectionTextId, text, 128);
    observed.protection = text;

    ListView_SetColumnWidth(list, 1, 123);
    NMLISTVIEW click{};
    click.hdr = {list, static_cast<UINT_PTR>(ListViewId), static_cast<UINT>(LVN_COLUMNCLICK)};
    click.iSubItem = 2;
    for (int times = 0; times < 2; ++times) SendMessageW(window, WM_NOTIFY, ListViewId, reinterpret_cast<LPARAM>(&click));
    PostMessageW(window, WM_COMMAND, IDCANCEL, 0);
    return true;
}

}  // namespace

TEST(ManageAgentKeysTest, LaysOutFromTheStateAndHandsBackTheUsersLayout) {
    CommonUiInit(nullptr, nullptr);
    SSH2::ClientUiInit(PassphraseDisabled, NoPassphrase, Update, Plaintext);
    const struct {
        const wchar_t* saved;
        std::vector<int> widthsShown;
        std::vector<int> orderKept;
        bool passphraseDisabled;
        const wchar_t* protection;
    } cases[] = {
        {L"0,1;100,90,80,70;3,2,1,0", {100, 90, 80, 70}, {3, 2, 1, 0}, true,
         L"Stored keys are protected with your Windows logon."},
        // Nothing saved, or a layout of other columns: the window's own widths.
        {L"", {160, 80, 50, 240}, {0, 1, 2, 3}, false, L"Stored keys are protected with the configuration pass phrase."},
        {L"0,1;100,90;1,0", {160, 80, 50, 240}, {0, 1, 2, 3}, false,
         L"Stored keys are protected with the configuration pass phrase."},
    };
    for (const auto& test : cases) {
        g_passphraseDisabled = test.passphraseDisabled;
        VListViewState saved;
        ASSERT_TRUE(VListViewState::Parse(test.saved, saved));
        VProfileListViewState state(L"Traywell Agent Keys ListView State", saved);
        VDialog* openDialog = nullptr;
        Observed observed;
        ModalProbe probe([&] { return ActAsUser(openDialog, observed); });

        ASSERT_TRUE(SSH2::LaunchManageAgentKeys(state, nullptr, &openDialog));
        EXPECT_EQ(openDialog, nullptr);
        EXPECT_TRUE(observed.openDialogShown);
        EXPECT_EQ(observed.widths, test.widthsShown) << test.saved;
        EXPECT_EQ(observed.protection, test.protection);

        const VListViewState& kept = state.Get();
        EXPECT_EQ(kept.sortColumn, 2);
        EXPECT_FALSE(kept.sortAscending);
        ASSERT_EQ(kept.widths.GetCount(), 4u);
        EXPECT_EQ(kept.widths[1], 123);
        EXPECT_EQ(kept.widths[0], test.widthsShown[0]);
        EXPECT_EQ(std::vector<int>(kept.order.begin(), kept.order.end()), test.orderKept);
    }
}

TEST(ManageAgentKeysTest, ClientUiInitNeedsEveryFunction) {
    EXPECT_THROW(SSH2::ClientUiInit(PassphraseDisabled, nullptr, Update, Plaintext), std::invalid_argument);
}
