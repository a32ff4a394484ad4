#include "TrayIcon.h"

#include <cwchar>
#include <iterator>

namespace {

// Registers the hidden window's class once per process; false when it cannot.
bool RegisterWindowClass(WNDPROC procedure) {
    static const ATOM atom = [procedure] {
        WNDCLASSEXW windowClass{};
        windowClass.cbSize = sizeof(windowClass);
        windowClass.lpfnWndProc = procedure;
        windowClass.hInstance = GetModuleHandleW(nullptr);
        windowClass.lpszClassName = TrayIcon::WindowClassName;
        return RegisterClassExW(&windowClass);
    }();
    return atom != 0;
}

}  // namespace

TrayIcon::TrayIcon(TrayIconClient* client) : client_(client) {}

TrayIcon::~TrayIcon() { RemoveTrayIcon(); }

bool TrayIcon::Create() {
    if (window_) {
        SetLastError(ERROR_ALREADY_EXISTS);
        return false;
    }
    if (!RegisterWindowClass(WindowProcedure)) return false;
    // The shell broadcasts this message to every top-level window when the
    // taskbar is (re-)created; a message-only window would never see it.
    taskbarCreatedMessage_ = RegisterWindowMessageW(L"TaskbarCreated");
    window_.Reset(CreateWindowExW(WS_EX_TOOLWINDOW, WindowClassName, L"", WS_POPUP, 0, 0, 0, 0,
                                  nullptr, nullptr, GetModuleHandleW(nullptr), this));
    if (!window_) return false;
    if (Add()) client_->OnTrayIconAdded();
    return true;
}

bool TrayIcon::SetTrayIcon(HICON icon) {
    icon_.Reset(icon ? CopyIcon(icon) : nullptr);
    if (icon && !icon_) return false;
    return Modify(NIF_ICON);
}

bool TrayIcon::SetTrayIconTip(const wchar_t* tip) {
    wcsncpy(tip_, tip ? tip : L"", std::size(tip_) - 1);
    return Modify(NIF_TIP);
}

void TrayIcon::RemoveTrayIcon() {
    removed_ = true;
    if (added_) Delete();
}

bool TrayIcon::Add() {
    NOTIFYICONDATAW data;
    FillData(data, NIF_MESSAGE | NIF_TIP | (icon_ ? NIF_ICON : 0));
    added_ = Shell_NotifyIconW(NIM_ADD, &data) != FALSE;
    return added_;
}

void TrayIcon::Delete() {
    NOTIFYICONDATAW data;
    FillData(data, 0);
    Shell_NotifyIconW(NIM_DELETE, &data);
    added_ = false;
}

// Before the icon is in the notification area, the change is only kept: Add
// shows what is set by then.
bool TrayIcon::Modify(UINT flags) {
    if (!added_) return !removed_ && window_;
    NOTIFYICONDATAW data;
    FillData(data, flags);
    return Shell_NotifyIconW(NIM_MODIFY, &data) != FALSE;
}

void TrayIcon::FillData(NOTIFYICONDATAW& data, UINT flags) const {
    data = NOTIFYICONDATAW{};
    data.cbSize = sizeof(data);
    data.hWnd = window_.Get();
    data.uID = IconId;
    data.uFlags = flags;
    data.uCallbackMessage = CallbackMessage;
    data.hIcon = icon_.Get();
    wcscpy(data.szTip, tip_);
}

void TrayIcon::ShowMenu() {
    if (menuOpen_) return;
    HMENU built = nullptr;
    client_->BuildTrayMenu(built);
    const MenuHandle menu(built);
    if (!menu) return;
    menuOpen_ = true;
    POINT cursor{};
    GetCursorPos(&cursor);
    // Without the foreground, the menu would not close when the user clicks
    // elsewhere; the WM_NULL afterwards lets a second click on the icon work.
    SetForegroundWindow(window_.Get());
    const int command = TrackPopupMenuEx(
        menu.Get(),
        TPM_RETURNCMD | TPM_NONOTIFY | TPM_RIGHTBUTTON | TPM_RIGHTALIGN | TPM_BOTTOMALIGN, cursor.x,
        cursor.y, window_.Get(), nullptr);
    PostMessageW(window_.Get(), WM_NULL, 0, 0);
    menuOpen_ = false;
    if (command != 0) client_->OnTrayCommand(command);
}

LRESULT TrayIcon::Handle(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == CallbackMessage) {
        if (wParam == IconId && (lParam == WM_RBUTTONUP || lParam == WM_LBUTTONUP)) ShowMenu();
        return 0;
    }
    if (message == taskbarCreatedMessage_ && taskbarCreatedMessage_ != 0) {
        // Explorer started again (or for the first time) and knows no icons now.
        // The message also comes when the shell kept its icons (a change of the
        // display's scale), where adding alone would fail: take ours out first.
        if (!removed_) {
            const bool wasAdded = added_;
            if (wasAdded) Delete();
            if (Add()) wasAdded ? client_->OnTrayIconReAdded() : client_->OnTrayIconAdded();
        }
        return 0;
    }
    return DefWindowProcW(window_.Get(), message, wParam, lParam);
}

LRESULT CALLBACK TrayIcon::WindowProcedure(HWND window, UINT message, WPARAM wParam,
                                           LPARAM lParam) {
    if (message == WM_NCCREATE) {
        const auto* creation = reinterpret_cast<const CREATESTRUCTW*>(lParam);
        SetWindowLongPtrW(window, GWLP_USERDATA,
                          reinterpret_cast<LONG_PTR>(creation->lpCreateParams));
    }
    auto* icon = reinterpret_cast<TrayIcon*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    // window_ is set only when CreateWindowExW returns; until then, defaults.
    if (!icon || icon->window_.Get() != window)
        return DefWindowProcW(window, message, wParam, lParam);
    return icon->Handle(message, wParam, lParam);
}
