// A program of the build started by a test, and waits with a time limit for
// what it shows: tests of the tray program and of the prompts drive their
// windows from outside. A process still running when its object goes is ended.
#pragma once

#include <windows.h>

#include <vector>

#include "VString.h"
#include "Win32Handle.h"

inline constexpr DWORD WaitLimit = 15000;

// Polls until done() holds or limit (ms) passes; done()'s last answer.
template <class Condition>
bool WaitUntil(Condition done, DWORD limit = WaitLimit) {
    for (DWORD waited = 0; !done(); waited += 50) {
        if (waited >= limit) return false;
        Sleep(50);
    }
    return true;
}

class TestProcess {
public:
    // program started with arguments; a process that did not start is never seen to exit.
    TestProcess(const VUnicodeString& program, const VUnicodeString& arguments) {
        VUnicodeString line = VUnicodeString(L"\"") + program + L"\" " + arguments;
        STARTUPINFOW startup{};
        startup.cb = sizeof startup;
        PROCESS_INFORMATION started{};
        if (!CreateProcessW(program.c_str(), line.GetBuffer(line.GetLength()), nullptr, nullptr,
                            FALSE, 0, nullptr, nullptr, &startup, &started))
            return;
        process_.Reset(started.hProcess);
        CloseHandle(started.hThread);
        id_ = started.dwProcessId;
    }
    ~TestProcess() { Kill(); }

    // Whether it ended within limit, with its exit code.
    bool Exited(DWORD limit = WaitLimit, DWORD* code = nullptr) const {
        if (!process_ || WaitForSingleObject(process_.Get(), limit) != WAIT_OBJECT_0) return false;
        if (code) GetExitCodeProcess(process_.Get(), code);
        return true;
    }
    void Kill() {
        if (process_ && !Exited(0)) {
            TerminateProcess(process_.Get(), 99);
            Exited();
        }
    }
    // Its top-level windows of className (visible ones only when visibleOnly),
    // once there are count of them or the time limit passed.
    std::vector<HWND> Windows(const wchar_t* className, size_t count = 0,
                              bool visibleOnly = true) const {
        std::vector<HWND> found;
        WaitUntil([&] {
            found.clear();
            for (HWND window = nullptr;
                 (window = FindWindowExW(nullptr, window, className, nullptr));) {
                DWORD owner = 0;
                GetWindowThreadProcessId(window, &owner);
                if (owner == id_ && (!visibleOnly || IsWindowVisible(window)))
                    found.push_back(window);
            }
            return found.size() >= count;
        });
        return found;
    }

private:
    KernelHandle process_;
    DWORD id_ = 0;
};
