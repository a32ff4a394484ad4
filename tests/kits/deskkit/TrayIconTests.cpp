// The tray icon under Wine: its window, its menu and choice, re-adding after a new taskbar.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ModalProbe.h"
#include "TrayIcon.h"

namespace {

constexpr UINT MenuGetHandle = 0x01E1;  // MN_GETHMENU: the menu a "#32768" window shows

class RecordingClient : public TrayIconClient {
public:
    bool buildMenu = true;
    int added = 0;
    int readded = 0;
    std::vector<int> commands;

    void OnTrayIconAdded() override { ++added; }
    void OnTrayIconReAdded() override { ++readded; }
    void BuildTrayMenu(HMENU& menu) override {
        if (!buildMenu) return;
        menu = CreatePopupMenu();
        AppendMenuW(menu, MF_STRING, 32772, L"&Connect...");
        AppendMenuW(menu, MF_SEPARATOR, 0, nullptr);
        AppendMenuW(menu, MF_STRING, 32771, L"E&xit");
    }
    void OnTrayCommand(int commandId) override { commands.push_back(commandId); }
};

// The labels of this thread's open popup menu; then presses keys in it.
bool ReadMenuAndPress(std::vector<std::wstring>& labels, std::initializer_list<WPARAM> keys) {
    const HWND window = FindOwnWindow(L"#32768");
    if (!window) return false;
    const auto menu = reinterpret_cast<HMENU>(SendMessageW(window, MenuGetHandle, 0, 0));
    for (int item = 0; item < GetMenuItemCount(menu); ++item) {
        wchar_t label[64] = {};
        GetMenuStringW(menu, item, label, 64, MF_BYPOSITION);
        labels.push_back(label);
    }
    for (WPARAM key : keys) PostMessageW(window, WM_KEYDOWN, key, 0);
    return true;
}

}  // namespace

TEST(TrayIconTest, ClicksOpenTheClientsMenuAndTheIconComesBackWithTheTaskbar) {
    RecordingClient client;
    TrayIcon icon(&client);
    ASSERT_TRUE(icon.Create() && icon.IsAdded()) << "the shell under Wine accepts the icon";
    EXPECT_EQ(client.added, 1);
    EXPECT_FALSE(icon.Create()) << "one window per icon";
    HWND found = nullptr;  // a Traywell of another test may run meanwhile
    do found = FindWindowExW(nullptr, found, TrayIcon::WindowClassName, nullptr);
    while (found && found != icon.GetWindow());
    EXPECT_EQ(found, icon.GetWindow());
    EXPECT_TRUE(icon.SetTrayIcon(LoadIconW(nullptr, IDI_APPLICATION)));
    EXPECT_TRUE(icon.SetTrayIconTip(L"Quillon Software Traywell"));

    const std::vector<std::wstring> menu{L"&Connect...", L"", L"E&xit"};
    const struct {
        LPARAM click;
        bool buildMenu;
        std::initializer_list<WPARAM> keys;
        std::vector<std::wstring> labels;
        std::vector<int> commands;
    } cases[] = {
        {WM_RBUTTONUP, true, {VK_DOWN, VK_DOWN, VK_RETURN}, menu, {32771}},
        {WM_LBUTTONUP, true, {VK_DOWN, VK_RETURN}, menu, {32772}},
        {WM_RBUTTONUP, true, {VK_ESCAPE}, menu, {}},
        {WM_MOUSEMOVE, true, {}, {}, {}},
        {WM_RBUTTONUP, false, {}, {}, {}},  // the client left the menu null
    };
    for (const auto& test : cases) {
        client.buildMenu = test.buildMenu;
        client.commands.clear();
        std::vector<std::wstring> labels;
        ModalProbe probe([&] { return ReadMenuAndPress(labels, test.keys); });
        PostMessageW(icon.GetWindow(), TrayIcon::CallbackMessage, TrayIcon::IconId, test.click);
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
        EXPECT_EQ(labels, test.labels) << test.click;
        EXPECT_EQ(client.commands, test.commands) << test.click;
    }

    const UINT taskbarCreated = RegisterWindowMessageW(L"TaskbarCreated");
    SendMessageW(icon.GetWindow(), taskbarCreated, 0, 0);
    EXPECT_TRUE(client.readded == 1 && icon.IsAdded());
    icon.RemoveTrayIcon();
    EXPECT_FALSE(icon.IsAdded());
    SendMessageW(icon.GetWindow(), taskbarCreated, 0, 0);
    EXPECT_EQ(std::make_pair(icon.IsAdded(), client.readded), std::make_pair(false, 1));
}
