// The global options: the table against GlobalOptionNames.txt, then both back ends.
#include <gtest/gtest.h>

#include <map>
#include <set>
#include <sstream>

#include "ConfigMessages.h"
#include "GlobalConfig.h"
#include "RegistrySandbox.h"
#include "SessionStore.h"
#include "TempFolder.h"
#include "VIniFileStoreFactory.h"

namespace {

constexpr const wchar_t* Global = GlobalConfig::KeyName;

std::wstring Upper(VUnicodeString name) {
    name.MakeUpper();
    return name.c_str();
}

// Every name read (present or former) belongs to one option and is listed.
TEST(GlobalOptionTable, ReadsEveryListedNameOnceAndTheProductsPairsAsOneOption) {
    std::map<std::wstring, std::set<size_t>> readBy;
    for (const GlobalProduct product : {GlobalProduct::Terminal, GlobalProduct::Transfer}) {
        GlobalConfig config(product);
        for (size_t i = 0; i < GlobalConfig::OptionCount; ++i) {
            const VUnicodeString name = GlobalConfig::GetValueName(i, product);
            readBy[Upper(name)].insert(i);
            const VUnicodeString former = GlobalConfig::GetFormerName(i, product);
            if (!former.IsEmpty()) readBy[Upper(former)].insert(i);
            EXPECT_EQ(config.FindOption(name), &config.GetOption(i));
        }
    }
    std::istringstream lines(ReadWholeFile(VUnicodeString(GLOBAL_OPTION_NAMES_FILE)));
    std::set<std::wstring> listed;
    for (std::string line; std::getline(lines, line);) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        if (!line.empty() && line[0] != '#') listed.emplace(line.begin(), line.end());
    }
    ASSERT_EQ(listed.size(), 285u) << "the list of names is incomplete";
    std::set<std::wstring> perProduct;
    for (const VUnicodeString& name : GlobalConfig::GetProductDependentNames())
        perProduct.insert(name.c_str());
    for (const std::wstring& name : listed) {
        EXPECT_EQ(readBy[Upper(name.c_str())].size(), 1u) << name;
        readBy.erase(Upper(name.c_str()));
        const std::wstring plain = name.substr(0, name.size() - 4);
        EXPECT_TRUE(!name.ends_with(L" FWX") || !listed.count(plain) || perProduct.count(plain))
            << name;
    }
    ASSERT_EQ(readBy.size(), 2u) << "besides the listed names, the two start-up options";
    for (const auto& [name, options] : readBy)
        EXPECT_TRUE(GlobalConfig::IsStartUpOption(*options.begin())) << name;
}

TEST(GlobalOptionTable, ReadSwitchTakesAPolicyForTheStartUpOptionsOnly) {
    GlobalConfig config;
    bool value = true;
    EXPECT_FALSE(config.ReadSwitch(L"Log File", value) ||
                 config.ReadSwitch(L"No Such Option", value));
    RegistrySandbox sandbox;
    PredefinedKeyRedirect machine(HKEY_LOCAL_MACHINE, sandbox, L"machine");
    const DWORD on = 1;
    for (const wchar_t* name : {L"Enable FIPS Mode", L"Minimize To Tray"})
        ASSERT_EQ(RegSetKeyValueW(HKEY_LOCAL_MACHINE, L"Software\\Policies\\Quillon", name,
                                  REG_DWORD, &on, sizeof on),
                  ERROR_SUCCESS);
    ASSERT_TRUE(config.ReadSwitch(L"enable fips mode", value));
    EXPECT_TRUE(value) << "an administrator's policy wins";
    ASSERT_TRUE(config.ReadSwitch(L"Minimize To Tray", value));
    EXPECT_FALSE(value) << "the user's own, its default";
}

void ExpectSameValues(const GlobalConfig& expected, const GlobalConfig& actual) {
    GlobalConfig probe = actual;
    for (size_t i = 0; i < GlobalConfig::OptionCount; ++i) {
        probe.GetOption(i).CopyFrom(expected.GetOption(i));
        EXPECT_FALSE(probe.GetOption(i).IsChanged()) << probe.GetOption(i).GetName().c_str();
    }
}

class GlobalConfigStore : public SessionStore {
protected:
    GlobalConfig Loaded(GlobalProduct product = GlobalProduct::Terminal) {
        GlobalConfig config(product);
        VReportMessageParams report;
        EXPECT_TRUE(config.Load(Key(Global, true), report)) << report.GetText();
        return config;
    }
    void Save(GlobalConfig& config) {
        VReportMessageParams report;
        EXPECT_TRUE(config.Save(Key(Global), false, report)) << report.GetText();
    }
};

TEST_P(GlobalConfigStore, AnEmptyProfileGivesTheDefaultsAndTheNextSaveWritesTheSwitches) {
    for (const bool keyExists : {false, true}) {
        if (keyExists) Key(Global);
        GlobalConfig loaded = Loaded();
        ExpectSameValues(GlobalConfig(), loaded);
        for (size_t i = 0; i < GlobalConfig::OptionCount; ++i) {
            const VProfileData& option = loaded.GetOption(i);
            EXPECT_EQ(option.IsModified(), dynamic_cast<const GlobalSwitch*>(&option) ||
                                               dynamic_cast<const GlobalProtectedText*>(&option))
                << option.GetName().c_str();
        }
        Save(loaded);
        EXPECT_EQ(StoredNumber(Global, L"Keep Shared Memory Agent Open"), 1u);
        EXPECT_EQ(StoredNumber(Global, L"Timeout"), 0xDEADu)
            << "an untouched number is not written";
        key_.reset();
        ASSERT_TRUE(Open()->GetRootKey().DeleteKey(Global));
    }
}

TEST_P(GlobalConfigStore, SavedOptionsLoadEqualInAFreshObject) {
    GlobalConfig config = Loaded();
    VReportMessageParams report;
    config.MinimizeToTray.Set(true);
    config.SessionFilterDelay.Set(1234);
    config.XPosition.Set(-20);
    config.LogFile.Set(L"D:\\Logs\\Gr\u00fc\u00dfe.txt");
    config.FilewrightBookmarks.Set({L"/var/log", L"C:\\Temp"});
    ASSERT_TRUE(config.ConfigPassphrase.SetPlainText(L"secret", report));
    config.FwxUpdatePromptDate.Set(FILETIME{0x863B2000, 0x01DAD1F7});  // whole milliseconds
    VWindowPlacement placement;
    placement.rcNormalPosition = {10, 20, 300, 400};
    config.WindowPlacement.Set(placement);
    config.FwxCustomToolbarData.Set({1, 2, 3});
    Save(config);
    ExpectSameValues(config, Loaded());
}

TEST_P(GlobalConfigStore, DamagedValuesTakeTheirDefaultsAndTheOthersAreKept) {
    VProfileKey& key = Key(Global);
    key.SetDword(L"Minimize To Tray", 2);  // any number but 0 is on
    key.SetDword(L"Keep Shared Memory Agent Open", 0);
    key.SetDword(L"Timeout", 42);
    key.SetString(L"Show Toolbar", L"yes");  // texts where numbers belong
    key.SetString(L"Session Filter Delay", L"300");
    key.SetDword(L"Log File", 5);                          // and the reverse
    key.SetString(L"Global Options Tree State", L"1021");  // not of its form
    key.SetBinary(L"Window Placement", reinterpret_cast<const BYTE*>("\54\0\0"), 3);
    GlobalConfig expected;
    expected.MinimizeToTray.Set(true);
    expected.KeepSharedMemoryAgentOpen.Set(false);
    expected.Timeout.Set(42);
    const GlobalConfig loaded = Loaded();
    ExpectSameValues(expected, loaded);
    EXPECT_TRUE(loaded.ShowToolbar.IsModified()) << "a switch that could not be read is written";
}

TEST_P(GlobalConfigStore, EachProductReadsAndWritesItsOwnNamesAndMovesRenamedOptions) {
    for (const bool terminal : {true, false}) {
        const GlobalProduct product = terminal ? GlobalProduct::Terminal : GlobalProduct::Transfer;
        VProfileKey& key = Key(Global);
        key.SetDword(L"Show Toolbar", 1);
        key.SetDword(L"Show Toolbar FWX", 0);
        key.SetString(L"Termwright Tab State", L"1,-1,200");  // the older name and form
        key.DeleteValue(L"Termwright Tab State V2");
        GlobalConfig config = Loaded(product);
        EXPECT_EQ(config.ShowToolbar.Get(), terminal);
        config.ShowToolbar.Set(!terminal);
        Save(config);
        EXPECT_EQ(Loaded(product).ShowToolbar.Get(), !terminal);
        EXPECT_EQ(StoredNumber(Global, terminal ? L"Show Toolbar FWX" : L"Show Toolbar"), !terminal)
            << "the other product's is left alone";
        EXPECT_EQ(StoredText(Global, L"Termwright Tab State V2"), L"1,-1,200;");
        EXPECT_EQ(StoredText(Global, L"Termwright Tab State"), L"")
            << "blanked, as older versions expect";
    }
}

INSTANTIATE_TEST_SUITE_P(BackEnds, GlobalConfigStore,
                         ::testing::Values(RegistryBackEnd(), IniFileBackEnd()), BackEndName);

TEST(GlobalConfigFile, AFailedSaveIsReportedAndTheNextOneWritesEverything) {
    TempFolder folder;
    VIniFileStoreFactory factory(folder.Path(), VUnicodeString());
    GlobalConfig config;
    VReportMessageParams report;
    ASSERT_TRUE(config.LoadFromStore(&factory, report)) << "a missing key is no error";
    const VUnicodeString file = folder / L"Global.ini";
    ASSERT_TRUE(WriteWholeFile(file, "\xEF\xBB\xBF"));
    SetFileAttributesW(file.c_str(), FILE_ATTRIBUTE_READONLY);
    config.Timeout.Set(99);
    EXPECT_FALSE(config.SaveToStore(report));
    EXPECT_EQ(report.GetMessageCode(), static_cast<DWORD>(CONFIG_GLOBAL_OPTIONS_NOT_SAVED));
    EXPECT_EQ(ReadWholeFile(file), "\xEF\xBB\xBF") << "the file is left alone";
    SetFileAttributesW(file.c_str(), FILE_ATTRIBUTE_NORMAL);
    ASSERT_TRUE(config.SaveToStore(report)) << report.GetText();
    const std::string written = ReadWholeFile(file);
    EXPECT_NE(written.find("D:\"Timeout\"=00000063"), std::string::npos);
    EXPECT_NE(written.find("D:\"Retry Attempts\"=00000014"), std::string::npos)
        << "untouched, and written all the same";
}

}  // namespace
