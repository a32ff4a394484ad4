#include "VCommandSocket.h"

VCommandSocket::VCommandSocket(IStreamSocket* inner, ISocketEvents* sink,
                               ISocketCommandStatus* reporter, const VUnicodeString& commandLine)
    : inner_(inner),
      sink_(sink),
      commandLine_(commandLine),
      command_(VRefPtr<VThreadedCommand>::Adopt(new VThreadedCommand(reporter))) {
    inner_->SetEventSink(this);
}

VCommandSocket::~VCommandSocket() { inner_->SetEventSink(nullptr); }

bool VCommandSocket::Connect(const char* destination, ISocketSink* completion,
                             VReportMessageParams& report) {
    return Defer({this, RequestKind::Text, VString(destination), VString(), 0, completion}, report);
}

bool VCommandSocket::Connect(const char* service, const char* host, uint16_t port,
                             ISocketSink* completion, VReportMessageParams& report) {
    return Defer(
        {this, RequestKind::HostAndPort, VString(service), VString(host), port, completion},
        report);
}

bool VCommandSocket::Defer(DeferredConnect request, VReportMessageParams& report) {
    DeferredConnect* context = nullptr;
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        if (pending_) {
            report.SetMessageCode(WSAEALREADY);
            return false;
        }
        pending_ = std::make_unique<DeferredConnect>(std::move(request));
        context = pending_.get();
        commandDone_ = 0;
        commandStatus_ = 0;
    }
    // Started outside the lock: the status reporter may call back into us.
    try {
        command_->Start(commandLine_, {context, VRefPtr<IThreadedCommandSink>(this)});
    } catch (...) {
        const std::lock_guard<std::mutex> lock(mutex_);
        pending_.reset();
        throw;
    }
    return true;
}

void VCommandSocket::OnCommandComplete(void* context, CompletionInfo& info) {
    std::unique_ptr<DeferredConnect> request;
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        if (pending_.get() != context) return;  // not the request this socket waits for
        commandStatus_ = info.code;
        commandDone_ = 1;
        request = std::move(pending_);
    }
    ISocketSink* completion = request->completion.Get();
    if (info.flag) {
        if (completion) completion->OnConnect(ERROR_CANCELLED);
        return;
    }
    VReportMessageParams report;
    const bool taken = request->kind == RequestKind::Text
                           ? inner_->Connect(request->text.c_str(), completion, report)
                           : inner_->Connect(request->text.c_str(), request->host.c_str(),
                                             request->port, completion, report);
    if (!taken && completion) completion->OnConnect(report.GetMessageCode());
}

void VCommandSocket::Close() {
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        if (pending_) command_->Cancel();
    }
    inner_->Close();
}

void VCommandSocket::OnConnect(DWORD error) {
    if (ISocketEvents* sink = sink_) sink->OnConnect(error);
}

void VCommandSocket::OnReceive(const void* data, size_t length) {
    if (ISocketEvents* sink = sink_) sink->OnReceive(data, length);
}

void VCommandSocket::OnShutdown(DWORD error) {
    if (ISocketEvents* sink = sink_) sink->OnShutdown(error);
}

bool VCommandSocket::IsWaitingForCommand() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return pending_ != nullptr;
}

bool VCommandSocket::GetCommandStatus(DWORD& code) const {
    if (!commandDone_) return false;
    code = commandStatus_;
    return true;
}
