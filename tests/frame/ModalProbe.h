// Test helper: runs a check from inside a modal loop of the test's own thread
// (a dialog, a message box, a popup menu), so that a test can look at the
// window and close it without a second thread. A thread timer does it: every
// such loop dispatches timer messages.
#pragma once

#include <windows.h>

#include <functional>
#include <string>

class ModalProbe {
public:
    // action runs every interval milliseconds until it returns true (done).
    explicit ModalProbe(std::function<bool()> action, UINT interval = 50);
    ~ModalProbe();
    ModalProbe(const ModalProbe&) = delete;
    ModalProbe& operator=(const ModalProbe&) = delete;

    bool IsDone() const { return done_; }

private:
    static void CALLBACK OnTimer(HWND, UINT, UINT_PTR id, DWORD);

    std::function<bool()> action_;
    UINT_PTR timer_;
    bool done_ = false;
};

// A visible window of class className (and title, unless null) that this
// thread made: tests of other programs may show boxes and menus meanwhile.
HWND FindOwnWindow(const wchar_t* className, const wchar_t* title = nullptr);

// The text of a message box (its static text control), empty when box is none.
std::wstring MessageBoxText(HWND box);
