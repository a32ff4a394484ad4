#include "Ssh2.h"

#include <atomic>

#include "ProgramFolder.h"
#include "SelfTests.h"
#include "SshkitMessages.h"
#include "Win32Handle.h"

namespace {

constexpr wchar_t MessagesModule[] = L"SshkitMessages.dll";

struct State {
    bool initialized = false;
    bool fipsMode = false;
    bool disconnectOnSmartCardRemoval = false;
    const wchar_t* failedSelfTest = nullptr;
};

State g_state;

// Sshkit's texts, loaded when a report first needs them and kept for the process.
HMODULE MessagesModuleHandle() {
    static const LibraryHandle module(LoadLibraryExW(GetPathBesideProgram(MessagesModule).c_str(),
                                                     nullptr, LOAD_LIBRARY_AS_DATAFILE));
    return module.Get();
}

}  // namespace

namespace SSH2 {

bool Init(bool fipsMode, bool disconnectOnSmartCardRemoval, VReportMessageParams& report) {
    report.Clear();
    g_state.failedSelfTest = Detail::RunSelfTests();
    if (g_state.failedSelfTest && fipsMode) {
        if (HMODULE module = MessagesModuleHandle()) report.SetModule(module);
        report.Set(SSHKIT_SELF_TEST_FAILED, g_state.failedSelfTest);
        g_state.initialized = false;
        return false;
    }
    g_state.initialized = true;
    g_state.fipsMode = fipsMode;
    g_state.disconnectOnSmartCardRemoval = disconnectOnSmartCardRemoval;
    return true;
}

void CleanupForUnload() {
    const wchar_t* failed = g_state.failedSelfTest;
    g_state = State{};
    g_state.failedSelfTest = failed;
}

bool IsInitialized() { return g_state.initialized; }
bool IsFipsMode() { return g_state.fipsMode; }
bool IsDisconnectOnSmartCardRemoval() { return g_state.disconnectOnSmartCardRemoval; }
const wchar_t* GetFailedSelfTest() { return g_state.failedSelfTest; }

}  // namespace SSH2
