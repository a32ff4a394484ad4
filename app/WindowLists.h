// The session windows of the running client programs: found by enumerating
// the desktop and asking each client main window for its sessions, then
// selected, minimised, restored, asked whether they may exit and closed.
// UI thread only.
#pragma once

#include <windows.h>

#include <cstdint>

#include "VContainers.h"
#include "VReportMessageParams.h"
#include "WindowData.h"

class WindowLists {
public:
    // Command identifiers of session windows start here and are never reused
    // within one run.
    static constexpr uint32_t FirstCommandId = 33020;

    // How long the session and can-exit queries wait for a client. A client
    // that does not answer in this time, or that the system already counts as
    // hung, is left out of the lists, and at Exit counts as refusing: a hung
    // client must not freeze the tray program. Five seconds is also how long
    // a window may ignore its messages before Windows calls it hung.
    static constexpr UINT QueryTimeoutMilliseconds = 5000;

    // Rebuilds both lists from the client main windows now on the desktop.
    // Windows that answer no usable sessions (or do not answer) are left out.
    void RefreshWindowLists();

    // True when every listed session's window agrees to exit. Otherwise false,
    // with message set to the refusal text of the first window that refused
    // (terminal windows are asked first). Each record is asked once.
    bool CanExit(VReportMessageParams& message);
    // Posts WM_CLOSE once to each listed window; does not wait.
    void CloseAllWindows();
    // Hides and then minimises every listed window that is not minimised.
    void MinimizeAll();
    // Selects every listed window with session number 0.
    void RestoreAll();
    // Selects the listed session with that identifier. False when no record
    // has it or its window no longer exists.
    bool SelectWindow(uint32_t commandId);
    // Asks window to show session number and brings its last active popup to
    // the foreground. False when window is no longer a window.
    static bool SelectSession(HWND window, uint32_t sessionNumber);

    const VArray<WindowData>& GetTerminalWindows() const { return terminal_; }
    const VArray<WindowData>& GetTransferWindows() const { return transfer_; }
    bool IsEmpty() const { return terminal_.IsEmpty() && transfer_.IsEmpty(); }

private:
    static BOOL CALLBACK AddClientWindow(HWND window, LPARAM self);
    void AddSessionsOf(HWND window, ATOM atom, LONG_PTR userData);

    VArray<WindowData> terminal_;
    VArray<WindowData> transfer_;
    uint32_t nextCommandId_ = FirstCommandId;
    ATOM terminalAtom_ = 0;
    ATOM transferAtom_ = 0;
};
