// WindowManager's menu and commands: the popup built at every opening of the
// icon's menu, and what each of its items does.
#include <stdexcept>

#include "AboutDialog.h"
#include "AgentUi.h"
#include "ClientApplication.h"
#include "ClientProtocol.h"
#include "EscapeAmpersand.h"
#include "ExitDialog.h"
#include "Installation.h"
#include "SessionListDialog.h"
#include "SharedGlobalConfig.h"
#include "TraywellMessages.h"
#include "VMessageBox.h"
#include "VUiHandle.h"
#include "WindowManager.h"

namespace {

// Keyboard prefixes of the recent entries and of the window items; items past
// the tenth get two blanks.
constexpr const wchar_t* ItemPrefixes[] = {L"&1 ", L"&2 ", L"&3 ", L"&4 ", L"&5 ",
                                           L"&6 ", L"&7 ", L"&8 ", L"&9 ", L"&0 "};
constexpr size_t PrefixCount = sizeof ItemPrefixes / sizeof ItemPrefixes[0];
constexpr size_t MaxWindowItems = 10;

const wchar_t* ItemPrefix(size_t index) {
    return index < PrefixCount ? ItemPrefixes[index] : L"  ";
}

// A label from the message table, without the line end that every text has.
VUnicodeString Label(DWORD code) { return VReportMessageParams(code).GetTextAsString(); }

void AppendItem(HMENU menu, UINT_PTR id, const VUnicodeString& label, UINT flags = MF_STRING) {
    AppendMenuW(menu, flags, id, label.c_str());
}

void AppendSeparator(HMENU menu) { AppendMenuW(menu, MF_SEPARATOR, 0, nullptr); }

struct ConnectDialogSearch {
    static BOOL CALLBACK Visit(HWND window, LPARAM found) {
        wchar_t className[256];
        if (GetParent(window) != nullptr || GetClassNameW(window, className, 256) == 0) return TRUE;
        if (VUnicodeString(className) != ClientProtocol::ConnectDialogClass) return TRUE;
        *reinterpret_cast<HWND*>(found) = window;
        return FALSE;
    }
};

void AppendRecentSubmenu(HMENU menu, DWORD labelCode, VRecentFileList* list, int firstCommand) {
    MenuHandle submenu(CreatePopupMenu());
    if (!submenu) return;
    // The clients add to the lists while Traywell runs.
    size_t shown = 0;
    if (list && list->Reload()) {
        for (; shown < list->GetSize() && shown < PrefixCount; ++shown) {
            if (list->GetEntry(shown).IsEmpty()) break;
            AppendItem(submenu.Get(), firstCommand + shown,
                       ItemPrefix(shown) + EscapeAmpersand(list->GetDisplayName(shown)));
        }
    }
    if (shown == 0) AppendItem(submenu.Get(), firstCommand, L"(Empty)", MF_STRING | MF_GRAYED);
    AppendMenuW(menu, MF_POPUP, reinterpret_cast<UINT_PTR>(submenu.Get()),
                Label(labelCode).c_str());
    submenu.Release();  // the menu owns it now
}

void AppendWindowItems(HMENU menu, const wchar_t* clientName, int sessionsCommand,
                       const VArray<WindowData>& windows, size_t& prefixIndex) {
    if (windows.IsEmpty()) return;
    AppendSeparator(menu);
    AppendItem(menu, sessionsCommand,
               VUnicodeString(clientName) + L" " + Label(TRAY_MENU_SESSIONS));
    for (size_t i = 0; i < windows.GetCount() && i < MaxWindowItems; ++i, ++prefixIndex)
        AppendItem(menu, windows[i].commandId,
                   ItemPrefix(prefixIndex) + EscapeAmpersand(windows[i].caption));
}

}  // namespace

bool WindowManager::BringForwardInsteadOfMenu() {
    if (openDialog_ && openDialog_->GetHwnd()) {
        SetForegroundWindow(openDialog_->GetHwnd());
        return true;
    }
    // Reading every window's class is costly where each read asks another
    // process; the walk is only needed when such a dialog exists at all.
    HWND connectDialog = nullptr;
    if (FindWindowW(ClientProtocol::ConnectDialogClass, nullptr))
        EnumWindows(ConnectDialogSearch::Visit, reinterpret_cast<LPARAM>(&connectDialog));
    if (!connectDialog) return false;
    SetForegroundWindow(GetLastActivePopup(connectDialog));
    return true;
}

void WindowManager::BuildTrayMenu(HMENU& menu) {
    menu = nullptr;
    if (BringForwardInsteadOfMenu()) return;
    MenuHandle popup(CreatePopupMenu());
    if (!popup) return;
    windows_.RefreshWindowLists();

    AppendItem(popup.Get(), ConnectCommand, Label(TRAY_MENU_CONNECT));
    if (IsIntegrated()) {
        AppendRecentSubmenu(popup.Get(), TRAY_MENU_RECENT_TERMINAL, terminalRecent_.get(),
                            FirstTerminalRecentCommand);
        AppendRecentSubmenu(popup.Get(), TRAY_MENU_RECENT_TRANSFER, transferRecent_.get(),
                            FirstTransferRecentCommand);
    } else if (IsTermwrightOrTermletInstalled()) {
        AppendRecentSubmenu(popup.Get(), TRAY_MENU_RECENT, terminalRecent_.get(),
                            FirstTerminalRecentCommand);
    } else {
        AppendRecentSubmenu(popup.Get(), TRAY_MENU_RECENT, transferRecent_.get(),
                            FirstTransferRecentCommand);
    }

    const UINT windowCommands = windows_.IsEmpty() ? MF_STRING | MF_GRAYED : MF_STRING;
    AppendSeparator(popup.Get());
    AppendItem(popup.Get(), MinimizeAllCommand, Label(TRAY_MENU_MINIMIZE_ALL), windowCommands);
    AppendItem(popup.Get(), RestoreAllCommand, Label(TRAY_MENU_RESTORE_ALL), windowCommands);

    size_t prefixIndex = 0;
    AppendWindowItems(popup.Get(), ClientProtocol::TerminalName, TerminalSessionsCommand,
                      windows_.GetTerminalWindows(), prefixIndex);
    AppendWindowItems(popup.Get(), ClientProtocol::TransferName, TransferSessionsCommand,
                      windows_.GetTransferWindows(), prefixIndex);

    AppendSeparator(popup.Get());
    AppendItem(popup.Get(), AgentKeysCommand, Label(TRAY_MENU_AGENT_KEYS));
    AppendSeparator(popup.Get());
    AppendItem(popup.Get(), AboutCommand, Label(TRAY_MENU_ABOUT));
    AppendSeparator(popup.Get());
    AppendItem(popup.Get(), ExitCommand, Label(TRAY_MENU_EXIT));
    menu = popup.Release();
}

void WindowManager::OnTrayCommand(int commandId) {
    switch (commandId) {
        case ExitCommand:
            Exit();
            return;
        case ConnectCommand:
            Connect();
            return;
        case MinimizeAllCommand:
            windows_.MinimizeAll();
            return;
        case RestoreAllCommand:
            windows_.RestoreAll();
            return;
        case AboutCommand: {
            AboutDialog about;
            ShowDialog(about);
            return;
        }
        case TransferSessionsCommand: {
            SessionListDialog sessions(ClientProtocol::TransferName, windows_.GetTransferWindows());
            ShowDialog(sessions);
            return;
        }
        case TerminalSessionsCommand: {
            SessionListDialog sessions(ClientProtocol::TerminalName, windows_.GetTerminalWindows());
            ShowDialog(sessions);
            return;
        }
        case AgentKeysCommand:
            ManageAgentKeys();
            return;
        default:
            break;
    }
    if (commandId >= FirstTerminalRecentCommand && commandId < FirstTransferRecentCommand) {
        const wchar_t* executable = IsTermwrightInstalled() ? GetTermwrightPath()
                                    : IsTermletInstalled()  ? GetTermletPath()
                                                            : nullptr;
        LaunchRecent(terminalRecent_.get(), commandId - FirstTerminalRecentCommand, executable);
    } else if (commandId >= FirstTransferRecentCommand && commandId < FirstWindowCommand) {
        LaunchRecent(transferRecent_.get(), commandId - FirstTransferRecentCommand,
                     IsFilewrightInstalled() ? GetFilewrightPath() : nullptr);
    } else if (commandId >= FirstWindowCommand) {
        if (!windows_.SelectWindow(static_cast<uint32_t>(commandId))) {
            VReportMessageParams gone(TRAY_WINDOW_GONE);
            VMessageBox(gone, MB_OK | MB_ICONEXCLAMATION);
        }
    }
}

void WindowManager::Exit() {
    if (windows_.IsEmpty()) {
        PostQuitMessage(0);
        return;
    }
    VReportMessageParams refusal;
    if (!windows_.CanExit(refusal)) {
        VMessageBox(refusal, MB_OK | MB_ICONEXCLAMATION);
        return;
    }
    // Only a confirmed OK closes the clients' windows; a dialog that could
    // not be shown closes nothing.
    ExitDialog confirm;
    if (ShowDialog(confirm) != IDOK) return;
    windows_.CloseAllWindows();
    PostQuitMessage(0);
}

void WindowManager::Connect() {
    const ClientApplication client = SelectClientApplication();
    if (!client.path.IsEmpty())
        LaunchClient(client.path, configArgument_, L"/SHOW_CONNECT_DIALOG_ONLY");
}

void WindowManager::LaunchRecent(VRecentFileList* list, size_t index, const wchar_t* executable) {
    if (!list) return;
    VUnicodeString session;
    try {
        session = list->GetEntry(index);
    } catch (const std::invalid_argument&) {
        return;  // not an identifier this list's menu can have shown
    }
    if (session.IsEmpty()) return;
    // Moved to the top even when the client cannot be started.
    list->AddToMostRecent(index);
    if (executable)
        LaunchClient(executable, configArgument_, VUnicodeString(L"/S \"") + session + L"\"");
}

void WindowManager::ManageAgentKeys() {
    GlobalConfig* config = nullptr;
    GetGlobalConfig(config, -1);
    SSH2::LaunchManageAgentKeys(config->TraywellAgentKeysListViewState, nullptr, &openDialog_);
    openDialog_ = nullptr;
    // Keeps the layout the user left the window's columns in.
    VReportMessageParams report;
    if (!config->SaveToStore(report)) VMessageBox(report, MB_OK | MB_ICONEXCLAMATION);
}

INT_PTR WindowManager::ShowDialog(VDialog& dialog) {
    openDialog_ = &dialog;
    const INT_PTR result = dialog.DoModal();
    openDialog_ = nullptr;
    return result;
}
