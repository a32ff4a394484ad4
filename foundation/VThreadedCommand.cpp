#include "VThreadedCommand.h"

#include <thread>
#include <vector>

#include "ConfigMessages.h"
#include "Win32Handle.h"

void VThreadedCommand::Report(VReportMessageParams& report) {
    report.SetLevel(StatusLevel);
    reporter_->OnCommandStatus(report);
}

void VThreadedCommand::Start(const VUnicodeString& commandLine, const DeferredRequest& request) {
    CompletionInfo info;
    info.context = request.context;
    info.sink = VRefPtr<IThreadedCommandSink>(this);
    info.next = request.handler;
    flag_ = 0;
    if (reporter_) {
        VReportMessageParams report(CONFIG_COMMAND_STARTING);
        report.AddArgument(commandLine);
        Report(report);
    }
    std::thread(Run, std::wstring(commandLine.c_str(), commandLine.GetLength()), std::move(info),
                VRefPtr<VThreadedCommand>(this), &flag_)
        .detach();
}

void VThreadedCommand::Run(std::wstring commandLine, CompletionInfo info,
                           [[maybe_unused]] VRefPtr<VThreadedCommand> command,
                           const std::atomic<uint8_t>* flag) {
    // CreateProcessW may write into the command line.
    std::vector<wchar_t> writable(commandLine.begin(), commandLine.end());
    writable.push_back(L'\0');
    STARTUPINFOW startup{};
    GetStartupInfoW(&startup);
    // The C runtime's table of inherited files describes our handles, which
    // the command does not inherit.
    startup.cbReserved2 = 0;
    startup.lpReserved2 = nullptr;
    PROCESS_INFORMATION process{};
    DWORD code = 0;
    if (CreateProcessW(nullptr, writable.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                       &startup, &process)) {
        const KernelHandle processHandle(process.hProcess);
        const KernelHandle threadHandle(process.hThread);
        WaitForSingleObject(processHandle.Get(), INFINITE);
        if (!GetExitCodeProcess(processHandle.Get(), &code)) code = GetLastError();
    } else {
        code = GetLastError();
    }
    info.code = code;
    info.flag = *flag;
    const VRefPtr<IThreadedCommandSink> sink = info.sink;
    sink->OnCommandComplete(info.context, info);
}

void VThreadedCommand::OnCommandComplete(void* context, CompletionInfo& info) {
    if (reporter_) {
        VReportMessageParams report(CONFIG_COMMAND_FINISHED);
        report.AddArgument(L"0x%1!08x!", info.code);
        Report(report);
    }
    if (info.next) info.next->OnCommandComplete(context, info);
}
