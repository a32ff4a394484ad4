// Plays a client: --terminal|--transfer LOG WINDOWS agree|refuse|hang [SESSION]... shows WINDOWS
// windows and logs "select|hide|close <index>" to LOG. Started any other way (as Traywell starts a
// client) it logs its command line to TRAYWELL_HELPER_LAUNCH_LOG.
#include <windows.h>

#include <cwchar>

#include "ClientProtocol.h"
#include "RegisteredMessages.h"
#include "VMemoryMappedBuffer.h"
#include "Win32Handle.h"

namespace {

VUnicodeString logFile;
VArray<VUnicodeString> sessions;
const wchar_t* exitAnswer = L"agree";
int openWindows = 0;

void AppendLine(const wchar_t* file, const VUnicodeString& line) {
    const FileHandle handle(CreateFileW(file, FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                        nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    const VString text(line + L"\n");
    DWORD written = 0;
    if (handle)
        WriteFile(handle.Get(), text.c_str(), static_cast<DWORD>(text.GetLength()), &written,
                  nullptr);
}

void Record(HWND window, const wchar_t* what, unsigned number = 0) {
    VUnicodeString line;
    line.FormatPositional(what, static_cast<unsigned>(GetWindowLongPtrW(window, GWLP_USERDATA) - 1),
                          number);
    AppendLine(logFile.c_str(), line);
}

LRESULT AnswerSessionQuery(LPARAM size) {
    if (size == 0) return static_cast<LRESULT>(ClientProtocol::SessionDataSize(sessions));
    const auto buffer =
        VRefPtr<VMemoryMappedBuffer>::Adopt(new VMemoryMappedBuffer(static_cast<size_t>(size)));
    if (!buffer->IsMapped() || !ClientProtocol::WriteSessions(*buffer, sessions)) return 0;
    return static_cast<LRESULT>(buffer->GetDataLength());
}

LRESULT CALLBACK ClientWindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == ClientProtocol::SessionQueryMessage) return AnswerSessionQuery(lParam);
    if (message == GetTraywellCanExitApplicationMessage()) {
        if (std::wcscmp(exitAnswer, L"hang") == 0) Sleep(120000);
        return std::wcscmp(exitAnswer, L"agree") != 0;
    }
    if (message == GetTraywellShowSelectionMessage()) {
        Record(window, L"select %1!u! %2!u!", static_cast<unsigned>(lParam));
        ShowWindow(window, SW_RESTORE);
        return 0;
    }
    if (message == WM_SHOWWINDOW && !wParam && lParam == 0) Record(window, L"hide %1!u!");
    if (message == WM_CLOSE) {
        Record(window, L"close %1!u!");
        DestroyWindow(window);
        return 0;
    }
    if (message == WM_DESTROY && --openWindows == 0) PostQuitMessage(0);
    return DefWindowProcW(window, message, wParam, lParam);
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
    const bool terminal = argc > 1 && std::wcscmp(argv[1], L"--terminal") == 0;
    if (argc < 5 || (!terminal && std::wcscmp(argv[1], L"--transfer") != 0)) {
        wchar_t file[MAX_PATH];
        const DWORD length = GetEnvironmentVariableW(L"TRAYWELL_HELPER_LAUNCH_LOG", file, MAX_PATH);
        if (length == 0 || length >= MAX_PATH) return 2;
        AppendLine(file, GetCommandLineW());
        return 0;
    }
    const wchar_t* windowClass =
        terminal ? ClientProtocol::TerminalWindowClass : ClientProtocol::TransferWindowClass;
    logFile = argv[2];
    const int windows = _wtoi(argv[3]);
    exitAnswer = argv[4];
    for (int i = 5; i < argc; ++i) sessions.Add(argv[i]);
    WNDCLASSEXW registration{};
    registration.cbSize = sizeof registration;
    registration.lpfnWndProc = ClientWindowProc;
    registration.cbWndExtra = sizeof(LONG_PTR);
    registration.hInstance = GetModuleHandleW(nullptr);
    registration.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_WINDOW + 1);
    registration.lpszClassName = windowClass;
    if (logFile.IsEmpty() || !RegisterClassExW(&registration)) return 2;
    for (; openWindows < windows; ++openWindows) {
        const int offset = 40 + 20 * openWindows;
        const HWND window =
            CreateWindowExW(0, windowClass, windowClass, WS_OVERLAPPEDWINDOW, offset, offset, 320,
                            200, nullptr, nullptr, nullptr, nullptr);
        if (!window) return 3;
        SetWindowLongW(window, 0, static_cast<LONG>(ClientProtocol::MainWindowMark));
        SetWindowLongPtrW(window, GWLP_USERDATA, openWindows + 1);  // the index, kept non-zero
        ShowWindow(window, SW_SHOWNOACTIVATE);
    }
    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0) DispatchMessageW(&message);
    return 0;
}
