#include "ModalProbe.h"

#include <cwchar>

namespace {

ModalProbe* g_probe = nullptr;  // one probe at a time, on the test's thread

}  // namespace

ModalProbe::ModalProbe(std::function<bool()> action)
    : action_(std::move(action)), timer_(SetTimer(nullptr, 0, 50, OnTimer)) {
    g_probe = this;
}

ModalProbe::~ModalProbe() {
    KillTimer(nullptr, timer_);
    g_probe = nullptr;
}

void CALLBACK ModalProbe::OnTimer(HWND, UINT, UINT_PTR, DWORD) {
    if (g_probe && !g_probe->done_) g_probe->done_ = g_probe->action_();
}

HWND FindOwnWindow(const wchar_t* className) {
    struct Search {
        const wchar_t* className;
        HWND found;
    } search{className, nullptr};
    auto matches = [](HWND window, LPARAM parameter) -> BOOL {
        auto& wanted = *reinterpret_cast<Search*>(parameter);
        wchar_t name[256] = {};
        GetClassNameW(window, name, 256);
        if (!IsWindowVisible(window) || wcscmp(name, wanted.className) != 0) return TRUE;
        wanted.found = window;
        return FALSE;
    };
    EnumThreadWindows(GetCurrentThreadId(), matches, reinterpret_cast<LPARAM>(&search));
    return search.found;
}

VUnicodeString ItemText(HWND dialog, int control) {
    wchar_t text[1024] = {};
    GetDlgItemTextW(dialog, control, text, 1024);
    return text;
}
