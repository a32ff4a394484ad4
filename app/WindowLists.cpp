#include "WindowLists.h"

#include "ClientProtocol.h"
#include "RegisteredMessages.h"
#include "TraywellMessages.h"
#include "VMemoryMappedBuffer.h"
#include "VUnknown.h"

namespace {

// Sends a query that a hung client must not be able to block for ever. False
// when the window did not answer in time (or the system counts it as hung).
bool SendQuery(HWND window, UINT message, WPARAM wParam, LPARAM lParam, DWORD_PTR& answer) {
    answer = 0;
    return SendMessageTimeoutW(window, message, wParam, lParam, SMTO_ABORTIFHUNG,
                               WindowLists::QueryTimeoutMilliseconds, &answer) != 0;
}

ATOM ClassAtomOf(const wchar_t* className) {
    const HWND window = FindWindowW(className, nullptr);
    return window ? static_cast<ATOM>(GetClassLongW(window, GCW_ATOM)) : 0;
}

// Asks every record of list in turn; false at the first that refuses or does
// not answer. A window that has gone since the refresh has nothing left to
// protect, so it counts as agreeing.
bool ListAgreesToExit(const VArray<WindowData>& list, UINT canExitMessage) {
    for (const WindowData& record : list) {
        DWORD_PTR answer = 0;
        if (SendQuery(record.window, canExitMessage, 0, 0, answer)) {
            if (answer != 0) return false;
        } else if (IsWindow(record.window)) {
            return false;
        }
    }
    return true;
}

}  // namespace

void WindowLists::RefreshWindowLists() {
    terminal_.RemoveAll();
    transfer_.RemoveAll();
    terminalAtom_ = ClassAtomOf(ClientProtocol::TerminalWindowClass);
    transferAtom_ = ClassAtomOf(ClientProtocol::TransferWindowClass);
    if (terminalAtom_ == 0 && transferAtom_ == 0) return;
    EnumWindows(AddClientWindow, reinterpret_cast<LPARAM>(this));
}

BOOL CALLBACK WindowLists::AddClientWindow(HWND window, LPARAM self) {
    auto& lists = *reinterpret_cast<WindowLists*>(self);
    const auto atom = static_cast<ATOM>(GetClassLongW(window, GCW_ATOM));
    if (atom == 0 || (atom != lists.terminalAtom_ && atom != lists.transferAtom_)) return TRUE;
    if (static_cast<uint32_t>(GetWindowLongW(window, 0)) != ClientProtocol::MainWindowMark)
        return TRUE;
    const LONG_PTR userData = GetWindowLongPtrW(window, GWLP_USERDATA);
    if (userData == 0) return TRUE;
    lists.AddSessionsOf(window, atom, userData);
    return TRUE;
}

void WindowLists::AddSessionsOf(HWND window, ATOM atom, LONG_PTR userData) {
    DWORD_PTR size = 0;
    if (!SendQuery(window, ClientProtocol::SessionQueryMessage, 0, 0, size) || size == 0) return;
    const auto buffer = VRefPtr<VMemoryMappedBuffer>::Adopt(new VMemoryMappedBuffer(size));
    if (!buffer->IsMapped()) return;
    DWORD_PTR written = 0;
    if (!SendQuery(window, ClientProtocol::SessionQueryMessage, 0, static_cast<LPARAM>(size),
                   written))
        return;
    if (written == 0 || written > size) return;
    buffer->SetDataLength(written);

    VArray<WindowData>& list = atom == terminalAtom_ ? terminal_ : transfer_;
    for (const VUnicodeString& session : ClientProtocol::ReadSessions(buffer->GetData(), written)) {
        WindowData record;
        record.userData = userData;
        record.commandId = nextCommandId_++;
        record.window = window;
        ClientProtocol::SplitSession(session, record.sessionNumber, record.caption);
        list.Add(std::move(record));
    }
}

bool WindowLists::CanExit(VReportMessageParams& message) {
    const UINT canExit = GetTraywellCanExitApplicationMessage();
    if (!ListAgreesToExit(terminal_, canExit)) {
        message.Set(TRAY_SESSIONS_LOCKED);
        return false;
    }
    if (!ListAgreesToExit(transfer_, canExit)) {
        message.Set(TRAY_DIALOG_OPEN);
        return false;
    }
    return true;
}

void WindowLists::CloseAllWindows() {
    VMap<HWND, bool> windows;
    for (const auto* list : {&terminal_, &transfer_})
        for (const WindowData& record : *list) windows.SetAt(record.window, true);
    for (const auto& [window, unused] : windows) PostMessageW(window, WM_CLOSE, 0, 0);
}

void WindowLists::MinimizeAll() {
    for (const auto* list : {&terminal_, &transfer_}) {
        for (const WindowData& record : *list) {
            if (IsIconic(record.window)) continue;
            // Hidden and then minimised, on purpose: the clients are built around that order.
            ShowWindow(record.window, SW_HIDE);
            ShowWindow(record.window, SW_MINIMIZE);
        }
    }
}

void WindowLists::RestoreAll() {
    for (const auto* list : {&terminal_, &transfer_})
        for (const WindowData& record : *list) SelectSession(record.window, 0);
}

bool WindowLists::SelectWindow(uint32_t commandId) {
    for (const auto* list : {&terminal_, &transfer_})
        for (const WindowData& record : *list)
            if (record.commandId == commandId)
                return SelectSession(record.window, record.sessionNumber);
    return false;
}

bool WindowLists::SelectSession(HWND window, uint32_t sessionNumber) {
    if (!IsWindow(window)) return false;
    const HWND popup = GetLastActivePopup(window);
    PostMessageW(window, GetTraywellShowSelectionMessage(), 0, static_cast<LPARAM>(sessionNumber));
    SetForegroundWindow(popup);
    return true;
}
