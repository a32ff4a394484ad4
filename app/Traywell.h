// Traywell: the application object. Start-up makes sure one copy runs per
// session, sets up the profile stores, hands the command line to the
// WindowManager (which shows the icon) and starts SSH2; exit undoes it.
#pragma once

#include <memory>

#include "VRegistryStoreFactory.h"
#include "VWinApp.h"
#include "Win32Handle.h"
#include "WindowManager.h"

class Traywell : public VWinApp {
public:
    // Every copy of the program, in every session of the user, tries this name.
    static constexpr wchar_t InstanceMutexName[] = L"CB427A92-D7C2-4206-BBE9-68F2A379036D";

    Traywell();
    // Destroys the WindowManager first, then closes the mutex (keeping the
    // thread's last error).
    ~Traywell() override;

    bool IsSshInitialized() const { return sshInitialized_; }

protected:
    // False, after telling the user why, when the mutex cannot be made or SSH2
    // does not start; false silently when another copy runs.
    bool InitInstance() override;
    // Takes the icon away, drops the recent lists and cleans SSH2 up, whatever
    // start-up got to.
    int ExitInstance() override;

private:
    KernelHandle mutex_;
    std::unique_ptr<VRegistryStoreFactory> registryFactory_;
    std::unique_ptr<WindowManager> windowManager_;
    bool sshInitialized_ = false;
};
