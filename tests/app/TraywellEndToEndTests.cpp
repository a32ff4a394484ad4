// The real traywell.exe, driven through its icon, menu, boxes and dialogs.
#include <gtest/gtest.h>

#include <algorithm>

#include "ProgramFolder.h"
#include "TrayDriver.h"
#include "TraywellResources.h"
#include "VIniFileStoreFactory.h"
#include "VProfileStore.h"

namespace {

// The recent list of section in the INI files of folder, after writing entries when given.
Lines RecentEntries(const VUnicodeString& folder, const wchar_t* section,
                    const Lines& entries = {}) {
    VIniFileStoreFactory factory(folder, L"");
    VProfileStore store(&factory);
    VProfileKey key(store.GetRootKey(), section, true);
    Lines read;
    for (uint32_t i = 0; i < 9; ++i) {
        VUnicodeString name, value;
        name.FormatPositional(L"File%1!u!", i);
        if (i < entries.GetCount()) key.SetString(name, entries[i]);
        if (key.GetString(name, value) && !value.IsEmpty()) read.Add(value);
    }
    return read;
}

TEST(Traywell, OneCopyAtATimeAndExitWithoutClientsAsksNothing) {
    InstalledClients clients(true, false, false);
    TraywellUnderTest first;
    for (const wchar_t* arguments : {L"", L"/F C:\\elsewhere"}) {
        TraywellUnderTest second(arguments, false);
        EXPECT_EQ(second.process.Wait(WaitLimit), 1) << "a box would keep it running";
    }
    first.Choose(L"x");
    EXPECT_NE(first.process.Wait(WaitLimit), -1);

    // The mutex's name taken by another kind of object: it cannot be made.
    const KernelHandle squatter(
        CreateEventW(nullptr, TRUE, FALSE, L"CB427A92-D7C2-4206-BBE9-68F2A379036D"));
    TraywellUnderTest third(L"", false);
    EXPECT_EQ(third.TakeBoxText(), L"Traywell failed to initialize.\r\nError: 0x00000006\r\n");
    EXPECT_NE(third.process.Wait(WaitLimit), -1);
}

TEST(Traywell, ConnectAndRecentSessionsStartTheClientWithTheirCommandLine) {
    const struct {
        bool termwright, filewright, integrated;
        const wchar_t* section;  // null: Connect, no list
        const wchar_t* keys;
        const wchar_t* arguments;  // null: nothing launched
    } cases[] = {
        {true, false, false, nullptr, L"c", L"/SHOW_CONNECT_DIALOG_ONLY"},
        {true, false, false, L"Recent File List Termwright", L"r2", L"/S \"Be&ta\""},
        {false, true, false, L"Recent File List Filewright", L"r2", L"/S \"Be&ta\""},
        {true, true, true, L"Recent File List Filewright", L"vvv>2", L"/S \"Be&ta\""},
        // not installed: nothing launched, the list reordered all the same
        {false, false, true, L"Recent File List Termwright", L"r2", nullptr},
    };
    for (const auto& test : cases) {
        InstalledClients clients(test.termwright, test.filewright, test.integrated);
        TraywellUnderTest traywell;
        const VUnicodeString folder = traywell.folder.Path();
        if (test.section) RecentEntries(folder, test.section, {L"Alpha", L"Be&ta", L"Gamma"});
        traywell.Choose(test.keys);
        if (test.section) {
            const Lines reordered{L"Be&ta", L"Alpha", L"Gamma"};
            EXPECT_TRUE(WaitUntil([&] { return RecentEntries(folder, test.section) == reordered; }))
                << test.keys;
        }
        Lines expected;
        if (test.arguments)
            expected.Add(VUnicodeString(L"\"") + GetPathBesideProgram(L"client_window_helper.exe") +
                         L"\" /F \"" + folder + L"\" " + test.arguments);
        WaitUntil([&] { return traywell.Launches().GetCount() >= expected.GetCount(); });
        EXPECT_EQ(traywell.Launches(), expected) << test.keys;
    }
}

TEST(Traywell, WindowCommandsReachTheirWindows) {
    InstalledClients clients(true, true, false);
    ClientHelper terminal(true, {L"7,Alpha", L"8,Beta", L"9,Gamma"});
    ClientHelper transfer(false, {L"5,Delta"});
    TraywellUnderTest traywell;
    const struct {
        const wchar_t* keys;
        Lines terminalLog, transferLog;
    } steps[] = {
        {L"2", {L"select 0 8"}, {}},
        {L"4", {L"select 0 8"}, {L"select 0 5"}},
        // clang-format off
        {L"vvvv!", {L"select 0 8", L"select 0 0", L"select 0 0", L"select 0 0"}, {L"select 0 5", L"select 0 0"}},
        // Minimize All hides each window before minimising it, as the clients expect.
        {L"m", {L"select 0 8", L"select 0 0", L"select 0 0", L"select 0 0", L"hide 0"}, {L"select 0 5", L"select 0 0", L"hide 0"}},
        // clang-format on
    };
    for (const auto& step : steps) {
        traywell.Choose(step.keys);
        EXPECT_EQ(terminal.Log(step.terminalLog.GetCount()), step.terminalLog) << step.keys;
        EXPECT_EQ(transfer.Log(step.transferLog.GetCount()), step.transferLog) << step.keys;
    }
    EXPECT_TRUE(WaitUntil([&] {
        return IsIconic(terminal.process.Windows(terminal.windowClass, 1, false)[0]) &&
               IsIconic(transfer.process.Windows(transfer.windowClass, 1, false)[0]);
    }));
}

TEST(Traywell, ExitClosesEachWindowOnceOnlyWhenAllAgreeAndTheUserConfirms) {
    const wchar_t* const Locked =
        L"One or more sessions are locked or a dialog is open. Traywell cannot exit until all "
        L"sessions are unlocked or the dialog is closed.\r\n";
    const struct {
        const wchar_t *terminalAnswer, *transferAnswer;
        const wchar_t* refusal;  // null: the Exit dialog comes
        int button;
    } cases[] = {
        // clang-format off
        {L"agree", L"agree", nullptr, IDOK},
        {L"agree", L"agree", nullptr, IDCANCEL},
        {L"refuse", L"agree", Locked, 0},
        {L"agree", L"refuse", L"A dialog is open. Traywell cannot exit until the dialog is closed.\r\n", 0},
        {L"hang", L"agree", Locked, 0},  // a hung client counts as refusing
        // clang-format on
    };
    InstalledClients clients(true, true, false);
    for (const auto& test : cases) {
        SCOPED_TRACE(testing::Message() << test.terminalAnswer << " " << test.transferAnswer);
        ClientHelper terminal(true, {L"1,One", L"2,Two"}, test.terminalAnswer, 2);
        ClientHelper transfer(false, {L"3,Three"}, test.transferAnswer);
        TraywellUnderTest traywell;
        traywell.Choose(L"x");
        if (test.refusal) {
            EXPECT_EQ(traywell.TakeBoxText(), test.refusal);
        } else {
            const HWND dialog = traywell.WaitForDialog(IDC_EXIT_TEXT);
            EXPECT_EQ(ItemText(dialog, IDC_EXIT_TEXT),
                      L"Exiting Quillon Software Traywell will close all windows listed on the "
                      L"menu.\r\n");
            PostMessageW(dialog, WM_COMMAND, static_cast<WPARAM>(test.button), 0);
        }
        const bool closes = test.button == IDOK;
        EXPECT_EQ(traywell.process.Wait(closes ? WaitLimit : 1000) != -1, closes);
        EXPECT_EQ(terminal.process.Wait(closes ? WaitLimit : 0) != -1, closes);
        Lines closed = terminal.Log();
        std::sort(closed.begin(), closed.end());  // the order of the two is not fixed
        EXPECT_EQ(closed, closes ? Lines({L"close 0", L"close 1"}) : Lines());
        EXPECT_EQ(transfer.Log(), closes ? Lines({L"close 0"}) : Lines());
    }
}

TEST(Traywell, GoneWindowsAreReportedAndTheDialogsShowWhatTheyShould) {
    InstalledClients clients(true, false, false);
    ClientHelper one(true, {L"1,One"}), two(true, {L"2,Two"}), three(true, {L"3,Three"});
    TraywellUnderTest traywell;

    // The Sessions dialog restores the other two and reports the gone one once, and stays.
    traywell.Choose(L"vvvvv!");
    const HWND dialog = traywell.WaitForDialog(IDC_SESSIONS_LIST);
    wchar_t caption[64] = {};
    GetWindowTextW(dialog, caption, 64);
    EXPECT_STREQ(caption, L"Termwright Sessions");
    two.process.Kill();
    SendDlgItemMessageW(dialog, IDC_SESSIONS_LIST, LB_SETSEL, TRUE, -1);
    PostMessageW(dialog, WM_COMMAND, IDOK, 0);
    EXPECT_EQ(traywell.TakeBoxText(),
              L"One or more windows you have selected no longer exist.\r\n");
    EXPECT_EQ(one.Log(1), Lines({L"select 0 1"}));
    EXPECT_EQ(three.Log(1), Lines({L"select 0 3"}));
    EXPECT_TRUE(IsWindow(dialog));
    PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
    EXPECT_TRUE(WaitUntil([&] { return !IsWindow(dialog); }));

    traywell.OpenMenu();
    one.process.Kill();
    three.process.Kill();
    traywell.Type(L"1");
    EXPECT_EQ(traywell.TakeBoxText(), L"The window you have selected no longer exists.\r\n");

    traywell.Choose(L"^^!");
    const VUnicodeString version =
        ItemText(traywell.WaitForDialog(IDC_ABOUT_VERSION), IDC_ABOUT_VERSION);
    EXPECT_TRUE(version.StartsWith(L"Version 8.3.4 (x64 build 1699)   -   ")) << version.c_str();
}

}  // namespace
