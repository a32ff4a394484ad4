// The INI-file store between processes: real helper processes save, load and
// hold byte-range locks on the same values file as this test.
#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <vector>

#include "TempFolder.h"
#include "VIniFileKey.h"
#include "Win32Handle.h"

namespace {

// ini_store_helper.exe, built beside the tests.
class HelperProcess {
public:
    explicit HelperProcess(const VUnicodeString& arguments) {
        wchar_t path[MAX_PATH];
        const DWORD length = GetModuleFileNameW(nullptr, path, MAX_PATH);
        VUnicodeString exe(path, length);
        exe = exe.Left(exe.GetLength() - std::wcslen(std::wcsrchr(path, L'\\') + 1)) + L"ini_store_helper.exe";
        VUnicodeString commandLine = L"\"" + exe + L"\" " + arguments;
        STARTUPINFOW startup{};
        startup.cb = sizeof startup;
        PROCESS_INFORMATION started{};
        if (CreateProcessW(exe.c_str(), commandLine.GetBuffer(commandLine.GetLength()), nullptr, nullptr, FALSE, 0,
                           nullptr, nullptr, &startup, &started)) {
            process_.Reset(started.hProcess);
            CloseHandle(started.hThread);
        }
    }

    bool IsRunning() const { return process_.IsValid(); }

    // The exit code; -1 when the process could not be started or did not end in time.
    long Wait(DWORD milliseconds) {
        DWORD code = 0;
        if (!process_ || WaitForSingleObject(process_.Get(), milliseconds) != WAIT_OBJECT_0 ||
            !GetExitCodeProcess(process_.Get(), &code))
            return -1;
        return static_cast<long>(code);
    }

private:
    KernelHandle process_;
};

VUnicodeString Quoted(const VUnicodeString& text) { return L"\"" + text + L"\""; }

class NamedEvent {
public:
    NamedEvent() {
        static std::atomic<unsigned> counter{0};
        name_.FormatPositional(L"Local\\traywell-ini-test-%1!u!-%2!u!", GetCurrentProcessId(), counter++);
        event_.Reset(CreateEventW(nullptr, TRUE, FALSE, name_.c_str()));
    }
    const VUnicodeString& Name() const { return name_; }
    bool WaitSignalled(DWORD milliseconds) const {
        return WaitForSingleObject(event_.Get(), milliseconds) == WAIT_OBJECT_0;
    }

private:
    VUnicodeString name_;
    KernelHandle event_;
};

constexpr DWORD GenerousWait = 60000;  // for a process that should end soon

TEST(IniFileProcesses, ProcessesSavingAndLoadingOneKeyNeverSeeAHalfWrittenFile) {
    TempFolder folder;
    const VUnicodeString keyFolder = folder / L"Shared";
    constexpr unsigned processCount = 3;
    std::vector<std::unique_ptr<HelperProcess>> helpers;
    for (unsigned id = 1; id <= processCount; ++id) {
        const VUnicodeString resultFile = folder / (L"result" + std::to_wstring(id)).c_str();
        VUnicodeString arguments;
        arguments.FormatPositional(L"churn %1 2500 %2!u! %3", Quoted(keyFolder).c_str(), id,
                                   Quoted(resultFile).c_str());
        helpers.push_back(std::make_unique<HelperProcess>(arguments));
        ASSERT_TRUE(helpers.back()->IsRunning());
    }
    for (unsigned id = 1; id <= processCount; ++id) {
        SCOPED_TRACE("helper " + std::to_string(id));
        EXPECT_EQ(0, helpers[id - 1]->Wait(GenerousWait)) << "1: a load saw a mixed or cut generation";
        const std::string result = ReadWholeFile(folder / (L"result" + std::to_wstring(id)).c_str());
        unsigned saves = 0, loads = 0;
        ASSERT_EQ(2, std::sscanf(result.c_str(), "%u %u", &saves, &loads)) << result;
        std::printf("helper %u: %u saves, %u loads\n", id, saves, loads);
        EXPECT_GT(saves, 2u);
        EXPECT_GT(loads, 4u);
    }
}

// A values file holding n = 1, and a helper process that locks it.
class IniFileLocks : public ::testing::Test {
protected:
    void SetUp() override {
        VIniFileKey key(keyFolder_, VUnicodeString(), false, nullptr);
        ASSERT_TRUE(key.SetDword(VUnicodeString(L"n"), 1));
        ASSERT_TRUE(key.Flush());
    }

    // Starts "hold" with mode and extra arguments; returns once the helper
    // holds its lock.
    void StartHolder(const wchar_t* mode, const wchar_t* extra) {
        const NamedEvent locked;
        VUnicodeString arguments;
        arguments.FormatPositional(L"hold %1 %2 1000 %3 %4", Quoted(ValuesFile()).c_str(), mode,
                                   locked.Name().c_str(), extra);
        holder_ = std::make_unique<HelperProcess>(arguments);
        ASSERT_TRUE(holder_->IsRunning());
        ASSERT_TRUE(locked.WaitSignalled(GenerousWait));
    }

    VUnicodeString ValuesFile() const { return VIniFileKey::ValuesFilePath(keyFolder_); }

    TempFolder folder_;
    const VUnicodeString keyFolder_ = folder_ / L"Key";
    std::unique_ptr<HelperProcess> holder_;
};

TEST_F(IniFileLocks, ALoadWaitsWhileAnotherProcessHoldsTheExclusiveLock) {
    ASSERT_NO_FATAL_FAILURE(StartHolder(L"exclusive", L"\"D:\\\"n\\\"=00000002\""));
    // Read while the holder has the file cut and rewrites it: the load must
    // wait for the holder to finish, and then see what it wrote.
    VIniFileKey key(keyFolder_, VUnicodeString(), true, nullptr);
    const ULONGLONG start = GetTickCount64();
    uint32_t value = 0;
    EXPECT_TRUE(key.GetDword(VUnicodeString(L"n"), value));
    EXPECT_EQ(2u, value);
    std::printf("the load waited %llu ms\n", GetTickCount64() - start);
    EXPECT_EQ(0, holder_->Wait(GenerousWait));
}

TEST_F(IniFileLocks, ASaveWaitsWhileAnotherProcessReads) {
    ASSERT_NO_FATAL_FAILURE(StartHolder(L"shared", L""));
    {
        VIniFileKey key(keyFolder_, VUnicodeString(), false, nullptr);
        ASSERT_TRUE(key.SetDword(VUnicodeString(L"n"), 3));
        EXPECT_TRUE(key.Flush());
    }
    EXPECT_EQ(0, holder_->Wait(GenerousWait)) << "1: the file changed under the reader's shared lock";
    EXPECT_EQ("\xEF\xBB\xBF" "D:\"n\"=00000003\r\n", ReadWholeFile(ValuesFile()));
}

}  // namespace
