#include "VMessageBox.h"

#include <atomic>

#include "VMessageBoxHook.h"

namespace {

std::atomic<VMessageBoxHook> g_hook{nullptr};

}  // namespace

int VMessageBox(const wchar_t* text, UINT type, HWND owner) {
    if (const VMessageBoxHook hook = g_hook.load())
        return hook(
            VMessageBoxCall{owner, VUnicodeString(text), VUnicodeString(VMessageBoxTitle), type});
    // A tray program's box has no window of ours to stand in front of; without
    // MB_SETFOREGROUND it may open behind the window the user is working in.
    return MessageBoxW(owner, text, VMessageBoxTitle, type | MB_SETFOREGROUND);
}

int VMessageBox(VReportMessageParams& report, UINT type, HWND owner) {
    return VMessageBox(report.GetText(), type, owner);
}

VMessageBoxHook SetMessageBoxHookForTests(VMessageBoxHook hook) { return g_hook.exchange(hook); }
