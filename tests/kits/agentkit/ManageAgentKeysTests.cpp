// The Manage Agent Keys window: it opens as the caller's open dialog, lays its
// list view out from the state value, hands the user's layout back, and adds
// and removes keys as a user does.

#include <gtest/gtest.h>

#include <windows.h>

#include <commctrl.h>

#include <string>
#include <vector>

#include "AgentKeyStore.h"
#include "AgentUi.h"
#include "CommonUi.h"
#include "KeyFile.h"
#include "ModalProbe.h"
#include "VDialog.h"

namespace {

constexpr int ListViewId = 1001;
constexpr int ProtectionTextId = 1002;

bool PassphraseDisabled() { return true; }
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
    const std::wstring protection =
        L"Keys are held for this logon session only, sealed with your Windows logon.";
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
        VListViewState saved;
        ASSERT_TRUE(VListViewState::Parse(test.saved, saved));
        VProfileListViewState state(L"Traywell Agent Keys ListView State", saved);
        VDialog* openDialog = nullptr;
        Observed observed;
        ModalProbe probe([&] { return ActAsUser(openDialog, observed); });

        ASSERT_TRUE(SSH2::LaunchManageAgentKeys(state, nullptr, &openDialog));
        EXPECT_EQ(openDialog, nullptr);
        EXPECT_EQ(observed.widths, test.widthsShown) << test.saved;
        EXPECT_EQ(observed.protection, protection);
        const VListViewState& kept = state.Get();
        EXPECT_EQ(kept.sortColumn, 2);
        EXPECT_FALSE(kept.sortAscending);
        EXPECT_EQ(
            std::vector<int>(kept.widths.begin(), kept.widths.end()),
            (std::vector<int>{test.widthsShown[0], 123, test.widthsShown[2], test.widthsShown[3]}));
        EXPECT_EQ(std::vector<int>(kept.order.begin(), kept.order.end()), test.orderKept);
    }
}

namespace {

constexpr int AddKeyId = 1003;
constexpr int RemoveId = 1004;
constexpr int PassphraseId = 1102;
constexpr int ConfirmId = 1104;
constexpr int FileNameComboId = 1148;  // the file dialog's file name field

std::wstring KeyPath(const char* name) {
    const std::string path = std::string(AGENT_TEST_KEYS_DIR) + "\\" + name;
    return std::wstring(path.begin(), path.end());
}

}  // namespace

// A user's session in the window: Add Key, the file dialog, the pass-phrase
// prompt (a wrong pass phrase first), the key listed and held in the shared
// store; Remove; Close, with the layout handed back for saving.
TEST(ManageAgentKeysTest, AddsAKeyThroughTheFileDialogAndThePassPhraseAndRemovesIt) {
    CommonUiInit(nullptr, nullptr);
    AgentKeyStore store;
    ASSERT_TRUE(store.RemoveAll());
    VProfileListViewState state(L"Traywell Agent Keys ListView State", VListViewState());
    VDialog* openDialog = nullptr;
    int step = 0;
    std::wstring listed, prompt;
    bool confirmSeen = false;
    const std::wstring file = KeyPath("ed25519-sealed");
    ModalProbe probe([&] {
        const HWND window = openDialog ? openDialog->GetHwnd() : nullptr;
        if (!window) return false;
        const HWND list = GetDlgItem(window, ListViewId);
        HWND dialog = nullptr;
        for (HWND candidate = nullptr;
             (candidate = FindWindowExW(nullptr, candidate, L"#32770", nullptr));)
            if (candidate != window && IsWindowVisible(candidate) &&
                GetWindowThreadProcessId(candidate, nullptr) == GetCurrentThreadId())
                dialog = candidate;
        switch (step) {
            case 0:  // Add Key opens the file dialog
                PostMessageW(window, WM_COMMAND, AddKeyId, 0);
                ++step;
                return false;
            case 1:  // the file dialog: type the path, OK
                if (!dialog || !GetDlgItem(dialog, FileNameComboId)) return false;
                SetDlgItemTextW(dialog, FileNameComboId, file.c_str());
                PostMessageW(dialog, WM_COMMAND, IDOK, 0);
                ++step;
                return false;
            case 2:
            case 3:  // the pass-phrase prompt: wrong, then right, asking for confirmation
                if (!dialog || !GetDlgItem(dialog, PassphraseId) ||
                    !IsWindowEnabled(GetDlgItem(dialog, PassphraseId)))
                    return false;
                if (step == 3) {
                    wchar_t text[256] = {};
                    GetDlgItemTextW(dialog, 1105, text, 256);
                    prompt = text;
                }
                SetDlgItemTextW(dialog, PassphraseId, step == 2 ? L"wrong" : L"open sesame");
                CheckDlgButton(dialog, ConfirmId, BST_CHECKED);
                PostMessageW(dialog, WM_COMMAND, IDOK, 0);
                ++step;
                return false;
            case 4: {  // listed; select it and remove it
                if (ListView_GetItemCount(list) != 1) return false;
                wchar_t text[256] = {};
                for (int column = 0; column < 4; ++column) {
                    ListView_GetItemText(list, 0, column, text, 256);
                    listed += text + std::wstring(L"|");
                }
                const std::vector<AgentKeyInfo> held = store.List();
                confirmSeen = held.size() == 1 && held[0].confirm;
                ListView_SetItemState(list, 0, LVIS_SELECTED, LVIS_SELECTED);
                PostMessageW(window, WM_COMMAND, RemoveId, 0);
                ++step;
                return false;
            }
            default:
                if (ListView_GetItemCount(list) != 0) return false;
                ListView_SetColumnWidth(list, 3, 222);
                return PostMessageW(window, WM_COMMAND, IDOK, 0) != FALSE;
        }
    });
    ASSERT_TRUE(SSH2::LaunchManageAgentKeys(state, nullptr, &openDialog));
    EXPECT_EQ(step, 5);
    EXPECT_NE(prompt.find(L"pass phrase does not open"), std::wstring::npos) << prompt;
    const LoadedKey expected = [&] {
        LoadedKey key;
        VReportMessageParams report;
        LoadKeyFile(file.c_str(), VUnicodeString(L"open sesame"), key, report);
        return key;
    }();
    const AgentText fingerprint = KeyFingerprint(expected.key.GetPublicBlob());
    EXPECT_EQ(listed, L"ED25519|256|" + std::wstring(fingerprint.begin(), fingerprint.end()) +
                          L"|sealed ed25519|");
    EXPECT_TRUE(confirmSeen);
    EXPECT_TRUE(store.List().empty());
    EXPECT_EQ(state.Get().widths[3], 222);
}
