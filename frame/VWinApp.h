// VWinApp: the application base. A program derives from it, makes one object
// in wWinMain and returns Main's result: start-up (InitInstance), the message
// loop (Run) and exit (ExitInstance), which runs after a failed start-up too.
#pragma once

#include <windows.h>

class VWinApp {
public:
    // Registers this object as the process's application; a second one while
    // the first lives is misuse (std::logic_error).
    VWinApp();
    virtual ~VWinApp();
    VWinApp(const VWinApp&) = delete;
    VWinApp& operator=(const VWinApp&) = delete;

    // The life cycle, on the calling thread, which becomes the UI thread:
    // InitInstance; when it succeeds, Run; then ExitInstance in every case.
    // Returns ExitInstance's result, the process's exit code. Call once.
    int Main(HINSTANCE instance, int showCommand);

    // The application object of the process; null when there is none.
    static VWinApp* GetApp();
    // The module the program was started from (as given to Main).
    HINSTANCE GetInstanceHandle() const { return instance_; }
    int GetShowCommand() const { return showCommand_; }

protected:
    // Start-up. False ends the program: Run is skipped and ExitInstance runs.
    virtual bool InitInstance() = 0;
    // Dispatches the thread's messages until WM_QUIT and returns its wParam.
    // Each message goes to PreTranslateMessage first.
    virtual int Run();
    // True when the message was handled and must not be dispatched. Default: false.
    virtual bool PreTranslateMessage(MSG& message);
    // Exit. Returns the exit code: by default GetExitCode().
    virtual int ExitInstance();

    // WM_QUIT's wParam after Run; 1 after a failed start-up.
    int GetExitCode() const { return exitCode_; }

private:
    HINSTANCE instance_ = nullptr;
    int showCommand_ = SW_SHOWDEFAULT;
    int exitCode_ = 0;
};
