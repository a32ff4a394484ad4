// Shared-memory caches across real processes: this test process and
// shared_memory_probe.exe instances share one block, count each other as
// holders, refuse a larger second creator and serialise a counter under the
// cache's lock. Every wait is bounded.
#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "SharedMemoryProbe.h"
#include "SharedMemoryTestNames.h"

namespace {

constexpr DWORD ProcessWait = 120000;

std::wstring ProbePath() {
    wchar_t path[MAX_PATH] = {};
    const DWORD length = GetModuleFileNameW(nullptr, path, MAX_PATH);
    std::wstring folder(path, length);
    return folder.substr(0, folder.find_last_of(L"\\/") + 1) + L"shared_memory_probe.exe";
}

// One run of the probe; killed if the test leaves before it ends.
class Probe {
public:
    explicit Probe(const std::wstring& arguments) {
        std::wstring command = L"\"" + ProbePath() + L"\" " + arguments;
        STARTUPINFOW startup{};
        startup.cb = sizeof startup;
        PROCESS_INFORMATION started{};
        if (CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &started)) {
            process_.Reset(started.hProcess);
            KernelHandle thread(started.hThread);
        }
        EXPECT_TRUE(process_) << "cannot start the probe: error " << GetLastError();
    }
    ~Probe() {
        if (process_ && WaitForSingleObject(process_.Get(), 0) == WAIT_TIMEOUT) {
            TerminateProcess(process_.Get(), 1);
            WaitForSingleObject(process_.Get(), ProcessWait);
        }
    }

    HANDLE Get() const { return process_.Get(); }

    // The exit code; ProbeTimedOut when it did not end in time.
    DWORD Finish() {
        if (!process_ || WaitForSingleObject(process_.Get(), ProcessWait) != WAIT_OBJECT_0) return ProbeTimedOut;
        DWORD code = ProbeTimedOut;
        GetExitCodeProcess(process_.Get(), &code);
        return code;
    }

private:
    KernelHandle process_;
};

// A manual-reset event that probes open by name.
class NamedEvent {
public:
    NamedEvent() : name_(UniqueObjectName(L"event")), event_(CreateEventW(nullptr, TRUE, FALSE, name_.c_str())) {}
    const wchar_t* Name() const { return name_.c_str(); }
    void Set() { SetEvent(event_.Get()); }
    // Waits until the event is set; false when probe ended first or time ran out.
    bool WaitWhileRunning(const Probe& probe) const {
        const HANDLE handles[] = {event_.Get(), probe.Get()};
        return WaitForMultipleObjects(2, handles, FALSE, ProcessWait) == WAIT_OBJECT_0;
    }

private:
    VUnicodeString name_;
    KernelHandle event_;
};

std::wstring Arguments(std::initializer_list<std::wstring> parts) {
    std::wstring joined;
    for (const std::wstring& part : parts) joined += (joined.empty() ? L"" : L" ") + part;
    return joined;
}

TEST(SharedMemoryProcessTest, ASecondProcessSharesTheBlockWithoutClearingIt) {
    const VUnicodeString name = UniqueObjectName(L"cache");
    DWORD outcome = 0;
    auto cache = OpenCache(name, 256, outcome);
    ASSERT_EQ(outcome, 0u);
    auto* data = static_cast<BYTE*>(cache->GetData());
    ASSERT_TRUE(cache->Lock());
    std::memset(data, 0xA5, 64);
    cache->Unlock();

    Probe peek(Arguments({L"peek", name.c_str(), L"256", L"0xA5", L"64"}));
    EXPECT_EQ(peek.Finish(), 0u) << "the second process did not find the first one's bytes";
    uint32_t holdersSeen = 0;
    ASSERT_TRUE(cache->Lock());
    std::memcpy(&holdersSeen, data + 64, sizeof holdersSeen);
    cache->Unlock();
    EXPECT_EQ(holdersSeen, 2u);
    EXPECT_EQ(cache->GetHolderCount(), 1u);  // the probe let go as it ended
}

TEST(SharedMemoryProcessTest, TheHolderCountFollowsProcessesThatComeAndGo) {
    const VUnicodeString name = UniqueObjectName(L"cache");
    NamedEvent firstReady, secondReady, quit;
    Probe first(Arguments({L"hold", name.c_str(), L"128", firstReady.Name(), quit.Name()}));
    ASSERT_TRUE(firstReady.WaitWhileRunning(first)) << "probe ended with " << first.Finish();

    DWORD outcome = 0;
    auto cache = OpenCache(name, 128, outcome);
    ASSERT_EQ(outcome, 0u);
    EXPECT_EQ(cache->GetHolderCount(), 2u);
    EXPECT_EQ(static_cast<BYTE*>(cache->GetData())[0], 0);  // the probe created it, cleared

    Probe second(Arguments({L"hold", name.c_str(), L"128", secondReady.Name(), quit.Name()}));
    ASSERT_TRUE(secondReady.WaitWhileRunning(second)) << "probe ended with " << second.Finish();
    EXPECT_EQ(cache->GetHolderCount(), 3u);

    quit.Set();
    EXPECT_EQ(first.Finish(), 0u);
    EXPECT_EQ(second.Finish(), 0u);
    EXPECT_EQ(cache->GetHolderCount(), 1u);
}

TEST(SharedMemoryProcessTest, ALargerSecondCreatorIsRefusedEitherWay) {
    const VUnicodeString name = UniqueObjectName(L"cache");
    NamedEvent ready, quit;
    Probe holder(Arguments({L"hold", name.c_str(), L"64", ready.Name(), quit.Name()}));
    ASSERT_TRUE(ready.WaitWhileRunning(holder)) << "probe ended with " << holder.Finish();

    DWORD outcome = 0;
    auto larger = OpenCache(name, 256 * 1024, outcome);
    EXPECT_EQ(outcome, static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    EXPECT_EQ(larger->GetData(), nullptr);
    EXPECT_FALSE(larger->Lock());
    auto fitting = OpenCache(name, 64, outcome);
    ASSERT_EQ(outcome, 0u);
    EXPECT_EQ(fitting->GetHolderCount(), 2u);  // the refused one never counted

    Probe refused(Arguments({L"open", name.c_str(), std::to_wstring(256 * 1024)}));
    EXPECT_EQ(refused.Finish(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    quit.Set();
    EXPECT_EQ(holder.Finish(), 0u);
}

TEST(SharedMemoryProcessTest, TheLockSerialisesACounterAcrossProcesses) {
    constexpr int Processes = 4;
    constexpr uint32_t Times = 2000;
    const VUnicodeString name = UniqueObjectName(L"cache");
    DWORD outcome = 0;
    auto cache = OpenCache(name, sizeof(uint32_t), outcome);  // holds the block for all of them
    ASSERT_EQ(outcome, 0u);

    NamedEvent go;
    std::vector<std::unique_ptr<Probe>> probes;
    for (int i = 0; i < Processes; ++i)
        probes.push_back(std::make_unique<Probe>(
            Arguments({L"count", name.c_str(), L"4", go.Name(), std::to_wstring(Times)})));
    go.Set();
    for (auto& probe : probes) EXPECT_EQ(probe->Finish(), 0u);

    uint32_t counter = 0;
    ASSERT_TRUE(cache->Lock());
    std::memcpy(&counter, cache->GetData(), sizeof counter);
    cache->Unlock();
    EXPECT_EQ(counter, Processes * Times);
    EXPECT_EQ(cache->GetHolderCount(), 1u);
}

}  // namespace
