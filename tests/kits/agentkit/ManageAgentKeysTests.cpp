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
    std::vector<int> widths;
    std::wstring protection;
};

// Reads the open window, then acts as a user: widens column 1, sorts by
// column 2 twice (descending) and closes the window.
bool ActAsUser(VDialog* openDialog, Observed& observed) {
    const HWND window = openDialog ? openDialog->GetHwnd() : nullptr;
    if (!window || !IsWindowVisible(window)) return false;
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
    for (int times = 0; times < 2; ++times)
        SendMessageW(window, WM_NOTIFY, ListViewId, reinterpret_cast<LPARAM>(&click));
    return PostMessageW(window, WM_COMMAND, IDCANCEL, 0) != FALSE;
}

}  // namespace

TEST(ManageAgentKeysTest, LaysOutFromTheStateAndHandsBackTheUsersLayout) {
    CommonUiInit(nullptr, nullptr);
    EXPECT_THROW(SSH2::ClientUiInit(PassphraseDisabled, nullptr, Update, Plaintext),
                 std::invalid_argument);
    SSH2::ClientUiInit(PassphraseDisabled, NoPassphrase, Update, Plaintext);
    const std::wstring logon = L"Stored keys are protected with your Windows logon.";
    const std::wstring passphrase =
        L"Stored keys are protected with the configuration pass phrase.";
    const std::vector<int> ownWidths{160, 80, 50, 240};
    const struct {
        const wchar_t* saved;
        bool passphraseDisabled;
        std::vector<int> widthsShown, orderKept;
        std::wstring protection;
    } cases[] = {
        {L"0,1;100,90,80,70;3,2,1,0", true, {100, 90, 80, 70}, {3, 2, 1, 0}, logon},
        {L"", false, ownWidths, {0, 1, 2, 3}, passphrase},
        {L"0,1;100,90;1,0",
         false,
         ownWidths,
         {0, 1, 2, 3},
         passphrase},  // a layout of other columns
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
        EXPECT_EQ(observed.widths, test.widthsShown) << test.saved;
        EXPECT_EQ(observed.protection, test.protection);
        const VListViewState& kept = state.Get();
        EXPECT_EQ(kept.sortColumn, 2);
        EXPECT_FALSE(kept.sortAscending);
        EXPECT_EQ(
            std::vector<int>(kept.widths.begin(), kept.widths.end()),
            (std::vector<int>{test.widthsShown[0], 123, test.widthsShown[2], test.widthsShown[3]}));
        EXPECT_EQ(std::vector<int>(kept.order.begin(), kept.order.end()), test.orderKept);
    }
}
