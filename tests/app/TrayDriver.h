// Drives the real traywell.exe and client helpers: the installation facts that
// make the helper a client, its windows, Traywell's menu, boxes and dialogs.
#pragma once

#include <ostream>

#include "TempFolder.h"
#include "ChildProcess.h"
#include "VContainers.h"

using Lines = VArray<VUnicodeString>;

// The lines of a text file; empty when it cannot be read.
Lines ReadLines(const VUnicodeString& file);
// The text of a dialog's control.
VUnicodeString ItemText(HWND dialog, int control);

// A client_window_helper with its windows up; exitAnswer "agree", "refuse" or "hang".
struct ClientHelper {
    ClientHelper(bool terminal, const Lines& sessions, const wchar_t* exitAnswer = L"agree",
                 int windows = 1);
    Lines Log(size_t count = 0) const;  // once it has count lines

    const wchar_t* windowClass;
    TempFolder folder;
    ChildProcess process;
};

// The helper installed as the clients named (no other is), until the end.
struct InstalledClients {
    InstalledClients(bool termwright, bool filewright, bool integrated);
    ~InstalledClients();
};

// traywell.exe with a configuration folder of its own ("/F <folder>" unless
// other arguments are given) and the helper's launches logged.
class TraywellUnderTest {
public:
    explicit TraywellUnderTest(const wchar_t* arguments = nullptr, bool waitForIcon = true);
    // Opens the menu as a right click does, once it shows.
    void OpenMenu() const;
    // Types into the open menu ("v" Down, "^" Up, ">" Right, "!" Enter, other
    // characters themselves) and waits for it to close.
    void Type(const wchar_t* keys) const;
    void Choose(const wchar_t* keys) const {
        OpenMenu();
        Type(keys);
    }
    // The text of its message box, which is then closed with button; empty when none comes.
    VUnicodeString TakeBoxText(int button = IDOK) const;
    // Its dialog with control controlId; null when none comes.
    HWND WaitForDialog(int controlId) const;
    // The command lines of the clients it started.
    Lines Launches() const { return ReadLines(folder / L"launches.log"); }

    TempFolder folder;
    ChildProcess process;
};

void PrintTo(const VUnicodeString& text, std::ostream* out);
