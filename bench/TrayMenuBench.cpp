// Building the tray menu with 20 client windows of 3 sessions each, the
// clients being helper processes: the whole build against its floor, the
// session queries' round trips alone (two sent messages and the shared
// buffer per window, as the protocol needs). What is left is the program's
// own work: finding the windows, reading the recent list, making the menu.
//
//   bench_tray_menu [windows]      (default 20; client_window_helper.exe beside it)
#include <windows.h>

#include <cstdio>
#include <cwchar>
#include <vector>

#include "BenchSupport.h"
#include "ClientProtocol.h"
#include "ProgramFolder.h"
#include "VMemoryMappedBuffer.h"
#include "Win32Handle.h"
#include "WindowManager.h"

namespace {

// Many rounds: on a busy machine the best of them is the quiet one.
constexpr int Rounds = 40;

std::vector<KernelHandle> StartHelpers(int count, const std::wstring& log) {
    std::vector<KernelHandle> helpers;
    const VUnicodeString program = GetPathBesideProgram(L"client_window_helper.exe");
    for (int i = 0; i < count; ++i) {
        std::wstring commandLine = L"\"" + std::wstring(program.c_str()) + L"\" --class " +
                                   (i % 2 ? L"transfer" : L"terminal") + L" --log \"" + log +
                                   L"\" --session \"1,Build server\" --session \"2,Mail\" "
                                   L"--session \"3,Database & backups\"";
        STARTUPINFOW startup{};
        startup.cb = sizeof startup;
        PROCESS_INFORMATION process{};
        if (!CreateProcessW(program.c_str(), commandLine.data(), nullptr, nullptr, FALSE, 0,
                            nullptr, nullptr, &startup, &process))
            break;
        CloseHandle(process.hThread);
        helpers.emplace_back(process.hProcess);
    }
    return helpers;
}

BOOL CALLBACK AddClientWindow(HWND window, LPARAM windows) {
    wchar_t className[64];
    if (GetClassNameW(window, className, 64) &&
        (std::wcscmp(className, ClientProtocol::TerminalWindowClass) == 0 ||
         std::wcscmp(className, ClientProtocol::TransferWindowClass) == 0))
        reinterpret_cast<std::vector<HWND>*>(windows)->push_back(window);
    return TRUE;
}

std::vector<HWND> ClientWindows() {
    std::vector<HWND> windows;
    EnumWindows(AddClientWindow, reinterpret_cast<LPARAM>(&windows));
    return windows;
}

// The session query's round trips alone, for every window.
void QueryRoundTrips(const std::vector<HWND>& windows) {
    for (HWND window : windows) {
        DWORD_PTR size = 0, written = 0;
        SendMessageTimeoutW(window, ClientProtocol::SessionQueryMessage, 0, 0, SMTO_ABORTIFHUNG,
                            5000, &size);
        const auto buffer = VRefPtr<VMemoryMappedBuffer>::Adopt(new VMemoryMappedBuffer(size));
        SendMessageTimeoutW(window, ClientProtocol::SessionQueryMessage, 0,
                            static_cast<LPARAM>(size), SMTO_ABORTIFHUNG, 5000, &written);
    }
}

double BestBuild(WindowManager& manager, size_t& items) {
    return BestTimes({[&] {
                         HMENU menu = nullptr;
                         manager.BuildTrayMenu(menu);
                         items = static_cast<size_t>(GetMenuItemCount(menu));
                         DestroyMenu(menu);
                     }},
                     Rounds)[0] *
           1000;
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
    const int count = argc > 1 ? _wtoi(argv[1]) : 20;
    const std::wstring folder = TempPath() + L"traywell-menu-bench";
    CreateDirectoryW(folder.c_str(), nullptr);
    WindowManager manager;
    manager.Initialize((L"bench_tray_menu.exe /F \"" + folder + L"\"").c_str());
    for (const wchar_t* session : {L"Build server", L"Mail", L"Database & backups", L"Router"})
        if (VRecentFileList* list = manager.GetTransferRecentList()) list->Add(session);
    size_t items = 0;
    const double alone = BestBuild(manager, items);
    std::printf("menu of %zu items without client windows: %.3f ms (best of %d)\n", items, alone,
                Rounds);

    std::vector<KernelHandle> helpers = StartHelpers(count, folder + L"\\helpers.log");
    std::vector<HWND> windows;
    for (int tries = 0;
         tries < 400 && (windows = ClientWindows()).size() < static_cast<size_t>(count); ++tries)
        Sleep(50);
    if (windows.size() != static_cast<size_t>(count)) {
        std::fprintf(stderr, "only %zu of %d client windows came up\n", windows.size(), count);
        return 1;
    }
    const double menu = BestBuild(manager, items);
    const double roundTrips = BestTimes({[&] { QueryRoundTrips(windows); }}, Rounds)[0] * 1000;
    const double own = menu - roundTrips;
    std::printf("menu of %zu items, %d client windows of 3 sessions (best of %d):\n", items, count,
                Rounds);
    std::printf("  whole build          %8.3f ms   %5.2fx the round trips\n", menu,
                menu / roundTrips);
    std::printf("  round trips (floor)  %8.3f ms   %5.3f ms per window\n", roundTrips,
                roundTrips / count);
    std::printf("  program's own work   %8.3f ms   %5.1f%% of the whole\n", own, 100 * own / menu);

    for (const KernelHandle& helper : helpers) TerminateProcess(helper.Get(), 0);
    for (const wchar_t* file : {L"\\helpers.log", L"\\Recent File List Filewright.ini"})
        DeleteFileW((folder + file).c_str());
    RemoveDirectoryW((folder + L"\\Recent File List Filewright").c_str());
    RemoveDirectoryW(folder.c_str());
    return 0;
}
