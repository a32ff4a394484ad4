// The WindowManager in this process: the configuration folder and the icon's menu.
#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <vector>

#include "AppPaths.h"
#include "ProgramFolder.h"
#include "SharedGlobalConfig.h"
#include "Ssh2TestSeam.h"
#include "TrayDriver.h"
#include "Traywell.h"
#include "VMessageBoxHook.h"
#include "WindowManager.h"

namespace {

TEST(WindowManagerStartup, ChoosesTheClientsFolderAndHoldsTheCachesWhenAsked) {
    InstalledClients clients(true, false, false);
    GlobalConfig* config = nullptr;
    GetGlobalConfig(config, -1);  // the process's one object, which start-up reads
    const VUnicodeString beside = GetPathBesideProgram(L"Config");
    const struct {
        const wchar_t* arguments;
        bool configBeside, keepCaches;
        VUnicodeString folder;
    } cases[] = {
        {L" -f D:\\Conf\\\\", true, true, L"D:\\Conf"},
        {L" -f D:/Conf/", false, false, L"D:/Conf"},
        {L" /F C:\\\\ /F D:\\Other", false, true, L"C:\\"},
        {L"", true, false, beside},
        {L"  ", false, true, GetAppConfigPath(L"Termwright")},
    };
    for (const auto& test : cases) {
        if (test.configBeside) CreateDirectoryW(beside.c_str(), nullptr);
        config->KeepSharedMemoryAgentOpen.Set(test.keepCaches);
        WindowManager manager;
        manager.Initialize(VUnicodeString(L"\"C:\\any\\traywell.exe\"") + test.arguments);
        RemoveDirectoryW(beside.c_str());
        EXPECT_EQ(manager.GetClientConfigArgument(), VUnicodeString(L"/F \"") + test.folder + L"\"")
            << test.arguments;
        // A second holder sees whether the manager holds the cache.
        const auto probe = VRefPtr<VSharedMemoryCache>::Adopt(
            new VSharedMemoryCache(WindowManager::KeyCacheName, WindowManager::KeyCacheSize));
        EXPECT_EQ(probe->GetHolderCount(), test.keepCaches ? 2u : 1u) << test.arguments;
    }
    config->KeepSharedMemoryAgentOpen.Set(true);
}

TEST(TraywellStartup, AFailedSelfTestInFipsModeStopsItWithTheLibrarysText) {
    static VUnicodeString shown;
    VMessageBoxHook previous = SetMessageBoxHookForTests([](const VMessageBoxCall& call) {
        shown = call.text;
        return IDOK;
    });
    const DWORD on = 1;
    RegSetKeyValueW(HKEY_CURRENT_USER, L"Software\\Policies\\Quillon", L"Enable FIPS Mode",
                    REG_DWORD, &on, sizeof on);
    SSH2::Testing::BreakSelfTest(L"sha256");
    {
        Traywell traywell;
        PostQuitMessage(0);  // should it start after all, its message loop ends at once
        EXPECT_EQ(traywell.Main(GetModuleHandleW(nullptr), SW_SHOWNORMAL), 1);
        EXPECT_FALSE(traywell.IsSshInitialized());
    }
    SSH2::Testing::RepairSelfTests();
    RegDeleteKeyValueW(HKEY_CURRENT_USER, L"Software\\Policies\\Quillon", L"Enable FIPS Mode");
    SetMessageBoxHookForTests(previous);
    EXPECT_TRUE(shown.StartsWith(L"Could not initialize SSH2:\r\nThe self-test of the sha256 code"))
        << shown.c_str();
}

// A menu as "id label|..." ("w<record>#<session>" for window items, "~" greyed, "-" separator,
// "[label: items]" submenu).
VUnicodeString Dump(HMENU menu, const WindowLists& lists) {
    std::vector<WindowData> records;
    for (const auto* list : {&lists.GetTerminalWindows(), &lists.GetTransferWindows()})
        records.insert(records.end(), list->begin(), list->end());
    VUnicodeString text;
    for (int i = 0; i < GetMenuItemCount(menu); ++i) {
        wchar_t label[128] = {};
        MENUITEMINFOW item{};
        item.cbSize = sizeof item;
        item.fMask = MIIM_ID | MIIM_STATE | MIIM_FTYPE | MIIM_STRING | MIIM_SUBMENU;
        item.dwTypeData = label;
        item.cch = 128;
        GetMenuItemInfoW(menu, static_cast<UINT>(i), TRUE, &item);
        const auto record = std::find_if(records.begin(), records.end(), [&](const WindowData& r) {
            return r.commandId == item.wID;
        });
        VUnicodeString entry;
        if (item.fType & MFT_SEPARATOR)
            entry = L"-";
        else if (item.hSubMenu)
            entry = VUnicodeString(L"[") + label + L": " + Dump(item.hSubMenu, lists) + L"]";
        else if (record != records.end())
            entry.FormatPositional(L"w%1!u!#%2!u! %3", unsigned(record - records.begin()),
                                   record->sessionNumber, label);
        else
            entry.FormatPositional(L"%1!u! %2", item.wID, label);
        // Wine reports separators as greyed.
        text += VUnicodeString(i > 0 ? L"|" : L"") + entry +
                ((item.fState & MFS_GRAYED) && !(item.fType & MFT_SEPARATOR) ? L"~" : L"");
    }
    return text;
}

TEST(WindowManagerMenu, ItemsLabelsPrefixesGreyingIdentifiersAndSessions) {
    const wchar_t* const start = L"32772 &Connect...|";
    const wchar_t* const empty = L"[&Recent Sessions: 33000 (Empty)~]|-|";
    const wchar_t* const recent = L": 33010 &1 A&&B|33011 &2 123456789012345678901234567...]|";
    const VUnicodeString windowCommands = L"32773 &Minimize All|32776 Restore &All|-|";
    // clang-format off
    const struct {
        bool termwright, filewright, integrated;
        int terminalWindows, transferWindows;
        Lines sessions;
        VUnicodeString expected;
    } cases[] = {
        {true, false, false, 0, 0, {}, VUnicodeString(start) + empty + L"32773 &Minimize All~|32776 Restore &All~|"},
        {false, true, false, 0, 0, {}, VUnicodeString(start) + L"[&Recent Sessions" + recent + L"-|32773 &Minimize All~|32776 Restore &All~|"},
        {true, false, false, 1, 0, {L"12,Work", L"-5,Minus", L"4294967296,Big", L"5,a&b,c", L"123456789012345678901234567890 no comma"},
         VUnicodeString(start) + empty + windowCommands + L"32778 Termwright Sessions...|w0#12 &1 Work|w1#0 &2 Minus|w2#0 &3 Big|"
         L"w3#5 &4 a&&b,c|w4#0 &5 123456789012345678901234567890|"},
        {true, true, true, 11, 0, {L"1,S"}, VUnicodeString(start) + L"[&Recent Terminal Sessions: 33000 (Empty)~]|[&Recent Transfer Sessions" +
         recent + L"-|" + windowCommands + L"32778 Termwright Sessions...|w0#1 &1 S|w1#1 &2 S|w2#1 &3 S|w3#1 &4 S|w4#1 &5 S|w5#1 &6 S|"
         L"w6#1 &7 S|w7#1 &8 S|w8#1 &9 S|w9#1 &0 S|"},
        {true, true, false, 4, 8, {L"1,S"}, VUnicodeString(start) + empty + windowCommands + L"32778 Termwright Sessions...|w0#1 &1 S|"
         L"w1#1 &2 S|w2#1 &3 S|w3#1 &4 S|-|32777 Filewright Sessions...|w4#1 &5 S|w5#1 &6 S|w6#1 &7 S|w7#1 &8 S|w8#1 &9 S|w9#1 &0 S|"
         L"w10#1   S|w11#1   S|"},
    };
    // clang-format on
    for (const auto& test : cases) {
        InstalledClients clients(test.termwright, test.filewright, test.integrated);
        std::optional<ClientHelper> terminal, transfer;
        if (test.terminalWindows)
            terminal.emplace(true, test.sessions, L"agree", test.terminalWindows);
        if (test.transferWindows)
            transfer.emplace(false, test.sessions, L"agree", test.transferWindows);
        TempFolder folder;
        WindowManager manager;
        manager.Initialize(VUnicodeString(L"tests.exe /F ") + folder.Path());
        if (VRecentFileList* list = manager.GetTransferRecentList()) {
            list->Add(L"123456789012345678901234567890 and more");
            list->Add(L"A&B");
        }
        HMENU menu = nullptr;
        manager.BuildTrayMenu(menu);
        ASSERT_NE(menu, nullptr);
        EXPECT_EQ(Dump(menu, manager.GetWindowLists()),
                  test.expected + L"-|32779 Ma&nage Agent Keys...|-|32775 &About|-|32771 E&xit");
        DestroyMenu(menu);
    }
}

}  // namespace
