#include "ModalProbe.h"

#include <cwchar>

namespace {

ModalProbe* g_probe = nullptr;  // one probe at a time, on the test's thread

}  // namespace

ModalProbe::ModalProbe(std::function<bool()> action, UINT interval)
    : action_(std::move(action)), timer_(SetTimer(nullptr, 0, interval, OnTimer)) {
    g_probe = this;
}

ModalProbe::~ModalProbe() {
    KillTimer(nullptr, timer_);
    g_probe = nullptr;
}

void CALLBACK ModalProbe::OnTimer(HWND, UINT, UINT_PTR id, DWORD) {
    if (!g_probe || g_probe->timer_ != id || g_probe->done_) return;
    g_probe->done_ = g_probe->action_();
}

HWND FindOwnWindow(const wchar_t* className, const wchar_t* title) {
    struct Search {
        const wchar_t* className;
        const wchar_t* title;
        HWND found;
    } search{className, title, nullptr};
    auto matches = [](HWND window, LPARAM parameter) -> BOOL {
        auto& wanted = *reinterpret_cast<Search*>(parameter);
        wchar_t text[256] = {};
        GetClassNameW(window, text, 256);
        if (!IsWindowVisible(window) || wcscmp(text, wanted.className) != 0) return TRUE;
        GetWindowTextW(window, text, 256);
        if (wanted.title && wcscmp(text, wanted.title) != 0) return TRUE;
        wanted.found = window;
        return FALSE;
    };
    EnumThreadWindows(GetCurrentThreadId(), matches, reinterpret_cast<LPARAM>(&search));
    return search.found;
}

std::wstring MessageBoxText(HWND box) {
    wchar_t text[1024] = {};
    GetDlgItemTextW(box, 0xFFFF, text, 1024);  // a message box's text control
    return text;
}
