// TrayIcon: the program's icon in the notification area, with the hidden
// window that receives its clicks, and TrayIconClient, the object that fills
// the icon's menu and carries out the chosen command.
//
// The menu opens on a right click and on a left click (button up). Each time,
// the client builds it afresh; the chosen item's identifier then goes to the
// client's OnTrayCommand. When the taskbar is re-created (Explorer restarted),
// the shell forgets every icon; the icon is then added again.
//
// Tests and tools in other processes find the hidden window with
// FindWindowW(TrayIcon::WindowClassName, nullptr). Posting it
// TrayIcon::CallbackMessage with wParam TrayIcon::IconId and lParam
// WM_RBUTTONUP (or WM_LBUTTONUP) opens the menu exactly as a click does.
//
// Everything here runs on the UI thread that called Create.
#pragma once

#include <windows.h>

#include <shellapi.h>

#include "VUiHandle.h"

class TrayIconClient {
public:
    // The icon has just been added to the notification area (by Create, or
    // later, when the taskbar appeared). Default: nothing.
    virtual void OnTrayIconAdded() {}
    // The taskbar was re-created and the icon has been added again. Default: nothing.
    virtual void OnTrayIconReAdded() {}
    // Fills menu with a popup menu (CreatePopupMenu) for the icon; the icon takes
    // it over and destroys it when it closes. Left null, no menu is shown.
    virtual void BuildTrayMenu(HMENU& menu) = 0;
    // The user chose the item with identifier commandId from the icon's menu.
    virtual void OnTrayCommand(int commandId) = 0;
    virtual ~TrayIconClient() = default;
};

class TrayIcon {
public:
    // The hidden window's class, fixed so that other processes can find it.
    static constexpr wchar_t WindowClassName[] = L"Quillon Software Traywell Tray Icon";
    // The message the shell sends the hidden window for the icon: wParam is
    // IconId, lParam the mouse message (WM_RBUTTONUP, WM_LBUTTONUP, ...).
    static constexpr UINT CallbackMessage = WM_APP + 1;
    static constexpr UINT IconId = 1;

    // client (not owned) must outlive the icon.
    explicit TrayIcon(TrayIconClient* client);
    // Removes the icon and destroys the hidden window.
    ~TrayIcon();
    TrayIcon(const TrayIcon&) = delete;
    TrayIcon& operator=(const TrayIcon&) = delete;

    // Creates the hidden window (a top-level window that is never shown, so
    // that it receives the taskbar's broadcast) and adds the icon. False, with
    // GetLastError telling why, when the window cannot be made or a second
    // Create is tried. When the shell has no taskbar yet (early at logon), the
    // icon is added when the taskbar announces itself, and Create still succeeds.
    bool Create();

    // Shows icon (the icon keeps its own copy; the caller keeps icon). False
    // when the copy or the shell fails; the icon is still used on re-adding.
    bool SetTrayIcon(HICON icon);
    // Sets the tool tip (at most 127 characters are shown). False when the shell fails.
    bool SetTrayIconTip(const wchar_t* tip);
    // Takes the icon out of the notification area; the window stays until
    // destruction, and the icon is not added again on a taskbar re-creation.
    void RemoveTrayIcon();

    // The hidden window; null before Create.
    HWND GetWindow() const { return window_.Get(); }
    // Whether the shell shows the icon now.
    bool IsAdded() const { return added_; }

private:
    static LRESULT CALLBACK WindowProcedure(HWND window, UINT message, WPARAM wParam,
                                            LPARAM lParam);
    LRESULT Handle(UINT message, WPARAM wParam, LPARAM lParam);
    bool Add();
    void Delete();
    bool Modify(UINT flags);
    void FillData(NOTIFYICONDATAW& data, UINT flags) const;
    void ShowMenu();

    TrayIconClient* client_;
    WindowHandle window_;
    IconHandle icon_;
    wchar_t tip_[128] = {};
    UINT taskbarCreatedMessage_ = 0;
    bool added_ = false;
    bool removed_ = false;   // RemoveTrayIcon was called: never add again
    bool menuOpen_ = false;  // a click while the menu is open must not open a second one
};
