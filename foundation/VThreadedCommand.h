// Runs one command line as a process on a detached thread of its own, waits
// for it without a time-out, reports its end (exit code, or the error that
// kept it from starting) and hands the request on, all on that thread.
#pragma once

#include <atomic>
#include <string>

#include "IDeferredProcedure.h"
#include "ISocketCommandStatus.h"

class IThreadedCommand : public IDeferredProcedure, public IThreadedCommandSink {
protected:
    ~IThreadedCommand() override = default;
};

class VThreadedCommand final : public VUnknown<IThreadedCommand> {
public:
    static constexpr int32_t StatusLevel = 1;

    // reporter (may be null; one reference held) hears the start
    // (CONFIG_COMMAND_STARTING with the command line) and the end
    // (CONFIG_COMMAND_FINISHED with the code as "0x%1!08x!"). Allocate with
    // new; the worker thread holds a reference until it has finished.
    explicit VThreadedCommand(ISocketCommandStatus* reporter = nullptr) : reporter_(reporter) {}

    void Start(const VUnicodeString& commandLine, const DeferredRequest& request) override;
    void Cancel() override { flag_ = 1; }
    // The completion step: reports the code, then calls the request's handler.
    void OnCommandComplete(void* context, CompletionInfo& info) override;

private:
    ~VThreadedCommand() override = default;

    // The worker thread: owns its copy of the command line and the record;
    // its reference to the command keeps the flag byte alive.
    static void Run(std::wstring commandLine, CompletionInfo info,
                    VRefPtr<VThreadedCommand> command, const std::atomic<uint8_t>* flag);
    void Report(VReportMessageParams& report);

    VRefPtr<ISocketCommandStatus> reporter_;
    std::atomic<uint8_t> flag_{0};
};
