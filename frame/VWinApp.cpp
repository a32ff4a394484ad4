#include "VWinApp.h"

#include <atomic>
#include <stdexcept>

namespace {

std::atomic<VWinApp*> g_application{nullptr};

}  // namespace

VWinApp::VWinApp() {
    VWinApp* expected = nullptr;
    if (!g_application.compare_exchange_strong(expected, this))
        throw std::logic_error("VWinApp: a process has one application object");
}

VWinApp::~VWinApp() { g_application.store(nullptr); }

VWinApp* VWinApp::GetApp() { return g_application.load(); }

int VWinApp::Main(HINSTANCE instance, int showCommand) {
    instance_ = instance;
    showCommand_ = showCommand;
    if (InitInstance())
        exitCode_ = Run();
    else
        exitCode_ = 1;
    return ExitInstance();
}

int VWinApp::Run() {
    MSG message;
    for (;;) {
        const BOOL got = GetMessageW(&message, nullptr, 0, 0);
        if (got == 0) return static_cast<int>(message.wParam);
        if (got == -1) return -1;  // only for an invalid window filter, which we never pass
        if (PreTranslateMessage(message)) continue;
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}

bool VWinApp::PreTranslateMessage(MSG&) { return false; }

int VWinApp::ExitInstance() { return exitCode_; }
