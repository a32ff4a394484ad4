// The command socket with real processes and a real listener on the loopback address.
#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <vector>

#include "ChildProcess.h"
#include "VCommandSocket.h"
#include "VTcpSocket.h"

namespace {

class IRecorder : public ISocketEvents, public ISocketCommandStatus {};

class Recorder final : public VUnknown<IRecorder> {
public:
    explicit Recorder(const char* name, Recorder* log = nullptr)
        : name_(name), log_(log ? *log : *this) {}

    void OnConnect(DWORD error) override { Add("connect " + std::to_string(error)); }
    void OnReceive(const void* data, size_t length) override {
        Add("receive " + std::string(static_cast<const char*>(data), length));
    }
    void OnShutdown(DWORD error) override { Add("shutdown " + std::to_string(error)); }
    void OnCommandStatus(VReportMessageParams& report) override {
        Add(std::to_string(report.GetLevel()) + ": " + VString(report.GetTextAsString()).c_str());
    }

    std::vector<std::string> Lines(size_t count) {
        std::unique_lock<std::mutex> lock(mutex_);
        changed_.wait_for(lock, std::chrono::seconds(10), [&] { return lines_.size() >= count; });
        return lines_;
    }

private:
    void Add(const std::string& what) {
        const std::lock_guard<std::mutex> lock(log_.mutex_);
        const char* thread = GetCurrentThreadId() == testThread_ ? "" : "(worker) ";
        log_.lines_.push_back(thread + name_ + " " + what);
        log_.changed_.notify_all();
    }

    const DWORD testThread_ = GetCurrentThreadId();
    const std::string name_;
    Recorder& log_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<std::string> lines_;
};

class CommandSocket : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        VReportMessageParams report;
        ASSERT_TRUE(StartWinsock(report) &&
                    VReportMessageParams::LoadFallbackModule(ConfigMessagesModule));
    }

    static std::string Listen(const SocketHandle& socket) {
        sockaddr_in address{AF_INET, 0, {{{127, 0, 0, 1}}}, {}};
        int length = sizeof address;
        EXPECT_TRUE(bind(socket.Get(), reinterpret_cast<sockaddr*>(&address), length) == 0 &&
                    listen(socket.Get(), 4) == 0 &&
                    getsockname(socket.Get(), reinterpret_cast<sockaddr*>(&address), &length) == 0);
        return std::to_string(ntohs(address.sin_port));
    }

    VRefPtr<VCommandSocket> NewSocket(const wchar_t* commandLine) {
        const auto inner = VRefPtr<VTcpSocket>::Adopt(new VTcpSocket());
        return VRefPtr<VCommandSocket>::Adopt(new VCommandSocket(
            inner.Get(), events_.Get(), events_.Get(), VUnicodeString(commandLine)));
    }

    VRefPtr<Recorder> events_ = VRefPtr<Recorder>::Adopt(new Recorder("events"));
    SocketHandle listener_{socket(AF_INET, SOCK_STREAM, 0)};
    std::string port_ = Listen(listener_);
};

TEST_F(CommandSocket, ConnectsRunTheCommandThenReachTheListenerOnTheCommandsThread) {
    VReportMessageParams report;
    const auto completion = VRefPtr<Recorder>::Adopt(new Recorder("completion", events_.Get()));
    const VRefPtr<VCommandSocket> exits3 = NewSocket(L"cmd.exe /c exit 3");
    ASSERT_TRUE(exits3->Connect(("127.0.0.1:" + port_).c_str(), completion.Get(), report));
    EXPECT_TRUE(exits3->IsWaitingForCommand());
    events_->Lines(4);
    const VRefPtr<VCommandSocket> missing = NewSocket(L"no-such-program-here.exe");
    ASSERT_TRUE(missing->Connect(port_.c_str(), "localhost", 0, completion.Get(), report));
    const std::string ended =
        "(worker) events 1: The command run before connecting ended with code 0x0000000";
    const std::string why = " (its exit code, or the system error that kept it from starting).";
    const std::vector<std::string> expected = {
        "events 1: Running the command cmd.exe /c exit 3 before connecting.",
        ended + "3" + why,
        "(worker) completion connect 0",
        "(worker) events connect 0",
        "events 1: Running the command no-such-program-here.exe before connecting.",
        ended + "2" + why,
        "(worker) completion connect 0",
        "(worker) events connect 0"};
    EXPECT_EQ(events_->Lines(8), expected);
    DWORD codes[2] = {};
    EXPECT_TRUE(exits3->GetCommandStatus(codes[0]) && missing->GetCommandStatus(codes[1]));
    EXPECT_TRUE(codes[0] == 3 && codes[1] == ERROR_FILE_NOT_FOUND &&
                !exits3->IsWaitingForCommand());

    SocketHandle peer(accept(listener_.Get(), nullptr, nullptr));
    ASSERT_TRUE(exits3->IsConnected() && exits3->Send("ping", 4, report) &&
                exits3->Shutdown(report));
    char received[8] = {};
    EXPECT_EQ(recv(peer.Get(), received, sizeof received, MSG_WAITALL), 4);
    EXPECT_STREQ(received, "ping");
    send(peer.Get(), "pong", 4, 0);
    peer.Reset();
    EXPECT_TRUE(exits3->Receive(5000, report) && exits3->Receive(5000, report));
    const std::vector<std::string> lines = events_->Lines(10);
    EXPECT_EQ(std::vector<std::string>(lines.begin() + 8, lines.end()),
              (std::vector<std::string>{"events receive pong", "events shutdown 0"}));
}

// Wine's GetProcessHandleCount answers 0, so every handle value is asked after.
DWORD CountHandles() {
    DWORD count = 0, flags = 0;
    for (ULONG_PTR handle = 4; handle < 0x10000; handle += 4)
        count += GetHandleInformation(reinterpret_cast<HANDLE>(handle), &flags) ? 1 : 0;
    return count;
}

TEST_F(CommandSocket, EveryOutcomeReachesTheCompletionAndLeavesNoHandleBehind) {
    const struct {
        std::string destination;
        bool closeWhileWaiting;
        DWORD error;
    } cases[] = {{"127.0.0.1:" + port_, false, 0},
                 {"127.0.0.1:" + port_, true, ERROR_CANCELLED},
                 {"127.0.0.1", false, WSAEINVAL},
                 {"127.0.0.1:" + Listen(SocketHandle(socket(AF_INET, SOCK_STREAM, 0))), false,
                  WSAECONNREFUSED}};  // its listener is gone at once
    constexpr int rounds = 6;         // the first loads what stays loaded
    DWORD before = 0;
    for (int round = 0; round < rounds; ++round) {
        if (round == 1) before = CountHandles();
        for (const auto& c : cases) {
            const auto completion = VRefPtr<Recorder>::Adopt(new Recorder("completion"));
            const VRefPtr<VCommandSocket> socket = NewSocket(L"cmd.exe /c exit 0");
            VReportMessageParams report;
            ASSERT_TRUE(socket->Connect(c.destination.c_str(), completion.Get(), report));
            EXPECT_FALSE(socket->Connect(c.destination.c_str(), completion.Get(), report));
            EXPECT_EQ(report.GetMessageCode(), static_cast<DWORD>(WSAEALREADY));
            if (c.closeWhileWaiting) socket->Close();
            ASSERT_EQ(
                completion->Lines(1),
                std::vector<std::string>{"(worker) completion connect " + std::to_string(c.error)});
            EXPECT_EQ(socket->IsConnected(), c.error == 0);
            if (c.error == 0) SocketHandle(accept(listener_.Get(), nullptr, nullptr));
        }
    }
    // Wine may open a handle of its own; a leak would be one a run.
    constexpr DWORD slack = 2;
    DWORD after = 0;
    WaitUntil([&] { return (after = CountHandles()) <= before + slack; }, 2000);
    std::printf("open handles before %d runs: %lu, after: %lu\n", (rounds - 1) * 4, before, after);
    EXPECT_LE(after, before + slack);
}

}  // namespace
