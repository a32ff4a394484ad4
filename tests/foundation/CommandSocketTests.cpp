// The threaded command and the command socket, with real processes (cmd.exe,
// and a program that does not exist) and a real TCP listener on the loopback
// address: what is reported, on which thread, in which order, and that no
// handle is left behind.
#include <gtest/gtest.h>

#include <ws2tcpip.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "VCommandSocket.h"
#include "VTcpSocket.h"
#include "WinsockSupport.h"

namespace {

// Every sink call of a test, in order, with the thread that made it.
class Log {
public:
    void Add(const std::string& line) {
        const std::lock_guard<std::mutex> lock(mutex_);
        lines_.push_back(line);
        threads_.push_back(GetCurrentThreadId());
        changed_.notify_all();
    }
    // Waits until count lines are there (10 s at most), and gives them.
    std::vector<std::string> Lines(size_t count) {
        std::unique_lock<std::mutex> lock(mutex_);
        changed_.wait_for(lock, std::chrono::seconds(10), [&] { return lines_.size() >= count; });
        return lines_;
    }
    DWORD Thread(size_t line) {
        const std::lock_guard<std::mutex> lock(mutex_);
        return threads_.at(line);
    }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<std::string> lines_;
    std::vector<DWORD> threads_;
};

class IRecorder : public ISocketEvents, public ISocketCommandStatus, public IThreadedCommandSink {};

class Recorder final : public VUnknown<IRecorder> {
public:
    Recorder(Log& log, std::string name) : log_(log), name_(std::move(name)) {}

    void OnConnect(DWORD error) override { Add("connect " + std::to_string(error)); }
    void OnReceive(const void* data, size_t length) override {
        Add("receive " + std::string(static_cast<const char*>(data), length));
    }
    void OnShutdown(DWORD error) override { Add("shutdown " + std::to_string(error)); }
    void OnCommandStatus(VReportMessageParams& report) override {
        Add("level " + std::to_string(report.GetLevel()) + ": " +
            VString(report.GetTextAsString()).c_str());
    }
    void OnCommandComplete(void* context, CompletionInfo& info) override {
        context_ = context;
        Add("done " + std::to_string(info.code) + " flag " + std::to_string(info.flag));
    }

    void* context_ = nullptr;

private:
    void Add(const std::string& what) { log_.Add(name_ + " " + what); }

    Log& log_;
    std::string name_;
};

VRefPtr<Recorder> NewRecorder(Log& log, const char* name) {
    return VRefPtr<Recorder>::Adopt(new Recorder(log, name));
}

// The two status lines that recorder hears for command and its code.
std::string Started(const char* recorder, const wchar_t* command) {
    return std::string(recorder) + " level 1: Running the command " +
           VString(VUnicodeString(command)).c_str() + " before connecting.";
}
std::string Ended(const char* recorder, const char* code) {
    return std::string(recorder) + " level 1: The command run before connecting ended with code " +
           code + " (its exit code, or the system error that kept it from starting).";
}

class Listener {
public:
    Listener() : socket_(socket(AF_INET, SOCK_STREAM, IPPROTO_TCP)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        int length = sizeof address;
        EXPECT_EQ(bind(socket_.Get(), reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
        EXPECT_EQ(listen(socket_.Get(), 4), 0);
        EXPECT_EQ(getsockname(socket_.Get(), reinterpret_cast<sockaddr*>(&address), &length), 0);
        port_ = ntohs(address.sin_port);
    }
    uint16_t Port() const { return port_; }
    std::string Destination() const { return "127.0.0.1:" + std::to_string(port_); }
    // The next connection, or none when none waits.
    SocketHandle Accept() {
        fd_set waiting;
        FD_ZERO(&waiting);
        FD_SET(socket_.Get(), &waiting);
        timeval now{0, 0};
        if (select(0, &waiting, nullptr, nullptr, &now) != 1) return SocketHandle();
        return SocketHandle(accept(socket_.Get(), nullptr, nullptr));
    }

private:
    SocketHandle socket_;
    uint16_t port_ = 0;
};

class CommandSocket : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        VReportMessageParams report;
        ASSERT_TRUE(StartWinsock(report));
        ASSERT_TRUE(VReportMessageParams::LoadFallbackModule(ConfigMessagesModule));
    }

    VRefPtr<VCommandSocket> NewCommandSocket(const wchar_t* commandLine) {
        return VRefPtr<VCommandSocket>::Adopt(
            new VCommandSocket(VRefPtr<VTcpSocket>::Adopt(new VTcpSocket()).Get(), events_.Get(),
                               events_.Get(), VUnicodeString(commandLine)));
    }

    Log log_;
    VRefPtr<Recorder> events_ = NewRecorder(log_, "events");
    VRefPtr<Recorder> completion_ = NewRecorder(log_, "completion");
};

TEST_F(CommandSocket, ThreadedCommandsReportTheirEndOnTheirThreadAndHandOnTheRequest) {
    const struct {
        const wchar_t* command;
        bool cancel;
        const char* code;
        const char* done;
    } cases[] = {
        {L"cmd.exe /c exit 3", false, "0x00000003", "handler done 3 flag 0"},
        {L"no-such-program-here.exe", false, "0x00000002", "handler done 2 flag 0"},
        {L"cmd.exe /c exit 0", true, "0x00000000", "handler done 0 flag 1"},
    };
    for (const auto& c : cases) {
        Log log;
        const VRefPtr<Recorder> status = NewRecorder(log, "status");
        const VRefPtr<Recorder> handler = NewRecorder(log, "handler");
        const auto command = VRefPtr<VThreadedCommand>::Adopt(new VThreadedCommand(status.Get()));
        int context = 0;
        command->Start(VUnicodeString(c.command),
                       {&context, VRefPtr<IThreadedCommandSink>(handler.Get())});
        if (c.cancel) command->Cancel();
        const std::vector<std::string> expected = {Started("status", c.command),
                                                   Ended("status", c.code), c.done};
        EXPECT_EQ(log.Lines(3), expected);
        EXPECT_EQ(handler->context_, &context);
        EXPECT_EQ(log.Thread(0), GetCurrentThreadId());
        EXPECT_NE(log.Thread(2), GetCurrentThreadId());
        EXPECT_EQ(log.Thread(1), log.Thread(2));
    }
}

TEST_F(CommandSocket, DeferredConnectsRunTheCommandThenReachTheListener) {
    const struct {
        const wchar_t* command;
        bool hostAndPort;
        const char* code;
        DWORD status;
    } cases[] = {
        {L"cmd.exe /c exit 3", false, "0x00000003", 3},
        {L"no-such-program-here.exe", true, "0x00000002", ERROR_FILE_NOT_FOUND},
    };
    for (const auto& c : cases) {
        Log log;
        events_ = NewRecorder(log, "events");
        completion_ = NewRecorder(log, "completion");
        Listener listener;
        const VRefPtr<VCommandSocket> socket = NewCommandSocket(c.command);
        VReportMessageParams report;
        const bool taken =
            c.hostAndPort
                ? socket->Connect(std::to_string(listener.Port()).c_str(), "localhost", 0,
                                  completion_.Get(), report)
                : socket->Connect(listener.Destination().c_str(), completion_.Get(), report);
        ASSERT_TRUE(taken);
        EXPECT_TRUE(socket->IsWaitingForCommand());
        const std::vector<std::string> expected = {Started("events", c.command),
                                                   Ended("events", c.code), "completion connect 0",
                                                   "events connect 0"};
        EXPECT_EQ(log.Lines(4), expected);
        EXPECT_NE(log.Thread(2), GetCurrentThreadId());
        DWORD status = 0;
        EXPECT_TRUE(socket->GetCommandStatus(status) && status == c.status);
        EXPECT_FALSE(socket->IsWaitingForCommand());

        // Connected for real: data and the end of the stream pass both ways.
        SocketHandle peer = listener.Accept();
        ASSERT_TRUE(peer);
        ASSERT_TRUE(socket->IsConnected());
        ASSERT_TRUE(socket->Send("ping", 4, report) && socket->Shutdown(report));
        char received[8] = {};
        EXPECT_EQ(recv(peer.Get(), received, sizeof received, MSG_WAITALL), 4);
        EXPECT_STREQ(received, "ping");
        send(peer.Get(), "pong", 4, 0);
        peer.Reset();
        for (int i = 0; i < 2; ++i) EXPECT_TRUE(socket->Receive(5000, report));
        EXPECT_EQ(log.Lines(6).at(4), "events receive pong");
        EXPECT_EQ(log.Lines(6).at(5), "events shutdown 0");
    }
}

TEST_F(CommandSocket, RequestsThatCannotGoOnTellTheirCompletionWhy) {
    Listener listener;
    const uint16_t closedPort = Listener().Port();  // its listener is gone at once
    const struct {
        std::string destination;
        bool closeWhileWaiting;
        DWORD error;
    } cases[] = {
        {listener.Destination(), true, ERROR_CANCELLED},
        {"127.0.0.1", false, WSAEINVAL},
        {"127.0.0.1:" + std::to_string(closedPort), false, WSAECONNREFUSED},
    };
    for (const auto& c : cases) {
        Log log;
        completion_ = NewRecorder(log, "completion");
        const VRefPtr<VCommandSocket> socket = NewCommandSocket(L"cmd.exe /c exit 0");
        VReportMessageParams report;
        ASSERT_TRUE(socket->Connect(c.destination.c_str(), completion_.Get(), report));
        EXPECT_FALSE(socket->Connect(c.destination.c_str(), completion_.Get(), report));
        EXPECT_EQ(report.GetMessageCode(), static_cast<DWORD>(WSAEALREADY));
        if (c.closeWhileWaiting) socket->Close();
        EXPECT_EQ(log.Lines(1),
                  std::vector<std::string>{"completion connect " + std::to_string(c.error)})
            << c.destination;
        EXPECT_FALSE(socket->IsConnected());
    }
    EXPECT_FALSE(listener.Accept());
}

// The process's open handles. Wine's GetProcessHandleCount answers 0, so
// every handle value of the table's first part is asked after instead.
DWORD CountHandles() {
    DWORD count = 0;
    DWORD flags = 0;
    for (ULONG_PTR handle = 4; handle < 0x10000; handle += 4)
        count += GetHandleInformation(reinterpret_cast<HANDLE>(handle), &flags) ? 1 : 0;
    return count;
}

TEST_F(CommandSocket, ManyRunsLeaveNoHandleBehind) {
    Listener listener;
    const auto connectOnce = [&] {
        Log log;
        completion_ = NewRecorder(log, "completion");
        const VRefPtr<VCommandSocket> socket = NewCommandSocket(L"cmd.exe /c exit 1");
        VReportMessageParams report;
        ASSERT_TRUE(socket->Connect(listener.Destination().c_str(), completion_.Get(), report));
        ASSERT_EQ(log.Lines(1).at(0), "completion connect 0");
        SocketHandle peer = listener.Accept();
        ASSERT_TRUE(peer);
    };
    connectOnce();  // the first run loads what stays loaded
    const DWORD before = CountHandles();
    for (int run = 0; run < 20; ++run) connectOnce();
    // The worker threads end just after their completion.
    DWORD after = CountHandles();
    for (int wait = 0; wait < 20 && after > before; ++wait) {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        after = CountHandles();
    }
    EXPECT_LE(after, before);
    std::printf("open handles before 20 runs: %lu, after: %lu\n", before, after);
}

}  // namespace
