// The INI-file store between processes: profile_probe processes save, load and
// lock the values file this test uses, and are killed in the middle of saves.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "ChildProcess.h"
#include "GenerationValues.h"
#include "ProgramFolder.h"
#include "TempFolder.h"
#include "TestSeed.h"
#include "VIniFileKey.h"

namespace {

constexpr DWORD GenerousWait = 60000;  // for a process that should end soon

std::unique_ptr<ChildProcess> Probe(const VUnicodeString& arguments) {
    auto probe = std::make_unique<ChildProcess>(GetPathBesideProgram(L"profile_probe.exe"), arguments);
    EXPECT_TRUE(probe->IsRunning()) << "error " << probe->StartError();
    return probe;
}

VUnicodeString Quoted(const VUnicodeString& text) { return L"\"" + text + L"\""; }

TEST(IniFileProcesses, ProcessesSavingAndLoadingOneKeyNeverSeeAHalfWrittenFileAndTheLastSaveWins) {
    TempFolder folder;
    const VUnicodeString keyFolder = folder / L"Shared";
    std::vector<std::unique_ptr<ChildProcess>> helpers;
    for (unsigned id = 1; id <= 8; ++id)
        helpers.push_back(Probe(L"churn " + Quoted(keyFolder) + L" 2500 " + std::to_wstring(id).c_str() + L" " +
                                Quoted(folder / std::to_wstring(id).c_str())));
    std::map<unsigned, unsigned> lastSaves;
    for (unsigned id = 1; id <= 8; ++id) {
        EXPECT_EQ(0, helpers[id - 1]->Wait(GenerousWait)) << "a load of helper " << id << " saw a mixed or cut file";
        unsigned saves = 0, loads = 0;
        const std::string result = ReadWholeFile(folder / std::to_wstring(id).c_str());
        ASSERT_EQ(3, std::sscanf(result.c_str(), "%u %u %u", &saves, &loads, &lastSaves[id])) << result;
        EXPECT_GT(saves, 2u);
        EXPECT_GT(loads, 4u);
    }
    VIniFileKey key(keyFolder, VUnicodeString(), true, nullptr);
    Generation kept, unused;
    ASSERT_TRUE(ReadGeneration(key, 150, false, kept, unused));
    EXPECT_EQ(lastSaves[kept.writer], kept.number) << "the file holds an earlier save of writer " << kept.writer;
}

// The private file is replaced first, so it may be one generation ahead.
TEST(IniFileProcesses, AProcessKilledWhileSavingLeavesEachFileWithItsOldOrItsNewContent) {
    std::mt19937 random(static_cast<unsigned>(TestSeed("kill times")));
    const char* count = std::getenv("TRAYWELL_KILL_COUNT");
    const unsigned kills = count ? std::strtoul(count, nullptr, 10) : 1000;
    TempFolder folder;
    const VUnicodeString keyFolder = folder / L"Config\\Key", privateFolder = folder / L"Personal\\Key";
    const auto files = [](const VUnicodeString& main, const VUnicodeString& personal) {
        return std::pair{ReadWholeFile(VIniFileKey::ValuesFilePath(main)), ReadWholeFile(VIniFileKey::ValuesFilePath(personal))};
    };
    const auto save = [&](const VUnicodeString& main, const VUnicodeString& personal, unsigned number) {
        VIniFileKey key(main, personal, false, nullptr);
        StoreGeneration(key, {1, number}, KillValueCount, true);
        EXPECT_TRUE(key.Flush());
    };
    std::map<unsigned, std::pair<std::string, std::string>> saved;  // generation -> the files its save writes
    const auto savedFiles = [&](unsigned number) {
        if (!saved.count(number)) {
            save(folder / L"Scratch\\Key", folder / L"Scratch\\Personal", number);
            saved[number] = files(folder / L"Scratch\\Key", folder / L"Scratch\\Personal");
        }
        return saved[number];
    };
    const auto leftovers = [&] {
        unsigned found = 0;
        for (const wchar_t* pattern : {L"Config\\*.tmp", L"Personal\\*.tmp"}) {
            WIN32_FIND_DATAW entry;
            const FindHandle search(FindFirstFileW((folder / pattern).c_str(), &entry));
            if (search) do ++found; while (FindNextFileW(search.Get(), &entry));
        }
        return found;
    };
    save(keyFolder, privateFolder, 0);
    LARGE_INTEGER frequency, start, now;
    QueryPerformanceFrequency(&frequency);
    unsigned previous = 0, midSave = 0, betweenFiles = 0, temporaries = 0;
    for (unsigned kill = 0; kill < kills && !HasFailure(); ++kill) {
        SCOPED_TRACE("kill " + std::to_string(kill));
        const NamedEvent ready;
        const auto helper = Probe(L"save-generations " + Quoted(keyFolder) + L" " + Quoted(privateFolder) + L" " + ready.Name());
        ASSERT_TRUE(ready.WaitSet(GenerousWait, helper.get())) << "exit code " << helper->Wait(0);
        const LONGLONG delay = static_cast<LONGLONG>(random() % 5000) * frequency.QuadPart / 1000000;
        QueryPerformanceCounter(&start);
        do QueryPerformanceCounter(&now); while (now.QuadPart - start.QuadPart < delay);
        helper->Kill();

        const unsigned left = leftovers();  // one more than before: the kill fell before its rename
        midSave += left > temporaries;
        temporaries = left;
        const auto [mainFile, privateFile] = files(keyFolder, privateFolder);
        VIniFileKey key(keyFolder, privateFolder, true, nullptr);
        Generation main, personal;
        ASSERT_TRUE(ReadGeneration(key, KillValueCount, true, main, personal));
        EXPECT_EQ(savedFiles(main.number).first, mainFile);
        EXPECT_EQ(savedFiles(personal.number).second, privateFile);
        EXPECT_GE(main.number, previous);
        EXPECT_TRUE(personal.number == main.number || personal.number == main.number + 1);
        betweenFiles += personal.number == main.number + 1;
        previous = main.number;
    }
    std::printf("%u kills (TRAYWELL_KILL_COUNT): %u generations saved; %u kills left a temporary file behind, "
                "after %u the private file was a generation ahead\n", kills, previous, midSave, betweenFiles);
    save(keyFolder, privateFolder, previous + 2);
    EXPECT_EQ(0u, leftovers()) << "a save removes what killed saves left";
}

TEST(IniFileProcesses, LoadsAndSavesWaitForTheLocksOfOtherProcesses) {
    TempFolder folder;
    const VUnicodeString keyFolder = folder / L"Key", valuesFile = VIniFileKey::ValuesFilePath(keyFolder);
    for (const bool exclusive : {true, false}) {
        SCOPED_TRACE(exclusive ? "exclusive" : "shared");
        {
            VIniFileKey key(keyFolder, VUnicodeString(), false, nullptr);
            ASSERT_TRUE(key.SetDword(VUnicodeString(L"n"), 1));
        }
        const NamedEvent locked;
        const auto holder = Probe(L"hold " + Quoted(valuesFile) + (exclusive ? L" exclusive" : L" shared") + L" 1000 " +
                                  locked.Name() + L" \"D:\\\"n\\\"=00000002\"");
        ASSERT_TRUE(locked.WaitSet(GenerousWait, holder.get()));
        uint32_t value = 0;
        if (exclusive) {
            VIniFileKey key(keyFolder, VUnicodeString(), true, nullptr);
            EXPECT_TRUE(key.GetDword(VUnicodeString(L"n"), value));
            EXPECT_EQ(2u, value);
        } else {
            VIniFileKey key(keyFolder, VUnicodeString(), false, nullptr);
            ASSERT_TRUE(key.SetDword(VUnicodeString(L"n"), 3));
            EXPECT_TRUE(key.Flush());
        }
        EXPECT_EQ(0, holder->Wait(GenerousWait)) << "the file changed under the reader's shared lock";
        if (!exclusive) {
            EXPECT_EQ("\xEF\xBB\xBF" "D:\"n\"=00000003\r\n", ReadWholeFile(valuesFile));
        }
    }
}

}  // namespace
