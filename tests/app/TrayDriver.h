// Drives the real traywell.exe and the client helpers from a test: processes,
// windows, the installation facts that make the helper a client, Traywell's
// menu, boxes and dialogs. Every wait has a time limit; a process still
// running when its object goes is ended.
#pragma once

#include <windows.h>

#include <ostream>
#include <vector>

#include "TempFolder.h"
#include "VContainers.h"
#include "VString.h"
#include "Win32Handle.h"

using Lines = VArray<VUnicodeString>;
inline constexpr DWORD WaitLimit = 15000;

// Polls until done() holds or the time limit passes; done()'s last answer.
template <class Condition>
bool WaitUntil(Condition done, DWORD limit = WaitLimit) {
    for (DWORD waited = 0; !done(); waited += 50) {
        if (waited >= limit) return false;
        Sleep(50);
    }
    return true;
}

class TestProcess {
public:
    TestProcess(const VUnicodeString& program, const VUnicodeString& arguments);
    ~TestProcess() { Kill(); }
    // Whether it ended within limit, with its exit code.
    bool Exited(DWORD limit = WaitLimit, DWORD* code = nullptr) const;
    void Kill();
    // Its top-level windows of className (visible ones only when visibleOnly),
    // once there are count of them.
    std::vector<HWND> Windows(const wchar_t* className, size_t count = 0,
                              bool visibleOnly = true) const;

private:
    KernelHandle process_;
    DWORD id_ = 0;
};

// A client_window_helper with its windows up; exitAnswer "agree", "refuse" or "hang".
struct ClientHelper {
    ClientHelper(bool terminal, const Lines& sessions, const wchar_t* exitAnswer = L"agree",
                 int windows = 1);
    Lines Log(size_t count = 0) const;  // once it has count lines

    const wchar_t* windowClass;
    TempFolder folder;
    TestProcess process;
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
    // The text of its message box, which is then closed with button; empty
    // when none comes.
    VUnicodeString TakeBoxText(int button = IDOK) const;
    // Its dialog with control controlId; null when none comes.
    HWND WaitForDialog(int controlId) const;
    // The command lines of the clients it started.
    Lines Launches() const { return ReadLines(folder / L"launches.log"); }
    static Lines ReadLines(const VUnicodeString& file);

    TempFolder folder;
    TestProcess process;
};

void PrintTo(const VUnicodeString& text, std::ostream* out);
