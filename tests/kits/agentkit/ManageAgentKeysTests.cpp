// The Manage Agent Keys window: its saved layout, and keys added and removed.

#include <gtest/gtest.h>

#include <windows.h>

#include <commctrl.h>

#include "AgentTestSupport.h"
#include "AgentUi.h"
#include "CommonUi.h"
#include "ManageAgentKeysDialog.h"
#include "ModalProbe.h"

namespace {

using Window = ManageAgentKeysDialog;

bool PassphraseDisabled() { return true; }
VUnicodeString NoPassphrase() { return VUnicodeString(); }
bool Update(VProfileEncryptedString&, const VUnicodeString&) { return false; }
VUnicodeString Plaintext(const VProfileEncryptedString&) { return VUnicodeString(); }

// Shows the window with saved; step runs in its modal loop until true. The layout handed back.
VListViewState Launch(const wchar_t* saved, const std::function<bool(HWND, HWND)>& step) {
    CommonUiInit(nullptr, nullptr);
    VListViewState layout;
    EXPECT_TRUE(VListViewState::Parse(saved, layout));
    VProfileListViewState state(L"Traywell Agent Keys ListView State", layout);
    VDialog* openDialog = nullptr;
    ModalProbe probe([&] {
        const HWND window = openDialog ? openDialog->GetHwnd() : nullptr;
        return window && IsWindowVisible(window) &&
               step(window, GetDlgItem(window, Window::ListViewId));
    });
    EXPECT_TRUE(SSH2::LaunchManageAgentKeys(state, nullptr, &openDialog));
    EXPECT_EQ(openDialog, nullptr);
    return state.Get();
}

}  // namespace

TEST(ManageAgentKeysTest, LaysOutFromTheStateAndHandsBackTheUsersLayout) {
    EXPECT_THROW(SSH2::ClientUiInit(PassphraseDisabled, nullptr, Update, Plaintext),
                 std::invalid_argument);
    SSH2::ClientUiInit(PassphraseDisabled, NoPassphrase, Update, Plaintext);
    const std::vector<int> ownWidths{70, 45, 365, 125};
    const struct {
        const wchar_t* saved;
        std::vector<int> widthsShown, orderKept;
    } cases[] = {
        {L"0,1;100,90,80,70;3,2,1,0", {100, 90, 80, 70}, {3, 2, 1, 0}},
        {L"", ownWidths, {0, 1, 2, 3}},
        {L"0,1;100,90;1,0", ownWidths, {0, 1, 2, 3}},  // a layout of other columns
    };
    for (const auto& test : cases) {
        std::vector<int> widths;
        VUnicodeString protection;
        const VListViewState kept = Launch(test.saved, [&](HWND window, HWND list) {
            for (int column = 0; column < Header_GetItemCount(ListView_GetHeader(list)); ++column)
                widths.push_back(ListView_GetColumnWidth(list, column));
            protection = ItemText(window, Window::ProtectionTextId);
            ListView_SetColumnWidth(list, 1, 123);
            NMLISTVIEW click{};
            click.hdr = {list, static_cast<UINT_PTR>(Window::ListViewId),
                         static_cast<UINT>(LVN_COLUMNCLICK)};
            click.iSubItem = 2;
            for (int times = 0; times < 2; ++times)
                SendMessageW(window, WM_NOTIFY, Window::ListViewId,
                             reinterpret_cast<LPARAM>(&click));
            return PostMessageW(window, WM_COMMAND, IDCANCEL, 0) != FALSE;
        });
        EXPECT_EQ(widths, test.widthsShown) << test.saved;
        EXPECT_EQ(protection,
                  L"Keys are held for this logon session only, sealed with your Windows logon.");
        EXPECT_TRUE(kept.sortColumn == 2 && !kept.sortAscending);
        EXPECT_EQ(
            std::vector<int>(kept.widths.begin(), kept.widths.end()),
            (std::vector<int>{test.widthsShown[0], 123, test.widthsShown[2], test.widthsShown[3]}));
        EXPECT_EQ(std::vector<int>(kept.order.begin(), kept.order.end()), test.orderKept);
    }
}

TEST(ManageAgentKeysTest, AddsAKeyThroughTheFileDialogAndThePassPhraseAndRemovesIt) {
    constexpr int FileNameComboId = 1148;  // the file dialog's file name field
    AgentKeyStore store;
    ASSERT_TRUE(store.RemoveAll());
    int step = 0;
    std::wstring listed;
    VUnicodeString prompt;
    bool confirmSeen = false;
    const VListViewState kept = Launch(L"", [&](HWND window, HWND list) {
        HWND dialog = nullptr;  // the file dialog or the pass-phrase prompt
        for (HWND candidate = nullptr;
             (candidate = FindWindowExW(nullptr, candidate, L"#32770", nullptr));)
            if (candidate != window && IsWindowVisible(candidate) &&
                GetWindowThreadProcessId(candidate, nullptr) == GetCurrentThreadId())
                dialog = candidate;
        const HWND passphrase = dialog ? GetDlgItem(dialog, AddKeyDialog::PassphraseId) : nullptr;
        if (step == 0) {
            PostMessageW(window, WM_COMMAND, Window::AddKeyId, 0);
        } else if (step == 1) {
            if (!dialog || !GetDlgItem(dialog, FileNameComboId)) return false;
            SetDlgItemTextW(dialog, FileNameComboId, TestKeyPath("ed25519-sealed").c_str());
            PostMessageW(dialog, WM_COMMAND, IDOK, 0);
        } else if (step <= 3) {  // wrong, then right, asking for confirmation
            if (!passphrase || !IsWindowEnabled(passphrase)) return false;
            if (step == 3) prompt = ItemText(dialog, AddKeyDialog::PromptId);
            SetWindowTextW(passphrase, step == 2 ? L"wrong" : L"open sesame");
            CheckDlgButton(dialog, AddKeyDialog::ConfirmId, BST_CHECKED);
            PostMessageW(dialog, WM_COMMAND, IDOK, 0);
        } else if (step == 4) {  // listed: select it and remove it
            if (ListView_GetItemCount(list) != 1) return false;
            wchar_t text[256] = {};
            for (int column = 0; column < 4; ++column) {
                ListView_GetItemText(list, 0, column, text, 256);
                listed += text + std::wstring(L"|");
            }
            const std::vector<AgentKeyInfo> held = store.List();
            confirmSeen = held.size() == 1 && held[0].confirm;
            ListView_SetItemState(list, 0, LVIS_SELECTED, LVIS_SELECTED);
            PostMessageW(window, WM_COMMAND, Window::RemoveId, 0);
        } else {
            if (ListView_GetItemCount(list) != 0) return false;
            ListView_SetColumnWidth(list, 3, 222);
            return PostMessageW(window, WM_COMMAND, IDOK, 0) != FALSE;
        }
        ++step;
        return false;
    });
    EXPECT_EQ(step, 5);
    EXPECT_NE(prompt.Find(L"pass phrase does not open"), VUnicodeString::npos) << prompt.c_str();
    const AgentText fingerprint =
        KeyFingerprint(LoadTestKey("ed25519-sealed", L"open sesame").key.GetPublicBlob());
    EXPECT_EQ(listed, L"ED25519|256|" + std::wstring(fingerprint.begin(), fingerprint.end()) +
                          L"|sealed ed25519|");
    EXPECT_TRUE(confirmSeen);
    EXPECT_TRUE(store.List().empty());
    EXPECT_EQ(kept.widths[3], 222);
}
