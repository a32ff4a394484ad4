// The one way the program shows a message box: every box carries the
// program's title, and tests can watch what would be shown (VMessageBoxHook.h).
#pragma once

#include <windows.h>

#include "VReportMessageParams.h"

inline constexpr wchar_t VMessageBoxTitle[] = L"Quillon Software Traywell";

// Shows text in a modal box titled VMessageBoxTitle and waits for the user.
// type holds the MB_ flags (buttons, icon); the box is brought to the front,
// since the program has no window the user is looking at. owner may be null.
// Returns the button pressed (IDOK, IDCANCEL, ...), or 0 when the box cannot
// be shown (GetLastError tells why). UI thread only.
int VMessageBox(const wchar_t* text, UINT type = MB_OK, HWND owner = nullptr);

// Shows the report's formatted text, as it stands (line ends included).
int VMessageBox(VReportMessageParams& report, UINT type = MB_OK, HWND owner = nullptr);
