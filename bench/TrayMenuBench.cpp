// Building the tray menu with 20 client windows of 3 sessions each, the
// clients being helper processes, against its floor: the session queries'
// round trips alone (two sent messages and the shared buffer per window, as
// the protocol needs). The rest is the program's own work: walking the
// desktop for the client windows, reading the installation facts and the
// recent list, making the menu.
//
//   bench_tray_menu [windows]      (default 20; client_window_helper.exe beside it)
#include <windows.h>

#include <algorithm>
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

// The session query's round trips alone, for every window; milliseconds.
double QueryRoundTrips(const std::vector<HWND>& windows) {
    const double start = Now();
    for (HWND window : windows) {
        DWORD_PTR size = 0, written = 0;
        SendMessageTimeoutW(window, ClientProtocol::SessionQueryMessage, 0, 0, SMTO_ABORTIFHUNG,
                            5000, &size);
        const auto buffer = VRefPtr<VMemoryMappedBuffer>::Adopt(new VMemoryMappedBuffer(size));
        SendMessageTimeoutW(window, ClientProtocol::SessionQueryMessage, 0,
                            static_cast<LPARAM>(size), SMTO_ABORTIFHUNG, 5000, &written);
    }
    return (Now() - start) * 1000;
}

// Milliseconds to build the menu; items receives its count of items.
double BuildMenu(WindowManager& manager, size_t& items) {
    const double start = Now();
    HMENU menu = nullptr;
    manager.BuildTrayMenu(menu);
    const double took = (Now() - start) * 1000;
    items = static_cast<size_t>(GetMenuItemCount(menu));
    DestroyMenu(menu);
    return took;
}

double Median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
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
    std::vector<double> alone;
    for (int round = 0; round < Rounds; ++round) alone.push_back(BuildMenu(manager, items));
    std::printf("menu of %zu items without client windows: %.3f ms (median of %d)\n", items,
                Median(alone), Rounds);

    std::vector<KernelHandle> helpers = StartHelpers(count, folder + L"\\helpers.log");
    std::vector<HWND> windows;
    for (int tries = 0;
         tries < 400 && (windows = ClientWindows()).size() < static_cast<size_t>(count); ++tries)
        Sleep(50);
    if (windows.size() != static_cast<size_t>(count)) {
        std::fprintf(stderr, "only %zu of %d client windows came up\n", windows.size(), count);
        return 1;
    }
    // Each round builds the menu and then makes the same round trips, so that
    // a load that comes and goes on the machine touches both alike; the
    // program's own work is the difference within a round.
    std::vector<double> menus, trips, own;
    for (int round = 0; round < Rounds; ++round) {
        menus.push_back(BuildMenu(manager, items));
        trips.push_back(QueryRoundTrips(windows));
        own.push_back(menus.back() - trips.back());
    }
    const double menu = Median(menus), ownWork = Median(own);
    std::printf("menu of %zu items, %d client windows of 3 sessions (medians of %d rounds):\n",
                items, count, Rounds);
    std::printf("  whole build          %8.3f ms\n", menu);
    std::printf("  round trips (floor)  %8.3f ms   %5.3f ms per window\n", Median(trips),
                Median(trips) / count);
    std::printf("  program's own work   %8.3f ms   %5.1f%% of the whole\n", ownWork,
                100 * ownWork / menu);

    for (const KernelHandle& helper : helpers) TerminateProcess(helper.Get(), 0);
    for (const wchar_t* file : {L"\\helpers.log", L"\\Recent File List Filewright.ini"})
        DeleteFileW((folder + file).c_str());
    RemoveDirectoryW((folder + L"\\Recent File List Filewright").c_str());
    RemoveDirectoryW(folder.c_str());
    return 0;
}
