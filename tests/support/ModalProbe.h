// Runs a check from inside a modal loop (dialog, message box, menu) through a thread timer, which
// every such loop dispatches, so a test can look at the window and close it on its own thread.
#pragma once

#include <windows.h>

#include <functional>

#include "VString.h"

class ModalProbe {
public:
    // action runs every 50 ms until it returns true (done).
    explicit ModalProbe(std::function<bool()> action);
    ~ModalProbe();
    ModalProbe(const ModalProbe&) = delete;
    ModalProbe& operator=(const ModalProbe&) = delete;

private:
    static void CALLBACK OnTimer(HWND, UINT, UINT_PTR, DWORD);

    std::function<bool()> action_;
    UINT_PTR timer_;
    bool done_ = false;
};

// A visible window of className of this thread (others' boxes may show meanwhile).
HWND FindOwnWindow(const wchar_t* className);
// The text of control in dialog (up to 1023 characters); empty when there is none.
VUnicodeString ItemText(HWND dialog, int control);
