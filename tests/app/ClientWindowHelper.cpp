// A helper process that plays a client program for the tray program's tests.
//
//   client_window_helper --class terminal|transfer --log FILE [--windows N]
//                        [--session TEXT]... [--exit agree|refuse|hang]
//                        [--hang-query]
//       shows N (default 1) client main windows of that class, each holding
//       the given sessions, and answers the session query through the shared
//       buffer and the can-exit question as told (hang: never in time). It
//       appends to FILE one line per show-selection message, "select <window>
//       <session number>", and per WM_CLOSE, "close <window>", where <window>
//       is the window's index from 0. A closed window goes away; the process
//       ends when its last window has.
//
// Started in any other way (as Traywell starts a client program), it appends
// its own command line to the file named by the environment variable
// TRAYWELL_HELPER_LAUNCH_LOG and ends.
#include <windows.h>

#include <cstdio>
#include <cwchar>

#include "ClientProtocol.h"
#include "RegisteredMessages.h"
#include "VContainers.h"
#include "VMemoryMappedBuffer.h"
#include "VString.h"
#include "Win32Handle.h"

namespace {

constexpr DWORD HangMilliseconds = 120000;

struct Options {
    const wchar_t* windowClass = nullptr;
    VUnicodeString log;
    int windows = 1;
    VArray<VUnicodeString> sessions;
    enum { Agree, Refuse, Hang } exit = Agree;
    bool hangQuery = false;
};

Options options;
int openWindows = 0;

void AppendLine(const VUnicodeString& file, const VUnicodeString& line) {
    const FileHandle handle(CreateFileW(file.c_str(), FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                        nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!handle) return;
    const VString text(line + L"\n");
    DWORD written = 0;
    WriteFile(handle.Get(), text.c_str(), static_cast<DWORD>(text.GetLength()), &written, nullptr);
}

void Record(HWND window, const wchar_t* what, const wchar_t* detail = L"") {
    VUnicodeString line;
    line.FormatPrintf(64, L"%ls %d%ls", what, static_cast<int>(GetWindowLongPtrW(window, GWLP_USERDATA)) - 1, detail);
    AppendLine(options.log, line);
}

LRESULT AnswerSessionQuery(LPARAM size) {
    if (options.hangQuery) Sleep(HangMilliseconds);
    if (size == 0) return static_cast<LRESULT>(ClientProtocol::SessionDataSize(options.sessions));
    const auto buffer = VRefPtr<VMemoryMappedBuffer>::Adopt(new VMemoryMappedBuffer(static_cast<size_t>(size)));
    if (!buffer->IsMapped() || !ClientProtocol::WriteSessions(*buffer, options.sessions)) return 0;
    return static_cast<LRESULT>(buffer->GetDataLength());
}

LRESULT CALLBACK ClientWindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == ClientProtocol::SessionQueryMessage) return AnswerSessionQuery(lParam);
    if (message == GetTraywellCanExitApplicationMessage()) {
        if (options.exit == Options::Hang) Sleep(HangMilliseconds);
        return options.exit == Options::Agree ? 0 : 1;
    }
    if (message == GetTraywellShowSelectionMessage()) {
        wchar_t number[16];
        std::swprintf(number, 16, L" %u", static_cast<unsigned>(lParam));
        Record(window, L"select", number);
        ShowWindow(window, SW_RESTORE);
        return 0;
    }
    switch (message) {
        case WM_CLOSE:
            Record(window, L"close");
            DestroyWindow(window);
            return 0;
        case WM_DESTROY:
            if (--openWindows == 0) PostQuitMessage(0);
            return 0;
        default:
            return DefWindowProcW(window, message, wParam, lParam);
    }
}

bool ParseOptions(int argc, wchar_t** argv) {
    for (int i = 1; i < argc; ++i) {
        const VUnicodeString name(argv[i]);
        if (name == L"--hang-query") {
            options.hangQuery = true;
            continue;
        }
        if (i + 1 >= argc) return false;
        const wchar_t* value = argv[++i];
        if (name == L"--class") {
            options.windowClass = std::wcscmp(value, L"terminal") == 0 ? ClientProtocol::TerminalWindowClass
                                                                     : ClientProtocol::TransferWindowClass;
        } else if (name == L"--log") {
            options.log = value;
        } else if (name == L"--windows") {
            options.windows = _wtoi(value);
        } else if (name == L"--session") {
            options.sessions.Add(value);
        } else if (name == L"--exit") {
            options.exit = std::wcscmp(value, L"refuse") == 0 ? Options::Refuse
                           : std::wcscmp(value, L"hang") == 0 ? Options::Hang
                                                               : Options::Agree;
        } else {
            return false;
        }
    }
    return options.windowClass && !options.log.IsEmpty() && options.windows > 0;
}

int RecordLaunch() {
    wchar_t file[MAX_PATH];
    const DWORD length = GetEnvironmentVariableW(L"TRAYWELL_HELPER_LAUNCH_LOG", file, MAX_PATH);
    if (length == 0 || length >= MAX_PATH) return 2;
    AppendLine(file, GetCommandLineW());
    return 0;
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
    if (argc < 2 || std::wcsncmp(argv[1], L"--", 2) != 0) return RecordLaunch();
    if (!ParseOptions(argc, argv)) return 2;

    const HINSTANCE instance = GetModuleHandleW(nullptr);
    WNDCLASSEXW windowClass{};
    windowClass.cbSize = sizeof windowClass;
    windowClass.lpfnWndProc = ClientWindowProc;
    windowClass.cbWndExtra = sizeof(LONG_PTR);
    windowClass.hInstance = instance;
    windowClass.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    windowClass.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_WINDOW + 1);
    windowClass.lpszClassName = options.windowClass;
    if (!RegisterClassExW(&windowClass)) return 3;

    for (int i = 0; i < options.windows; ++i) {
        const HWND window = CreateWindowExW(0, options.windowClass, options.windowClass, WS_OVERLAPPEDWINDOW,
                                            40 + 20 * i, 40 + 20 * i, 320, 200, nullptr, nullptr, instance, nullptr);
        if (!window) return 3;
        ++openWindows;
        SetWindowLongW(window, 0, static_cast<LONG>(ClientProtocol::MainWindowMark));
        SetWindowLongPtrW(window, GWLP_USERDATA, i + 1);  // the index, kept non-zero
        ShowWindow(window, SW_SHOWNOACTIVATE);
    }
    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0) DispatchMessageW(&message);
    return 0;
}
