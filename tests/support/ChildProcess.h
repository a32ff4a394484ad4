// Helper processes that tests start, their windows, and the named events they meet on.
#pragma once

#include <windows.h>

#include <vector>

#include "VString.h"
#include "Win32Handle.h"

// How long a test waits for another process: long enough for a busy machine.
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

// A process started with program (a full path) and arguments; killed when the object goes.
class ChildProcess {
public:
    ChildProcess(const VUnicodeString& program, const VUnicodeString& arguments);
    ~ChildProcess() { Kill(); }
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    bool IsRunning() const { return process_.IsValid(); }  // it was started
    DWORD StartError() const { return startError_; }
    HANDLE Get() const { return process_.Get(); }
    // The exit code once it ended within limit; -1 when it was not started or did not end.
    long Wait(DWORD limit) const;
    // Terminates it and waits until it is gone.
    void Kill();
    // Its top-level (visible) windows of className, once count or WaitLimit passed.
    std::vector<HWND> Windows(const wchar_t* className, size_t count = 0,
                              bool visibleOnly = true) const;

private:
    KernelHandle process_;
    DWORD id_ = 0;
    DWORD startError_ = ERROR_SUCCESS;
};

// A manual-reset event under a name no other test run uses, which helpers open by name.
class NamedEvent {
public:
    NamedEvent();
    const VUnicodeString& Name() const { return name_; }
    void Set() const { SetEvent(event_.Get()); }
    // Whether it was set within limit; with process, false as soon as that ends.
    bool WaitSet(DWORD limit, const ChildProcess* process = nullptr) const;

private:
    VUnicodeString name_;
    KernelHandle event_;
};

// A kernel object name for what, unique to this process and call.
VUnicodeString UniqueObjectName(const wchar_t* what);
