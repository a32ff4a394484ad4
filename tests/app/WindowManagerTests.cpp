// The WindowManager in this process: the configuration folder that start-up
// chooses, and the icon's menu built against the recent lists and client
// helpers in processes of their own, read back through the menu functions.
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

TEST(WindowManagerStartup, ChoosesTheFolderThatClientsAreGiven) {
    InstalledClients clients(true, false, false);
    const VUnicodeString beside = GetPathBesideProgram(L"Config");
    const struct {
        const wchar_t* arguments;
        bool configBeside;
        VUnicodeString folder;
    } cases[] = {
        {L" -f D:\\Conf\\\\", true, L"D:\\Conf"},        {L" -f D:/Conf/", false, L"D:/Conf"},
        {L" /F C:\\\\ /F D:\\Other", false, L"C:\\"},    {L"", true, beside},
        {L"  ", false, GetAppConfigPath(L"Termwright")},
    };
    for (const auto& test : cases) {
        if (test.configBeside) CreateDirectoryW(beside.c_str(), nullptr);
        WindowManager manager;
        manager.Initialize(VUnicodeString(L"\"C:\\any\\traywell.exe\"") + test.arguments);
        RemoveDirectoryW(beside.c_str());
        EXPECT_EQ(manager.GetClientConfigArgument(), VUnicodeString(L"/F \"") + test.folder + L"\"")
            << test.arguments;
    }
}

TEST(WindowManagerStartup, HoldsTheSharedMemoryCachesOnlyWhenTheOptionIsOn) {
    InstalledClients clients(true, false, false);
    GlobalConfig* config = nullptr;
    GetGlobalConfig(config, -1);  // the process's one object, which start-up reads
    for (const bool keep : {true, false}) {
        config->KeepSharedMemoryAgentOpen.Set(keep);
        TempFolder folder;
        WindowManager manager;
        manager.Initialize(VUnicodeString(L"tests.exe /F ") + folder.Path());
        // A second holder in this process sees whether the first one exists.
        const auto probe = VRefPtr<VSharedMemoryCache>::Adopt(
            new VSharedMemoryCache(WindowManager::KeyCacheName, WindowManager::KeyCacheSize));
        EXPECT_EQ(probe->GetHolderCount(), keep ? 2u : 1u);
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

// One text for a menu: items separated by "|", each its identifier (window
// items: "w" and the place of their record, terminal records first) and
// label, "~" when greyed, "-" for a separator, "[label: items]" for a submenu.
VUnicodeString Dump(HMENU menu, const std::vector<UINT>& recordIds) {
    VUnicodeString text;
    for (int i = 0; i < GetMenuItemCount(menu); ++i) {
        wchar_t label[128] = {};
        MENUITEMINFOW item{};
        item.cbSize = sizeof item;
        item.fMask = MIIM_ID | MIIM_STATE | MIIM_FTYPE | MIIM_STRING | MIIM_SUBMENU;
        item.dwTypeData = label;
        item.cch = 128;
        GetMenuItemInfoW(menu, static_cast<UINT>(i), TRUE, &item);
        const auto place =
            std::find(recordIds.begin(), recordIds.end(), item.wID) - recordIds.begin();
        VUnicodeString entry;
        if (item.fType & MFT_SEPARATOR)
            entry = L"-";
        else if (item.hSubMenu)
            entry = VUnicodeString(L"[") + label + L": " + Dump(item.hSubMenu, recordIds) + L"]";
        else if (item.wID >= WindowLists::FirstCommandId)
            entry.FormatPositional(L"w%1!u! %2", unsigned(place), label);
        else
            entry.FormatPositional(L"%1!u! %2", item.wID, label);
        // Wine reports separators as greyed.
        text += VUnicodeString(i > 0 ? L"|" : L"") + entry +
                ((item.fState & MFS_GRAYED) && !(item.fType & MFT_SEPARATOR) ? L"~" : L"");
    }
    return text;
}

TEST(WindowManagerMenu, ItemsLabelsPrefixesGreyingAndIdentifiers) {
    const struct {
        bool termwright, filewright, integrated;
        int terminalWindows, transferWindows;
        const wchar_t* expected;
    } cases[] = {
        {true, false, false, 0, 0,
         L"32772 &Connect...|[&Recent Sessions: 33000 (Empty)~]|-|32773 &Minimize All~|32776 "
         L"Restore &All~|"},
        {false, true, false, 0, 0,
         L"32772 &Connect...|[&Recent Sessions: 33010 &1 A&&B|33011 &2 "
         L"123456789012345678901234567...]|-|"
         L"32773 &Minimize All~|32776 Restore &All~|"},
        {true, true, true, 11, 0,
         L"32772 &Connect...|[&Recent Terminal Sessions: 33000 (Empty)~]|[&Recent Transfer "
         L"Sessions: 33010 &1 "
         L"A&&B|33011 &2 123456789012345678901234567...]|-|32773 &Minimize All|32776 Restore "
         L"&All|-|"
         L"32778 Termwright Sessions...|w0 &1 S&&1|w1 &2 S&&1|w2 &3 S&&1|w3 &4 S&&1|w4 &5 S&&1|w5 "
         L"&6 S&&1|"
         L"w6 &7 S&&1|w7 &8 S&&1|w8 &9 S&&1|w9 &0 S&&1|"},
        {true, true, false, 4, 8,
         L"32772 &Connect...|[&Recent Sessions: 33000 (Empty)~]|-|32773 &Minimize All|32776 "
         L"Restore &All|-|"
         L"32778 Termwright Sessions...|w0 &1 S&&1|w1 &2 S&&1|w2 &3 S&&1|w3 &4 S&&1|-|32777 "
         L"Filewright "
         L"Sessions...|w4 &5 S&&1|w5 &6 S&&1|w6 &7 S&&1|w7 &8 S&&1|w8 &9 S&&1|w9 &0 S&&1|w10   "
         L"S&&1|w11   S&&1|"},
    };
    for (const auto& test : cases) {
        InstalledClients clients(test.termwright, test.filewright, test.integrated);
        std::optional<ClientHelper> terminal, transfer;
        if (test.terminalWindows)
            terminal.emplace(true, Lines{L"1,S&1"}, L"agree", test.terminalWindows);
        if (test.transferWindows)
            transfer.emplace(false, Lines{L"1,S&1"}, L"agree", test.transferWindows);
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
        std::vector<UINT> recordIds;
        for (const auto* list : {&manager.GetWindowLists().GetTerminalWindows(),
                                 &manager.GetWindowLists().GetTransferWindows()})
            for (const WindowData& record : *list) recordIds.push_back(record.commandId);
        EXPECT_EQ(Dump(menu, recordIds),
                  VUnicodeString(test.expected) +
                      L"-|32779 Ma&nage Agent Keys...|-|32775 &About|-|32771 E&xit");
        DestroyMenu(menu);
    }
}

}  // namespace
