// WindowManager: the tray icon's client. It holds what start-up worked out
// (the configuration folder's client argument, the icon, the recent-session
// lists, the shared-memory caches), builds the icon's menu afresh at every
// opening from the recent lists and the client programs' session windows,
// and carries out the chosen command. UI thread only.
#pragma once

#include <windows.h>

#include <memory>

#include "TrayIcon.h"
#include "VIniFileStoreFactory.h"
#include "VRecentFileList.h"
#include "VSharedMemoryCache.h"
#include "VString.h"
#include "VUnknown.h"
#include "WindowLists.h"

class VDialog;

class WindowManager : public TrayIconClient {
public:
    // The menu's command identifiers. 32774 is not used.
    enum Command : int {
        ExitCommand = 32771,
        ConnectCommand = 32772,
        MinimizeAllCommand = 32773,
        AboutCommand = 32775,
        RestoreAllCommand = 32776,
        TransferSessionsCommand = 32777,
        TerminalSessionsCommand = 32778,
        AgentKeysCommand = 32779,
        FirstTerminalRecentCommand = 33000,  // entries 0 to 9 of the terminal recent list
        FirstTransferRecentCommand = 33010,  // entries 0 to 9 of the transfer recent list
        FirstWindowCommand = static_cast<int>(WindowLists::FirstCommandId),
    };

    // The caches that keep the clients' shared memory in being while Traywell
    // runs, when the global option "Keep Shared Memory Agent Open" is on.
    static constexpr wchar_t AgentCacheName[] = L"{E16587DE-130C-4D9D-967F-ECEC78047474}";
    static constexpr size_t AgentCacheSize = 582800;
    static constexpr wchar_t KeyCacheName[] = L"{76F6F564-5396-4045-B7E2-76F5C2AA1F40}";
    static constexpr size_t KeyCacheSize = 24580;

    WindowManager();
    // Takes the INI-file factory out of its process slot before destroying it.
    ~WindowManager() override;
    WindowManager(const WindowManager&) = delete;
    WindowManager& operator=(const WindowManager&) = delete;

    // Start-up with the process's whole command line: keeps it, chooses the
    // configuration folder (the "/F" option, else a "Config" folder beside
    // the program, else the client's own), publishes the path variables,
    // makes the profile use the INI files of that folder, holds the caches
    // when asked to, and shows the icon with its recent lists. Failures are
    // not fatal: without a folder nothing of this is set up, and without an
    // icon there are no recent lists. A pass phrase ("/ConfigPassphrase")
    // that does not open the stored check is told to the user in a box.
    void Initialize(const VUnicodeString& commandLine);
    // Exit: takes the icon away and destroys the recent lists. Safe when
    // Initialize never ran or stopped early.
    void Shutdown();

    void BuildTrayMenu(HMENU& menu) override;
    void OnTrayCommand(int commandId) override;

    WindowLists& GetWindowLists() { return windows_; }
    const VUnicodeString& GetCommandLine() const { return commandLine_; }
    // "/F \"<configuration folder>\"", put before every client's arguments.
    const VUnicodeString& GetClientConfigArgument() const { return configArgument_; }
    VRecentFileList* GetTransferRecentList() const { return transferRecent_.get(); }
    // Where a dialog shown outside the menu's commands registers itself as
    // the open dialog, so that the icon brings it forward.
    VDialog** GetOpenDialogSlot() { return &openDialog_; }

private:
    void KeepSharedMemoryCaches();
    void CreateTrayIcon();

    bool BringForwardInsteadOfMenu();

    // The commands.
    void Exit();
    void Connect();
    void LaunchRecent(VRecentFileList* list, size_t index, const wchar_t* executable);
    void ManageAgentKeys();
    // Shows dialog modally as the open dialog; returns DoModal's result.
    INT_PTR ShowDialog(VDialog& dialog);

    VUnicodeString commandLine_;
    VUnicodeString configArgument_;
    std::unique_ptr<VIniFileStoreFactory> iniFactory_;
    VRefPtr<VSharedMemoryCache> agentCache_;
    VRefPtr<VSharedMemoryCache> keyCache_;
    std::unique_ptr<TrayIcon> trayIcon_;
    std::unique_ptr<VRecentFileList> terminalRecent_;
    std::unique_ptr<VRecentFileList> transferRecent_;
    WindowLists windows_;
    VDialog* openDialog_ = nullptr;
};
