#include "ClientApplication.h"

#include <windows.h>

#include "ClientProtocol.h"
#include "Installation.h"
#include "Win32Handle.h"

ClientApplication SelectClientApplication() {
    ClientApplication client;
    if (IsIntegrated()) {
        if (FindWindowW(ClientProtocol::TerminalWindowClass, nullptr) && IsTermwrightInstalled()) {
            client = {ClientProtocol::TerminalName, GetTermwrightPath()};
        } else if (FindWindowW(ClientProtocol::TransferWindowClass, nullptr) &&
                   IsFilewrightInstalled()) {
            client = {ClientProtocol::TransferName, GetFilewrightPath()};
        }
    }
    if (client.path.IsEmpty()) {
        client = IsTermwrightInstalled()
                     ? ClientApplication{ClientProtocol::TerminalName, GetTermwrightPath()}
                     : ClientApplication{ClientProtocol::TransferName, GetFilewrightPath()};
    }
    return client;
}

bool LaunchClient(const VUnicodeString& executable, const VUnicodeString& configArgument,
                  const VUnicodeString& arguments) {
    VUnicodeString commandLine =
        VUnicodeString(L"\"") + executable + L"\" " + configArgument + L" " + arguments;
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process{};
    // CreateProcessW may write into the command line, so it gets a buffer of its own.
    wchar_t* buffer = commandLine.GetBuffer(commandLine.GetLength());
    const BOOL started = CreateProcessW(executable.c_str(), buffer, nullptr, nullptr, FALSE, 0,
                                        nullptr, nullptr, &startup, &process);
    commandLine.ReleaseBuffer(commandLine.GetLength());
    if (!started) return false;
    const KernelHandle processHandle(process.hProcess);
    const KernelHandle threadHandle(process.hThread);
    return true;
}
