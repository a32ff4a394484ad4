// The INI-file store between processes: real helper processes save, load,
// hold byte-range locks on the same values file as this test, and are killed
// in the middle of their saves.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "GenerationValues.h"
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
        } else {
            startError_ = GetLastError();
        }
    }

    bool IsRunning() const { return process_.IsValid(); }
    DWORD StartError() const { return startError_; }

    // Ends the process at once, as the task manager would, and waits until it is gone.
    void Kill() {
        TerminateProcess(process_.Get(), 9);
        WaitForSingleObject(process_.Get(), INFINITE);
    }

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
    DWORD startError_ = ERROR_SUCCESS;
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

// Eight writers that also read: no load sees a mix of generations or a cut
// file, and the file keeps the last save of one of them, whole.
TEST(IniFileProcesses, ProcessesSavingAndLoadingOneKeyNeverSeeAHalfWrittenFileAndTheLastSaveWins) {
    TempFolder folder;
    const VUnicodeString keyFolder = folder / L"Shared";
    constexpr unsigned processCount = 8;
    constexpr unsigned churnValueCount = 150;
    std::vector<std::unique_ptr<HelperProcess>> helpers;
    for (unsigned id = 1; id <= processCount; ++id) {
        const VUnicodeString resultFile = folder / (L"result" + std::to_wstring(id)).c_str();
        VUnicodeString arguments;
        arguments.FormatPositional(L"churn %1 2500 %2!u! %3", Quoted(keyFolder).c_str(), id,
                                   Quoted(resultFile).c_str());
        helpers.push_back(std::make_unique<HelperProcess>(arguments));
        ASSERT_TRUE(helpers.back()->IsRunning());
    }
    std::map<unsigned, unsigned> lastSaves;
    for (unsigned id = 1; id <= processCount; ++id) {
        SCOPED_TRACE("helper " + std::to_string(id));
        EXPECT_EQ(0, helpers[id - 1]->Wait(GenerousWait)) << "1: a load saw a mixed or cut generation";
        const std::string result = ReadWholeFile(folder / (L"result" + std::to_wstring(id)).c_str());
        unsigned saves = 0, loads = 0, last = 0;
        ASSERT_EQ(3, std::sscanf(result.c_str(), "%u %u %u", &saves, &loads, &last)) << result;
        std::printf("helper %u: %u saves, %u loads\n", id, saves, loads);
        EXPECT_GT(saves, 2u);
        EXPECT_GT(loads, 4u);
        lastSaves[id] = last;
    }
    VIniFileKey key(keyFolder, VUnicodeString(), true, nullptr);
    Generation kept, unused;
    ASSERT_TRUE(ReadGeneration(key, churnValueCount, false, kept, unused));
    EXPECT_EQ(lastSaves[kept.writer], kept.number) << "the file holds an earlier save of writer " << kept.writer;
}

// The bytes of a key's two files after a save of one generation.
struct SavedFiles {
    std::string main;
    std::string personal;
};

// Kills a process at random moments while it saves a key of main and private
// values one generation after the other. Each file must then hold exactly
// what one save of a generation writes, never an earlier generation than
// before, and the key must load every value. The private file is replaced
// first, so it may be one generation ahead of the main file.
TEST(IniFileProcesses, AProcessKilledWhileSavingLeavesEachFileWithItsOldOrItsNewContent) {
    unsigned seed = static_cast<unsigned>(std::chrono::steady_clock::now().time_since_epoch().count());
    if (const char* fixed = std::getenv("TRAYWELL_KILL_SEED")) seed = static_cast<unsigned>(std::strtoul(fixed, nullptr, 10));
    unsigned kills = 1000;
    if (const char* count = std::getenv("TRAYWELL_KILL_COUNT")) kills = static_cast<unsigned>(std::strtoul(count, nullptr, 10));
    std::printf("kill seed %u (TRAYWELL_KILL_SEED), %u kills (TRAYWELL_KILL_COUNT)\n", seed, kills);
    SCOPED_TRACE("kill seed " + std::to_string(seed));

    TempFolder folder;
    const VUnicodeString keyFolder = folder / L"Config\\Key";
    const VUnicodeString privateFolder = folder / L"Personal\\Key";
    const auto save = [&](const VUnicodeString& configuration, const VUnicodeString& personal, unsigned number) {
        VIniFileKey key(configuration, personal, false, nullptr);
        StoreGeneration(key, {1, number}, KillValueCount, true);
        EXPECT_TRUE(key.Flush());
        return SavedFiles{ReadWholeFile(VIniFileKey::ValuesFilePath(configuration)),
                          ReadWholeFile(VIniFileKey::ValuesFilePath(personal))};
    };
    std::map<unsigned, SavedFiles> saved;  // generation -> what its save writes
    const auto savedFiles = [&](unsigned number) -> const SavedFiles& {
        if (!saved.count(number)) saved[number] = save(folder / L"Scratch\\Key", folder / L"Scratch\\Personal", number);
        return saved[number];
    };
    save(keyFolder, privateFolder, 0);
    const auto leftovers = [&] {
        unsigned count = 0;
        for (const wchar_t* pattern : {L"Config\\*.tmp", L"Personal\\*.tmp"}) {
            WIN32_FIND_DATAW found;
            const FindHandle search(FindFirstFileW((folder / pattern).c_str(), &found));
            if (search) do ++count; while (FindNextFileW(search.Get(), &found));
        }
        return count;
    };

    std::mt19937 random(seed);
    LARGE_INTEGER frequency;
    QueryPerformanceFrequency(&frequency);
    unsigned previous = 0, midSave = 0, betweenFiles = 0, temporaries = 0;
    for (unsigned kill = 0; kill < kills && !HasFailure(); ++kill) {
        const NamedEvent ready;
        VUnicodeString arguments;
        arguments.FormatPositional(L"save-generations %1 %2 %3", Quoted(keyFolder).c_str(),
                                   Quoted(privateFolder).c_str(), ready.Name().c_str());
        HelperProcess helper(arguments);
        ASSERT_TRUE(helper.IsRunning()) << "error " << helper.StartError() << " at kill " << kill;
        ASSERT_TRUE(ready.WaitSignalled(GenerousWait)) << "exit code " << helper.Wait(0);
        // Up to about two saves' time: the kill falls anywhere in the first
        // save, in the values set for the next, or in that one.
        const auto delay = static_cast<LONGLONG>(random() % 5000) * frequency.QuadPart / 1000000;
        LARGE_INTEGER start, now;
        QueryPerformanceCounter(&start);
        do QueryPerformanceCounter(&now); while (now.QuadPart - start.QuadPart < delay);
        helper.Kill();

        // A temporary file more than before: the kill fell before its rename.
        const unsigned left = leftovers();
        midSave += left > temporaries;
        temporaries = left;
        const SavedFiles files{ReadWholeFile(VIniFileKey::ValuesFilePath(keyFolder)),
                               ReadWholeFile(VIniFileKey::ValuesFilePath(privateFolder))};
        VIniFileKey key(keyFolder, privateFolder, true, nullptr);
        Generation main, personal;
        ASSERT_TRUE(ReadGeneration(key, KillValueCount, true, main, personal)) << "after kill " << kill;
        EXPECT_EQ(savedFiles(main.number).main, files.main) << "after kill " << kill;
        EXPECT_EQ(savedFiles(personal.number).personal, files.personal) << "after kill " << kill;
        EXPECT_GE(main.number, previous) << "after kill " << kill;
        EXPECT_TRUE(personal.number == main.number || personal.number == main.number + 1) << "after kill " << kill;
        betweenFiles += personal.number == main.number + 1;
        previous = main.number;
    }
    std::printf("%u kills: %u generations saved; %u kills left a temporary file behind, after %u the private file "
                "was a generation ahead\n",
                kills, previous, midSave, betweenFiles);
    save(keyFolder, privateFolder, previous + 2);
    EXPECT_EQ(0u, leftovers()) << "a save removes what killed saves left";
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
