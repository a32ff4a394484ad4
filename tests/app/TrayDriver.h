// Drives the real traywell.exe and the client helpers it sees as installed clients.
#pragma once

#include <ostream>

#include "ChildProcess.h"
#include "ModalProbe.h"
#include "TempFolder.h"
#include "VContainers.h"

using Lines = VArray<VUnicodeString>;

Lines ReadLines(const VUnicodeString& file);

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

// traywell.exe with "/F <folder>" (or arguments) and the helper's launches logged.
class TraywellUnderTest {
public:
    explicit TraywellUnderTest(const wchar_t* arguments = nullptr, bool waitForIcon = true);
    void OpenMenu() const;
    // Types into the open menu ("v^>!": Down, Up, Right, Enter) until it closes.
    void Type(const wchar_t* keys) const;
    void Choose(const wchar_t* keys) const {
        OpenMenu();
        Type(keys);
    }
    // The text of its message box, which is then closed with button; empty when none comes.
    VUnicodeString TakeBoxText(int button = IDOK) const;
    // Its dialog with control controlId; null when none comes.
    HWND WaitForDialog(int controlId) const;
    Lines Launches() const { return ReadLines(folder / L"launches.log"); }

    TempFolder folder;
    ChildProcess process;
};

void PrintTo(const VUnicodeString& text, std::ostream* out);
