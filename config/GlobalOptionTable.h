// The global options, declared once. GLOBAL_OPTIONS(X) calls
// X(Member, Kind, L"Value Name", Default, Form) for each option, in the fixed
// order in which the object loads them. Everything else is derived from it:
// the members of GlobalConfig, the option index (GlobalOption), the lookups by
// index and by value name, and the product-dependent names. Adding an option
// is adding one row.
//
//   Kind     a storage kind of GlobalKind (GlobalOptionKinds.h)
//   Default  the kind's value; the state kinds (Pane, TabList, ListView,
//            Tree) give theirs in their text form. "Chosen" marks a default
//            or kind we decided; the others are the family's own.
//   Form     Plain; PerProduct (" FWX" appended in the transfer client);
//            Renamed(former) or RenamedPerProduct(former) for a value that an
//            older version kept under another name; StartUp for the options
//            the tray program reads at start-up.
//
// Colours are COLORREFs; 0xFF000000 (CLR_DEFAULT) leaves the colour to the
// system. Paths may hold the path variables ("${QLS_USER_DATA_PATH}" ...).
// Options named "... Color" without "Background" colour the text of the
// session tabs, by the state they name.
#pragma once

#include "GlobalOptionKinds.h"

// clang-format off
#define GLOBAL_OPTIONS(X) \
    X(AnsiColorPalettes, TextList, L"ANSI Color Palettes", {}, Plain) /* chosen: one named palette per entry */ \
    X(AnsiColorRgb, ColorSet, L"ANSI Color RGB", ClassicAnsiColors(), Plain) /* chosen: the sixteen ANSI colours */ \
    X(ActiveWindowAlphaTransparency, Number, L"Active Window Alpha Transparency", 255, Plain) /* chosen: opaque (0-255) */ \
    X(AllowProportionalFonts, Switch, L"Allow Proportional Fonts", false, Plain) \
    X(AlphaTransparency, Switch, L"Alpha Transparency", false, Plain) \
    X(AltSelectsMenu, Switch, L"Alt Selects Menu", false, Plain) /* chosen: Alt keys go to the session */ \
    X(AlwaysPromptForAuthInfo, Switch, L"Always Prompt For Auth Info", false, Plain) \
    X(AnonymousPassword, Text, L"Anonymous Password", L"anonymous@", Plain) /* chosen: not a secret, so plain text */ \
    X(AutoReconnect, Switch, L"Auto Reconnect", false, Plain) \
    X(AutoReconnectInterval, Number, L"Auto Reconnect Interval", 30, Plain) /* chosen: seconds */ \
    X(AutoSaveOptions, Number, L"Auto Save Options", 1, Plain) \
    X(AutoSessionName, Text, L"Auto Session Name", L"", PerProduct) /* chosen: none */ \
    X(BackgroundConnectedColor, Color, L"Background Connected Color", 0xFF000000, Plain) /* chosen */ \
    X(BackgroundDisconnectedColor, Color, L"Background Disconnected Color", 0xFF000000, Plain) /* chosen */ \
    X(BackgroundInactivityColor, Color, L"Background Inactivity Color", 0xFF000000, Plain) /* chosen */ \
    X(BackgroundLockedColor, Color, L"Background Locked Color", 0xFF000000, Plain) /* chosen */ \
    X(BackgroundNewInputColor, Color, L"Background New Input Color", 0xFF000000, Plain) /* chosen */ \
    X(BandwidthLimit, Number, L"Bandwidth Limit", 0, Plain) /* chosen: KB/s, 0 unlimited */ \
    X(ButtonBarLocation, Number, L"Button Bar Location", 0, Plain) /* chosen: 0 below the session, 1 above */ \
    X(CacheDirectory, Text, L"Cache Directory", L"${QLS_USER_DATA_PATH}\\Cache", Plain) /* chosen */ \
    X(CertificatePath, Text, L"Certificate Path", L"${QLS_CONFIG_PATH}\\Certificates", Plain) /* chosen: travels with the configuration */ \
    X(ChangeConfigPassphrase, Switch, L"Change Config Passphrase", false, Plain) \
    X(CharacterSendDelay, Number, L"Character Send Delay", 0, Plain) /* chosen: milliseconds */ \
    X(ChatWindow, Number, L"Chat Window", 0, Plain) /* chosen: docking, 0 below the session, 1 above */ \
    X(ChatWindowHeight, Number, L"Chat Window Height", 80, Plain) /* chosen: pixels */ \
    X(CheckShellTelnetCommand, Switch, L"Check Shell Telnet Command", false, Plain) /* chosen: do not ask at every start */ \
    X(ClipOnResize, Switch, L"Clip On Resize", false, Plain) \
    X(ClipboardDataFormat, Number, L"Clipboard Data Format", 0, Plain) /* chosen: 0 plain text only */ \
    X(CloseButtonOnTabs, Switch, L"Close Button On Tabs", true, Plain) \
    X(CloseOnDisconnect, Number, L"Close on Disconnect", 0, Plain) \
    X(ColorSchemes, Scheme, L"Color Schemes", {}, Plain) /* chosen: light grey on black, classic palette */ \
    X(ConfigPassphrase, Protected, L"Config Passphrase", {}, Plain) \
    X(ConfirmCloseMultipleTabs, Switch, L"Confirm Close Multiple Tabs", false, Plain) \
    X(ConnectDialogFont, Font, L"Connect Dialog Font", VLogFont(L"Courier New", 13), Plain) \
    X(ConnectDialogSize, Placement, L"Connect Dialog Size", {}, Plain) /* chosen: the dialog's own size */ \
    X(ConnectDialogSortOrder, Number, L"Connect Dialog Sort Order", 0, Plain) /* chosen: by name, ascending */ \
    X(ConnectExpandPath, Text, L"Connect Expand Path", L"", Plain) /* chosen: no folder expanded */ \
    X(ConnectSoundFile, Text, L"Connect Sound File", L"", Plain) /* chosen: no sound */ \
    X(ConnectedColor, Color, L"Connected Color", RGB(0, 128, 0), Plain) /* chosen: green */ \
    X(CopyOnSelect, Number, L"Copy On Select", 1, Plain) \
    X(CurrentAnsiPalette, Text, L"Current ANSI Palette", L"", Plain) /* chosen: empty is "ANSI Color RGB" */ \
    X(CustomColors, ColorSet, L"Custom Colors", {}, Plain) /* chosen: all white, unused */ \
    X(DataConnectionType, Number, L"Data Connection Type", 2, Plain) \
    X(DefaultDownloadDirectory, Text, L"Default Download Directory", L"${QLS_USER_DATA_PATH}\\Downloads", Plain) /* chosen */ \
    X(DirectoryPermissions, Number, L"Directory Permissions", 0755, Plain) /* chosen: octal rwxr-xr-x */ \
    X(DisableAeroPeek, Number, L"Disable Aero Peek", 0, Plain) \
    X(DisableAllPrinting, Switch, L"Disable All Printing", false, Plain) \
    X(DisableAllScripting, Switch, L"Disable All Scripting", false, Plain) /* chosen */ \
    X(DisableClose, Switch, L"Disable Close", false, Plain) /* chosen */ \
    X(DisableDirectoryTreeDetection, Switch, L"Disable Directory Tree Detection", false, Plain) \
    X(DisableResize, Switch, L"Disable Resize", false, Plain) \
    X(DisableServerToServerTransfers, Switch, L"Disable Server To Server Transfers", false, Plain) \
    X(DisconnectAfterResumeTimeout, Number, L"Disconnect After Resume Timeout", 0, Plain) \
    X(DisconnectSoundFile, Text, L"Disconnect Sound File", L"", Plain) /* chosen: no sound */ \
    X(DisconnectedColor, Color, L"Disconnected Color", RGB(192, 0, 0), Plain) /* chosen: red */ \
    X(DisplayAttributesColumn, Number, L"Display Attributes Column", 0, Plain) \
    X(DisplayExplorerFilenames, Number, L"Display Explorer Filenames", 0, Plain) \
    X(DisplayFolderTree, Switch, L"Display Folder Tree", true, Plain) /* chosen */ \
    X(DisplayLocalTimeForRemoteFiles, Number, L"Display Local Time for Remote Files", 0, Plain) \
    X(DisplayLog, Switch, L"Display Log", true, Plain) /* chosen */ \
    X(DisplaySeconds, Switch, L"Display Seconds", false, Plain) \
    X(DoubleClickAction, Number, L"Double Click Action", 0, Plain) /* chosen: 0 transfers the file */ \
    X(DownloadDirectory, Text, L"Download Directory", L"", Plain) /* chosen: empty is "Default Download Directory" */ \
    X(EjectPageInterval, Number, L"Eject Page Interval", 0, Plain) /* chosen: seconds, 0 never */ \
    X(EnableFontSmoothing, Switch, L"Enable Font Smoothing", false, Plain) \
    X(EnableLogFile, Switch, L"Enable Log File", false, Plain) \
    X(EnablePrintScreenKey, Switch, L"Enable Print Screen Key", false, Plain) \
    X(EnableSendChatToAllTabsOnStartup, Switch, L"Enable Send Chat To All Tabs On Startup", false, Plain) \
    X(EnableSynchronizeAppLogFile, Switch, L"Enable Synchronize App Log File", false, Plain) \
    X(EnableTabSwitchingHistory, Switch, L"Enable Tab Switching History", false, Plain) \
    X(ErrorSoundFile, Text, L"Error Sound File", L"", Plain) /* chosen: no sound */ \
    X(ExecuteEscapeSequence, Switch, L"Execute Escape Sequence", false, Plain) \
    X(ExitWhenLastSessionIsDisconnected, Switch, L"Exit When Last Session Is Disconnected", false, Plain) \
    X(FtpEnablePortRange, Switch, L"FTP Enable Port Range", false, Plain) \
    X(FtpPortRangeMaximum, Number, L"FTP Port Range Maximum", 65535, Plain) /* chosen: the dynamic ports */ \
    X(FtpPortRangeMinimum, Number, L"FTP Port Range Minimum", 49152, Plain) /* chosen: the dynamic ports */ \
    X(FwxCustomToolbarData, Block, L"FWX Custom Toolbar Data", {}, Plain) /* chosen: opaque, none */ \
    X(FwxNeverCheckForUpdates, Switch, L"FWX Never Check For Updates", false, Plain) /* chosen */ \
    X(FwxUpdatePromptDate, Time, L"FWX Update Prompt Date", {}, Plain) /* chosen: 1601, never */ \
    X(FwxclBackslashesAlwaysPathSeparators, Switch, L"FWXCL Backslashes Always Path Separators", false, Plain) \
    X(FilePermissions, Number, L"File Permissions", 0644, Plain) /* chosen: octal rw-r--r-- */ \
    X(FilewrightBookmarks, TextList, L"Filewright Bookmarks", {}, Plain) /* chosen: one bookmark per entry */ \
    X(FilewrightLocalTabState, Pane, L"Filewright Local Tab State", L"1,-1,200", Plain) \
    X(FilewrightRemoteTabState, Pane, L"Filewright Remote Tab State", L"1,1000,200", Plain) \
    X(FilewrightTabStateV2, TabList, L"Filewright Tab State V2", L"1,1,0;", Renamed(L"Filewright Tab State")) /* chosen: as the terminal's */ \
    X(FilewrightToolbarTheme, Number, L"Filewright Toolbar Theme", 10, Plain) \
    X(FilewrightXmlFileFixed, Switch, L"Filewright XML File Fixed", false, Plain) \
    X(FocusDoesNotAffectBlink, Switch, L"Focus Does Not Affect Blink", false, Plain) \
    X(GlobalOptionsTreeSelected, Text, L"Global Options Tree Selected", L"Global+", Plain) \
    X(GlobalOptionsTreeState, Tree, L"Global Options Tree State", L"1001000100", Plain) \
    X(HttpBrowserApplication, Text, L"HTTP Browser Application", L"", Plain) /* chosen: the system's browser */ \
    X(HttpUseDde, Switch, L"HTTP Use DDE", false, Plain) /* chosen */ \
    X(HttpUseRegistryEntry, Switch, L"HTTP Use Registry Entry", true, Plain) /* chosen: the registered browser */ \
    X(HexViewBuffer, Number, L"Hex View Buffer", 65536, Plain) /* chosen: bytes */ \
    X(HexViewFont, Font, L"Hex View Font", VLogFont(L"Courier New", 13), Plain) \
    X(HiddenMenuBarCanBeAccessed, Switch, L"Hidden Menu Bar Can Be Accessed", false, Plain) \
    X(HideAutoReconnectDialog, Switch, L"Hide Auto Reconnect Dialog", false, Plain) \
    X(HideDotFiles, Number, L"Hide Dot Files", 1, Plain) \
    X(HideDotSessionFiles, Switch, L"Hide Dot Session Files", true, Plain) /* chosen: as "Hide Dot Files" */ \
    X(HideHiddenFiles, Number, L"Hide Hidden Files", 0, Plain) \
    X(HideMousePointerOnKeypress, Number, L"Hide Mouse Pointer On Keypress", 1, Plain) \
    X(HideSessionAnsiColorPage, Switch, L"Hide Session ANSI Color Page", false, Plain) /* chosen */ \
    X(HorizontalScrollbar, Switch, L"Horizontal Scrollbar", false, Plain) \
    X(InactiveWindowAlphaTransparency, Number, L"Inactive Window Alpha Transparency", 204, Plain) /* chosen: 80% */ \
    X(InactivityColor, Color, L"Inactivity Color", RGB(128, 128, 0), Plain) /* chosen: olive */ \
    X(InactivityTimeoutValue, Number, L"Inactivity Timeout Value", 300, Plain) /* chosen: seconds */ \
    X(InitialLocalFolder, Text, L"Initial Local Folder", L"", Plain) /* chosen: empty is the documents folder */ \
    X(InstalledFtpSites, Switch, L"Installed FTP Sites", false, Plain) \
    X(IsExpanded, Number, L"Is Expanded", 1, Plain) \
    X(KeepAlive, Number, L"Keep Alive", 0, Plain) \
    X(KeepSharedMemoryAgentOpen, Switch, L"Keep Shared Memory Agent Open", true, Plain) \
    X(KermitUploadAscii, Switch, L"Kermit Upload ASCII", false, Plain) \
    X(LastLocalDirectory, Text, L"Last Local Directory", L"", Plain) /* chosen: none yet */ \
    X(LastScriptRun, Text, L"Last Script Run", L"", Plain) /* chosen: none yet */ \
    X(LaunchNewWindowsInASeparateProcess, Switch, L"Launch New Windows in a Separate Process", false, Plain) \
    X(LimitWindowsTaskbarPreviewThumbnails, Switch, L"Limit Windows Taskbar Preview Thumbnails", true, Plain) \
    X(LineSendDelay, Number, L"Line Send Delay", 5, Plain) /* chosen: milliseconds, lets slow hosts keep up */ \
    X(ListViewNumberStyle, Number, L"List View Number Style", 0, Plain) \
    X(ListViewSortStyle, Number, L"List View Sort Style", 0, Plain) /* chosen: 0 by name */ \
    X(LocalExplorerFrameState, Pane, L"Local ExplorerFrame State", L"1,-1,200", Plain) \
    X(LocalListViewState, ListView, L"Local ListView State", L"", Plain) /* chosen: the list's own layout */ \
    X(LocalWindowOnBottomOrRight, Switch, L"Local Window on Bottom or Right", false, Plain) \
    X(LocalFrameWindowSize, Placement, L"LocalFrame Window Size", {}, Plain) /* chosen: a placement holds the size */ \
    X(Locale, Text, L"Locale", L"", Plain) /* chosen: empty is the system's language */ \
    X(LockedColor, Color, L"Locked Color", RGB(128, 128, 128), Plain) /* chosen: grey */ \
    X(LogBufferSize, Number, L"Log Buffer Size", 500, Plain) \
    X(LogFile, Text, L"Log File", L"${QLS_USER_DATA_PATH}\\log.txt", Plain) \
    X(LogTopicErrorTextColor, Color, L"Log Topic Error Text Color", RGB(192, 0, 0), Plain) /* chosen: red */ \
    X(LogTopicInformationTextColor, Color, L"Log Topic Information Text Color", RGB(0, 0, 0), Plain) /* chosen: black */ \
    X(LogTopicRequestTextColor, Color, L"Log Topic Request Text Color", RGB(0, 0, 192), Plain) /* chosen: blue */ \
    X(LogTopicResponseTextColor, Color, L"Log Topic Response Text Color", RGB(0, 128, 0), Plain) /* chosen: green */ \
    X(LogTopicWarningTextColor, Color, L"Log Topic Warning Text Color", RGB(160, 96, 0), Plain) /* chosen: amber */ \
    X(LogUsesGenericWriteFlag, Switch, L"Log Uses Generic Write Flag", false, Plain) \
    X(MruCount, Number, L"MRU Count", 9, Plain) /* chosen: as the tray's recent lists */ \
    X(MainFrameWindowSize, Placement, L"MainFrame Window Size", {}, Plain) /* chosen: a placement holds the size */ \
    X(MaxButtonBarNameWidth, Number, L"Max Button Bar Name Width", 20, Plain) /* chosen: characters */ \
    X(MaxChatWindowHistory, Number, L"Max Chat Window History", 50, Plain) /* chosen: entries */ \
    X(MaxColumns, Number, L"Max Columns", 1024, Plain) /* chosen */ \
    X(MaxScrollbackBufferSize, Number, L"Max Scrollback Buffer Size", 128000, Plain) /* chosen: lines */ \
    X(MaximumParallelTransfers, Number, L"Maximum Parallel Transfers", 2, Plain) /* chosen */ \
    X(MenuToolbarFile, Text, L"Menu Toolbar File", L"", Plain) /* chosen: the built-in menus */ \
    X(MinTabWidth, Number, L"Min Tab Width", 60, Plain) /* chosen: pixels */ \
    X(MinimizeToTray, Switch, L"Minimize To Tray", false, Plain) \
    X(MoveFilesToRecycleBin, Number, L"Move Files To Recycle Bin", 1, Plain) \
    X(NeverShowSeconds, Switch, L"Never Show Seconds", false, Plain) \
    X(NeverUseCachedFileForRemoteEditing, Switch, L"Never Use Cached File for Remote Editing", false, Plain) \
    X(NewInputColor, Color, L"New Input Color", RGB(0, 0, 255), Plain) /* chosen: blue */ \
    X(NewSessionUsesWizard, Switch, L"New Session Uses Wizard", true, Plain) \
    X(OpenSessionsInTab, Switch, L"Open Sessions In Tab", true, Plain) \
    X(OpenUrlWithCtrlClick, Number, L"Open URL with CTRL+click", 1, Plain) \
    X(OpenWithProgramTitle, Text, L"Open With Program Title", L"Notepad", Plain) \
    X(OpenWithTransferType, Number, L"Open With Transfer Type", 1, Plain) \
    X(OverwriteAction, Number, L"Overwrite Action", 0, Plain) \
    X(PasteOnMiddleButton, Number, L"Paste On Middle Button", 0, Plain) \
    X(PasteOnRightButton, Number, L"Paste On Right Button", 1, Plain) \
    X(PromptOnMultiLinePaste, Number, L"Prompt On Multi-Line Paste", 1, Plain) \
    X(PromptToResumeOnConnect, Switch, L"Prompt to Resume on Connect", true, Plain) /* chosen: ask before resuming */ \
    X(QuickSync, Text, L"QuickSync", L"", Plain) /* chosen: the client's own text, none yet */ \
    X(ReceiveBufferSize, Number, L"Receive Buffer Size", 65536, Plain) /* chosen: bytes */ \
    X(RefreshAfterAllTransfersComplete, Switch, L"Refresh After All Transfers Complete", false, Plain) \
    X(RefreshDelay, Number, L"Refresh Delay", 500, Plain) /* chosen: milliseconds */ \
    X(RememberedSessionsListV2, TextList, L"Remembered Sessions List V2", {}, RenamedPerProduct(L"Remembered Sessions List")) /* chosen: one session path per entry, shared by both products */ \
    X(RemoteEditUploadAction, Number, L"Remote Edit Upload Action", 0, Plain) \
    X(RemoteEditUploadOnModifyV2, Switch, L"Remote Edit Upload On Modify V2", true, Plain) \
    X(RemoteExplorerFrameState, Pane, L"Remote ExplorerFrame State", L"1,1000,200", Plain) \
    X(RemoteListViewState, ListView, L"Remote ListView State", L"", Plain) /* chosen: the list's own layout */ \
    X(RemoteFrameWindowSize, Placement, L"RemoteFrame Window Size", {}, Plain) /* chosen: a placement holds the size */ \
    X(ResolveSymbolicLinks, Switch, L"Resolve Symbolic Links", false, Plain) \
    X(RestoreSessionDirectory, Number, L"Restore Session Directory", 0, Plain) \
    X(RestrictConnectionsToTftpServer, Switch, L"Restrict Connections To TFTP Server", false, Plain) \
    X(RetainFileVersionNumber, Switch, L"Retain File Version Number", false, Plain) \
    X(RetryAttempts, Number, L"Retry Attempts", 20, Plain) \
    X(RetryDelay, Number, L"Retry Delay", 10, Plain) \
    X(ReuseDisconnectedTabs, Number, L"Reuse Disconnected Tabs", 1, Plain) \
    X(RightClickPopupShown, Switch, L"Right Click Popup Shown", false, Plain) /* chosen: not shown yet */ \
    X(SaveConnectDialogFolderState, Number, L"Save Connect Dialog Folder State", 1, Plain) \
    X(SaveNewConnectEntries, Switch, L"Save New Connect Entries", true, Plain) \
    X(SaveSessionWindowAttributes, Switch, L"Save Session Window Attributes", false, Plain) /* chosen: as the window state */ \
    X(SaveSessionWindowState, Switch, L"Save Session Window State", false, Plain) \
    X(ScriptMruCount, Number, L"Script MRU Count", 9, Plain) /* chosen: as "MRU Count" */ \
    X(SendBufferSize, Number, L"Send Buffer Size", 65536, Plain) /* chosen: bytes */ \
    X(SerializeConnections, Switch, L"Serialize Connections", false, Plain) \
    X(SessionFilterDelay, Number, L"Session Filter Delay", 250, Plain) \
    X(SessionManagerWindowStateFwx, Pane, L"Session Manager Window State FWX", L"1,-1,200", Plain) /* chosen: a docked pane */ \
    X(SessionOptionsTreeSelected, Text, L"Session Options Tree Selected", L"Session+", Plain) \
    X(SessionOptionsTreeState, Tree, L"Session Options Tree State", L"1010000101010010", Plain) \
    X(ShowChatWindow, Switch, L"Show Chat Window", false, Plain) \
    X(ShowCommandWindowTitleBar, Switch, L"Show Command Window Title Bar", true, Plain) \
    X(ShowConfirmDisconnectDialog, Switch, L"Show Confirm Disconnect Dialog", true, Plain) \
    X(ShowConnectBar, Switch, L"Show Connect Bar", true, Plain) \
    X(ShowConnectDialog, Switch, L"Show Connect Dialog", true, Plain) \
    X(ShowConnectionClosedDialog, Number, L"Show Connection Closed Dialog", 0, Plain) \
    X(ShowCursorPositionIndicator, Switch, L"Show Cursor Position Indicator", true, Plain) \
    X(ShowDefaultKeyMappings, Switch, L"Show Default Key Mappings", false, Plain) \
    X(ShowDetailsOnConnectDialog, Switch, L"Show Details on Connect Dialog", true, Plain) \
    X(ShowElapsedTime, Switch, L"Show Elapsed Time", false, Plain) \
    X(ShowInactivityStatus, Switch, L"Show Inactivity Status", false, Plain) \
    X(ShowMenuBar, Switch, L"Show Menu Bar", true, PerProduct) /* chosen */ \
    X(ShowMultipleTabsOnly, Switch, L"Show Multiple Tabs Only", false, Plain) \
    X(ShowQuickConnectDialog, Number, L"Show Quick Connect Dialog", 0, Plain) \
    X(ShowSessionManager, Switch, L"Show Session Manager", true, PerProduct) /* chosen */ \
    X(ShowSessionTabs, Switch, L"Show Session Tabs", true, Plain) \
    X(ShowSessionsDialog, Switch, L"Show Sessions Dialog", true, Plain) \
    X(ShowStatusBar, Switch, L"Show Status Bar", true, PerProduct) /* chosen */ \
    X(ShowStatusIndicators, Switch, L"Show Status Indicators", true, Plain) \
    X(ShowTerminalOnlySessions, Number, L"Show Terminal Only Sessions", 1, Plain) \
    X(ShowToolbar, Switch, L"Show Toolbar", true, PerProduct) /* chosen */ \
    X(ShowTransferOnlySessions, Number, L"Show Transfer Only Sessions", 1, Plain) \
    X(ShowTransferQueueWindow, Switch, L"Show Transfer Queue Window", true, Plain) \
    X(ShowWindowSizeIndicator, Switch, L"Show Window Size Indicator", true, Plain) \
    X(ShowWindowToolbar, Switch, L"Show Window Toolbar", true, Plain) \
    X(SingleInstance, Switch, L"Single Instance", false, Plain) /* chosen: each start opens a window */ \
    X(SortAlphabetical, Number, L"Sort Alphabetical", 1, Plain) \
    X(StatusIndicatorStyle, Number, L"Status Indicator Style", 0, Plain) /* chosen */ \
    X(StatusIndicatorWidth, Number, L"Status Indicator Width", 8, Plain) /* chosen: pixels */ \
    X(SuppressDifferentGeometryDialog, Number, L"Suppress Different Geometry Dialog", 0, Plain) \
    X(SuppressDisconnectAllPrompt, Number, L"Suppress Disconnect All Prompt", 0, Plain) \
    X(SuppressDisconnectSelectedPrompt, Number, L"Suppress Disconnect Selected Prompt", 0, Plain) \
    X(SuppressEditMultipleSessionsDialog, Number, L"Suppress Edit Multiple Sessions Dialog", 0, Plain) \
    X(SuppressExecuteEscapeSequenceExitCodes, Switch, L"Suppress Execute Escape Sequence Exit Codes", false, Plain) /* chosen */ \
    X(SuppressMappedKeyIsDefaultWarning, Switch, L"Suppress Mapped Key Is Default Warning", false, Plain) /* chosen */ \
    X(SuppressMultipleSessionsWarning, Switch, L"Suppress Multiple Sessions Warning", false, Plain) \
    X(SuppressReadOnlySessionOptionsWarning, Switch, L"Suppress Read Only Session Options Warning", false, Plain) /* chosen */ \
    X(SuspendQueuedTransfers, Switch, L"Suspend Queued Transfers", false, Plain) \
    X(SwapEnterAndCtrlEnterInCommandWindow, Switch, L"Swap Enter and Ctrl+Enter in Command Window", false, Plain) \
    X(SyncDbDialogListViewState, ListView, L"SyncDBDialog ListView State", L"", Plain) /* chosen: the list's own layout */ \
    X(SynchronizeAppLogFile, Text, L"Synchronize App Log File", L"${QLS_USER_DATA_PATH}\\synchronize.log", Plain) /* chosen */ \
    X(SynchronizeExplorerFrameState, Pane, L"Synchronize ExplorerFrame State", L"1,0,-1", Plain) \
    X(SynchronizeListViewState, ListView, L"Synchronize ListView State", L"", Plain) /* chosen: the list's own layout */ \
    X(SynchronizeWindowPlacement, Placement, L"Synchronize Window Placement", {}, Plain) /* chosen: the window's own place */ \
    X(TftpServerDownloadDirectory, Text, L"TFTP Server Download Directory", L"${QLS_USER_DATA_PATH}\\TFTP", Plain) /* chosen */ \
    X(TftpServerStartOption, Number, L"TFTP Server Start Option", 2, Plain) \
    X(TftpServerUploadDirectory, Text, L"TFTP Server Upload Directory", L"${QLS_USER_DATA_PATH}\\TFTP", Plain) /* chosen */ \
    X(TwrtFirewallMigrated, Switch, L"TWRT Firewall Migrated", false, Plain) \
    X(TabLocation, Number, L"Tab Location", 0, Plain) /* chosen: 0 above the session */ \
    X(TerminalLogFile, Text, L"Terminal Log File", L"${QLS_USER_DATA_PATH}\\terminal.log", Plain) /* chosen */ \
    X(TermletNeverCheckForUpdates, Switch, L"Termlet Never Check For Updates", false, Plain) /* chosen */ \
    X(TermletXmlFileFixed, Switch, L"Termlet XML File Fixed", false, Plain) \
    X(TermwrightTabStateV2, TabList, L"Termwright Tab State V2", L"1,1,0;", Renamed(L"Termwright Tab State")) \
    X(TermwrightToolbarTheme, Number, L"Termwright Toolbar Theme", 10, Plain) \
    X(TermwrightXmlFileFixed, Switch, L"Termwright XML File Fixed", false, Plain) \
    X(TftpLogFile, Text, L"Tftp Log File", L"${QLS_USER_DATA_PATH}\\tftp.log", Plain) /* chosen */ \
    X(TftpServerPort, Number, L"Tftp Server Port", 69, Plain) /* chosen: the TFTP port */ \
    X(Timeout, Number, L"Timeout", 180, Plain) \
    X(TransferCompleteSoundFile, Text, L"Transfer Complete Sound File", L"", Plain) /* chosen: no sound */ \
    X(TransferQueueHeight, Number, L"Transfer Queue Height", 150, Plain) /* chosen: pixels */ \
    X(TransferQueueState, ListView, L"Transfer Queue State", L"", Plain) /* chosen: the queue's columns */ \
    X(TransferType, Number, L"Transfer Type", 3, Plain) \
    X(TransferViewNumberStyle, Number, L"Transfer View Number Style", 0, Plain) /* chosen: as "List View Number Style" */ \
    X(TransferWindowPlacement, Placement, L"Transfer Window Placement", {}, Plain) /* chosen: the window's own place */ \
    X(TraywellAgentKeysListViewState, ListView, L"Traywell Agent Keys ListView State", L"", Plain) /* chosen: the list's own layout */ \
    X(TreatCjkAmbiguousCharsAsWide, Switch, L"Treat CJK Ambiguous Chars As Wide", false, Plain) \
    X(UseAutoSession, Switch, L"Use Auto Session", false, PerProduct) /* chosen */ \
    X(UseDefaultSessionColorOnStartup, Switch, L"Use Default Session Color On Startup", false, Plain) \
    X(UseDefaultTransferTypeForAllFiles, Switch, L"Use Default Transfer Type For All Files", false, Plain) \
    X(UseDockableSessionManager, Switch, L"Use Dockable Session Manager", true, PerProduct) /* chosen */ \
    X(UseKeychain, Switch, L"Use Keychain", false, Plain) \
    X(UseLargeTabBar, Switch, L"Use Large Tab Bar", false, Plain) \
    X(UseOldIcons, Switch, L"Use Old Icons", false, Plain) /* chosen */ \
    X(UsePreviousQuickSyncSettings, Switch, L"Use Previous QuickSync Settings", false, Plain) \
    X(UseRememberedSessions, Switch, L"Use Remembered Sessions", false, PerProduct) /* chosen: start without them */ \
    X(UseSystemCaret, Switch, L"Use System Caret", false, Plain) /* chosen */ \
    X(UserButtonBar, Switch, L"User Button Bar", false, Plain) \
    X(VerifyRetrieveFileStatus, Switch, L"Verify Retrieve File Status", true, Plain) \
    X(Version, Text, L"Version", L"7B2F2717-85C8-4729-8394-3B7697039CEB", Plain) \
    X(VerticalScrollbar, Switch, L"Vertical Scrollbar", true, Plain) \
    X(ViewLeftMargin, Number, L"View Left Margin", 0, Plain) /* chosen: pixels */ \
    X(WindowPlacement, Placement, L"Window Placement", {}, Plain) /* chosen: the window's own place */ \
    X(XPosition, Signed, L"X Position", CW_USEDEFAULT, Plain) /* chosen: the system places the window */ \
    X(YPosition, Signed, L"Y Position", CW_USEDEFAULT, Plain) /* chosen: the system places the window */ \
    X(ZmodemUploadAscii, Switch, L"ZModem Upload ASCII", false, Plain) \
    X(ZoomOnCtrlScrollwheel, Switch, L"Zoom on Ctrl Scrollwheel", true, Plain) \
    X(ZoomOnKeyboardShortcut, Switch, L"Zoom on Keyboard Shortcut", true, Plain) /* chosen: as the scroll wheel */ \
    /* Read by the tray program at start-up for the SSH library; not among the clients' options. */ \
    X(DisconnectSessionsOnSmartCardRemoval, Switch, L"Disconnect Sessions On Smart Card Removal", false, StartUp) /* chosen */ \
    X(EnableFipsMode, Switch, L"Enable FIPS Mode", false, StartUp) /* chosen */
// clang-format on
