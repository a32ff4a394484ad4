#include "Traywell.h"

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
    // Another copy runs: this one ends without a word and without disturbing it.
    if (mutexError == ERROR_ALREADY_EXISTS) return false;

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
    return true;
}

int Traywell::ExitInstance() {
    windowManager_->Shutdown();
    if (sshInitialized_) SSH2::CleanupForUnload();
    return VWinApp::ExitInstance();
}
