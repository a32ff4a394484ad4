#include "Traywell.h"

#include "AddKeyCommand.h"
#include "AgentUi.h"
#include "ClientConfigUi.h"
#include "CommonUi.h"
#include "ConfigPassphrase.h"
#include "SharedGlobalConfig.h"
#include "Ssh2.h"
#include "TraywellMessages.h"
#include "VMessageBox.h"
#include "VProfilePrivate.h"

namespace {

VReportMessageRouter* NoReportRouter() { return nullptr; }

}  // namespace

Traywell::Traywell() : windowManager_(std::make_unique<WindowManager>()) {}

Traywell::~Traywell() {
    agent_.reset();
    windowManager_.reset();
    if (registryFactory_ && CurrentProfileStoreFactory() == registryFactory_.get())
        SetRegistryStoreFactory(nullptr);
    registryFactory_.reset();
    mutex_.Reset();
}

bool Traywell::InitInstance() {
    ClientConfigUiInitProfileFactory(CurrentProfileStoreFactory);
    ClientConfigUiInit(NoReportRouter, 1);
    CommonUiInit(nullptr, CurrentProfileStoreFactory);

    mutex_.Reset(CreateMutexW(nullptr, FALSE, InstanceMutexName));
    const DWORD mutexError = GetLastError();
    if (!mutex_) {
        VReportMessageParams failure(TRAY_INIT_FAILED);
        failure.AddArgument(L"0x%1!08x!", mutexError);
        VMessageBox(failure);
        return false;
    }
    // The command line's /AddKey goes to whichever copy runs; a bad one is
    // told, and start-up goes on without it.
    AddKeyCommand addKey;
    VReportMessageParams addKeyReport;
    if (!addKey.Read(VUnicodeString(GetCommandLineW(), Str::Sensitive), addKeyReport))
        VMessageBox(addKeyReport, MB_OK | MB_ICONEXCLAMATION);
    // Another copy runs: this one ends without disturbing it, and without a
    // word unless it has a key to hand over.
    if (mutexError == ERROR_ALREADY_EXISTS) {
        keyHandedOver_ = addKey.IsRequested() && addKey.Run(nullptr);
        return false;
    }

    registryFactory_ = std::make_unique<VRegistryStoreFactory>(nullptr, L"SOFTWARE\\Quillon");
    SetRegistryStoreFactory(registryFactory_.get());

    windowManager_->Initialize(VUnicodeString(GetCommandLineW(), Str::Sensitive));

    GlobalConfig* config = nullptr;
    GetGlobalConfig(config, -1);
    bool smartCard = false, fips = false;
    config->ReadSwitch(L"Disconnect Sessions On Smart Card Removal", smartCard);
    config->ReadSwitch(L"Enable FIPS Mode", fips);

    VReportMessageParams report;
    sshInitialized_ = SSH2::Init(fips, smartCard, report);
    if (!sshInitialized_) {
        VReportMessageParams failure(TRAY_SSH2_INIT_FAILED);
        failure.AddArgument(report.GetTextAsString());
        VMessageBox(failure);
        return false;
    }
    SSH2::ClientUiInit(IsConfigPassphraseDisabled, GetConfigPassphrase,
                       UpdateProfileEncryptedString, GetProfileEncryptedPlaintextString);
    StartAgent();
    if (addKey.IsRequested()) addKey.Run(windowManager_->GetOpenDialogSlot());
    return true;
}

// The agent's keys live in the larger shared-memory cache. With "Keep Shared
// Memory Agent Open" on, the agent holds it from start-up; with it off, no
// shared memory is made until a client or the Manage Agent Keys window first
// asks for the keys. When the pipe is taken (the system's own agent service
// runs), the user is told, and the store stays for the Manage Agent Keys window.
void Traywell::StartAgent() {
    agent_ = std::make_unique<AgentService>();
    GlobalConfig* config = nullptr;
    GetGlobalConfig(config, -1);
    VReportMessageParams report;
    if (!agent_->Start(config->KeepSharedMemoryAgentOpen.Get(), report))
        VMessageBox(report, MB_OK | MB_ICONEXCLAMATION);
}

int Traywell::ExitInstance() {
    if (agent_) agent_->Stop();
    windowManager_->Shutdown();
    if (sshInitialized_) SSH2::CleanupForUnload();
    const int code = VWinApp::ExitInstance();
    return keyHandedOver_ ? 0 : code;
}
