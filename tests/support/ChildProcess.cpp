#include "ChildProcess.h"

#include <atomic>

ChildProcess::ChildProcess(const VUnicodeString& program, const VUnicodeString& arguments) {
    VUnicodeString commandLine = L"\"" + program + L"\" " + arguments;
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION started{};
    // Under load Wine now and then fails a start (1359) that succeeds a moment later.
    for (int attempt = 0;; ++attempt) {
        if (CreateProcessW(program.c_str(), commandLine.GetBuffer(commandLine.GetLength()), nullptr,
                           nullptr, FALSE, 0, nullptr, nullptr, &startup, &started))
            break;
        startError_ = GetLastError();
        if (attempt == 2 || startError_ == ERROR_FILE_NOT_FOUND) return;
        Sleep(200);
    }
    startError_ = ERROR_SUCCESS;
    process_.Reset(started.hProcess);
    CloseHandle(started.hThread);
    id_ = started.dwProcessId;
}

long ChildProcess::Wait(DWORD limit) const {
    DWORD code = 0;
    if (!process_ || WaitForSingleObject(process_.Get(), limit) != WAIT_OBJECT_0 ||
        !GetExitCodeProcess(process_.Get(), &code))
        return -1;
    return static_cast<long>(code);
}

void ChildProcess::Kill() {
    if (process_ && WaitForSingleObject(process_.Get(), 0) == WAIT_TIMEOUT) {
        TerminateProcess(process_.Get(), 9);
        WaitForSingleObject(process_.Get(), INFINITE);
    }
}

std::vector<HWND> ChildProcess::Windows(const wchar_t* className, size_t count,
                                        bool visibleOnly) const {
    std::vector<HWND> found;
    WaitUntil([&] {
        found.clear();
        for (HWND window = nullptr;
             (window = FindWindowExW(nullptr, window, className, nullptr));) {
            DWORD owner = 0;
            GetWindowThreadProcessId(window, &owner);
            if (owner == id_ && (!visibleOnly || IsWindowVisible(window))) found.push_back(window);
        }
        return found.size() >= count;
    });
    return found;
}

NamedEvent::NamedEvent() : name_(UniqueObjectName(L"event")) {
    event_.Reset(CreateEventW(nullptr, TRUE, FALSE, name_.c_str()));
}

bool NamedEvent::WaitSet(DWORD limit, const ChildProcess* process) const {
    const HANDLE handles[] = {event_.Get(), process ? process->Get() : nullptr};
    return WaitForMultipleObjects(process ? 2 : 1, handles, FALSE, limit) == WAIT_OBJECT_0;
}

VUnicodeString UniqueObjectName(const wchar_t* what) {
    static std::atomic<unsigned> counter{0};
    VUnicodeString name;
    name.FormatPrintf(128, L"TraywellTest-%ls-%lu-%u", what, GetCurrentProcessId(),
                      counter.fetch_add(1));
    return name;
}
