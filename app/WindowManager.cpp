// WindowManager's start-up and exit; the menu and its commands are in
// TrayMenu.cpp.
#include "WindowManager.h"

#include "AppPaths.h"
#include "ClientApplication.h"
#include "ConfigPassphraseStartup.h"
#include "Installation.h"
#include "ProgramFolder.h"
#include "QlsPathVariables.h"
#include "SharedGlobalConfig.h"
#include "StartupPaths.h"
#include "TraywellResources.h"
#include "VCommandLine.h"
#include "VMessageBox.h"
#include "VProfilePrivate.h"

namespace {

constexpr wchar_t TerminalRecentSection[] = L"Recent File List Termwright";
constexpr wchar_t TransferRecentSection[] = L"Recent File List Filewright";
constexpr wchar_t RecentEntryFormat[] = L"File%1!d!";
constexpr size_t RecentListSize = 9;
constexpr int RecentDisplayLength = 30;

std::unique_ptr<VRecentFileList> MakeRecentList(const wchar_t* section) {
    return std::make_unique<VRecentFileList>(0, section, RecentEntryFormat, RecentListSize,
                                             RecentDisplayLength);
}

}  // namespace

WindowManager::WindowManager() = default;

WindowManager::~WindowManager() {
    trayIcon_.reset();
    terminalRecent_.reset();
    transferRecent_.reset();
    if (iniFactory_ && CurrentProfileStoreFactory() == iniFactory_.get())
        SetIniFileStoreFactory(nullptr);
}

void WindowManager::Initialize(const VUnicodeString& commandLine) {
    commandLine_ = commandLine;
    VUnicodeString trimmed = commandLine;
    trimmed.Trim();
    VUnicodeString folder;
    VUnicodeString passphrase(Str::Sensitive);
    if (!trimmed.IsEmpty()) {
        VCommandLine parser;
        VReportMessageParams report;
        // A bad option only means no folder: the rules below find one.
        parser.Parse(trimmed, report);
        folder = parser.GetConfigFolder();
        parser.GetTextOption(L"/ConfigPassphrase", passphrase, report, false);
    }

    const ClientApplication client = SelectClientApplication();
    const VUnicodeString programFolder = GetProgramFolder();
    if (folder.IsEmpty()) {
        // A "Config" folder beside the program makes a portable installation.
        const VUnicodeString portable = StripTrailingSeparators(programFolder) + L"\\Config";
        if (IsDirectory(portable)) {
            folder = portable;
        } else if (client.name.IsEmpty()) {
            return;
        } else {
            folder = GetAppConfigPath(client.name.c_str());
        }
    }
    const VUnicodeString configFolder = StripTrailingSeparators(folder);
    configArgument_ = VUnicodeString(L"/F \"") + configFolder + L"\"";

    VUnicodeString personalFolder;
    if (!client.name.IsEmpty() && UsePersonalDataPath(client.name.c_str()))
        personalFolder = GetAppPersonalDataPath(client.name.c_str(), configFolder.c_str());

    SetQlsConfigPathSub(configFolder.c_str());
    SetQlsInstallPathSub(programFolder.c_str());
    SetQlsUserDataPathSub(DocumentsFolder().c_str());
    SetQlsSshDataPathSub(SshDataFolder().c_str());

    iniFactory_ = std::make_unique<VIniFileStoreFactory>(configFolder, personalFolder);
    SetIniFileStoreFactory(iniFactory_.get());

    // The first use loads the global options, from the INI files now.
    GlobalConfig* config = nullptr;
    GetGlobalConfig(config, -1);
    // The pass phrase only now: its check is one of the global options.
    VReportMessageParams report;
    if (!StartConfigPassphrase(*config, passphrase, report))
        VMessageBox(report, MB_OK | MB_ICONEXCLAMATION);
    if (config->KeepSharedMemoryAgentOpen.Get()) KeepSharedMemoryCaches();
    if (!trayIcon_) CreateTrayIcon();
}

void WindowManager::KeepSharedMemoryCaches() {
    // A new cache replaces the one held, which goes first.
    agentCache_ = VRefPtr<VSharedMemoryCache>();
    agentCache_ =
        VRefPtr<VSharedMemoryCache>::Adopt(new VSharedMemoryCache(AgentCacheName, AgentCacheSize));
    keyCache_ = VRefPtr<VSharedMemoryCache>();
    keyCache_ =
        VRefPtr<VSharedMemoryCache>::Adopt(new VSharedMemoryCache(KeyCacheName, KeyCacheSize));
}

void WindowManager::CreateTrayIcon() {
    auto icon = std::make_unique<TrayIcon>(this);
    if (!icon->Create()) return;
    trayIcon_ = std::move(icon);
    const IconHandle image(static_cast<HICON>(LoadImageW(
        GetModuleHandleW(nullptr), MAKEINTRESOURCEW(IDI_TRAYWELL), IMAGE_ICON, 16, 16, 0)));
    trayIcon_->SetTrayIcon(image.Get());
    trayIcon_->SetTrayIconTip(VMessageBoxTitle);

    if (IsIntegrated()) {
        terminalRecent_ = MakeRecentList(TerminalRecentSection);
        transferRecent_ = MakeRecentList(TransferRecentSection);
    } else if (IsTermwrightInstalled()) {
        terminalRecent_ = MakeRecentList(TerminalRecentSection);
    } else {
        transferRecent_ = MakeRecentList(TransferRecentSection);
    }
}

void WindowManager::Shutdown() {
    if (trayIcon_) trayIcon_->RemoveTrayIcon();
    terminalRecent_.reset();
    transferRecent_.reset();
}
