// Traywell: the application object. Start-up makes sure one copy runs per
// session, sets up the profile stores, hands the command line to the
// WindowManager (which shows the icon), starts SSH2 and the SSH agent, and
// carries out /AddKey; exit undoes it. A second start ends at once, after
// handing its /AddKey, if any, to the copy that runs.
#pragma once

#include <memory>

#include "AgentService.h"
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
    // does not start; false silently when another copy runs (after handing
    // it the key of /AddKey). An agent that cannot serve is told in a box,
    // and the program runs on without it.
    bool InitInstance() override;
    // Stops the agent, takes the icon away, drops the recent lists and cleans
    // SSH2 up, whatever start-up got to. The exit code is 0 for a second
    // start that handed its key over.
    int ExitInstance() override;

private:
    void StartAgent();

    KernelHandle mutex_;
    std::unique_ptr<VRegistryStoreFactory> registryFactory_;
    std::unique_ptr<WindowManager> windowManager_;
    std::unique_ptr<AgentService> agent_;
    bool sshInitialized_ = false;
    bool keyHandedOver_ = false;
};
