// Loading and saving the global options against both back ends of the store,
// through a global options key opened afresh for every step.
#include <gtest/gtest.h>

#include "ConfigMessages.h"
#include "GlobalConfig.h"
#include "StoreBehaviour.h"
#include "TempFolder.h"
#include "VIniFileStoreFactory.h"

namespace {

// Whether every option of actual holds what the same option of expected
// holds, as its kind compares: expected's value copied over actual's current
// one must not differ from actual's saved one.
void ExpectSameValues(const GlobalConfig& expected, const GlobalConfig& actual) {
    GlobalConfig probe = actual;
    for (size_t i = 0; i < GlobalConfig::OptionCount; ++i) {
        probe.GetOption(i).CopyFrom(expected.GetOption(i));
        EXPECT_FALSE(probe.GetOption(i).IsChanged())
            << VString(probe.GetOption(i).GetName()).c_str();
    }
}

template <class Value>
Value Parsed(const wchar_t* text) {
    Value value;
    EXPECT_TRUE(Value::Parse(text, value));
    return value;
}

class GlobalConfigStore : public StoreBehaviour {
protected:
    // The global options key of a store opened afresh (created unless
    // readOnly); the key opened before goes first, so what it wrote is stored.
    VProfileKey& Key(bool readOnly = false) {
        key_.reset();
        store_ = Open(readOnly);
        key_ =
            std::make_unique<VProfileKey>(store_->GetRootKey(), GlobalConfig::KeyName, !readOnly);
        return *key_;
    }

    GlobalConfig Loaded(GlobalProduct product = GlobalProduct::Terminal) {
        GlobalConfig config(product);
        VReportMessageParams report;
        EXPECT_TRUE(config.Load(Key(true), report)) << VString(report.GetTextAsString()).c_str();
        return config;
    }

    void Save(GlobalConfig& config) {
        VReportMessageParams report;
        EXPECT_TRUE(config.Save(Key(), false, report)) << VString(report.GetTextAsString()).c_str();
    }

    uint32_t StoredNumber(const wchar_t* name) {
        uint32_t number = 0xDEAD;
        Key(true).GetDword(name, number);
        return number;
    }

    void TearDown() override {
        key_.reset();
        store_.reset();
        StoreBehaviour::TearDown();
    }

    std::unique_ptr<VProfileStore> store_;
    std::unique_ptr<VProfileKey> key_;
};

TEST_P(GlobalConfigStore, AnEmptyProfileGivesTheDefaultsAndTheNextSaveWritesTheSwitches) {
    for (const bool keyExists : {false, true}) {
        if (keyExists) Key();
        GlobalConfig loaded = Loaded();
        ExpectSameValues(GlobalConfig(), loaded);
        for (size_t i = 0; i < GlobalConfig::OptionCount; ++i) {
            const VProfileData& option = loaded.GetOption(i);
            EXPECT_EQ(option.IsModified(), dynamic_cast<const GlobalSwitch*>(&option) ||
                                               dynamic_cast<const GlobalProtectedText*>(&option))
                << VString(option.GetName()).c_str();
        }
        Save(loaded);
        EXPECT_EQ(StoredNumber(L"Keep Shared Memory Agent Open"), 1u);
        EXPECT_EQ(StoredNumber(L"Timeout"), 0xDEADu) << "an untouched number is not written";
        key_.reset();
        ASSERT_TRUE(Open()->GetRootKey().DeleteKey(GlobalConfig::KeyName));
    }
}

TEST_P(GlobalConfigStore, SavedOptionsOfEveryKindLoadEqualInAFreshObject) {
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
    config.TermwrightTabStateV2.Set(Parsed<VTabStateList>(L"1,1,0;0,-1,-1;"));
    config.TraywellAgentKeysListViewState.Set(Parsed<VListViewState>(L"1,0;200,80,120;0,2,1"));
    config.GlobalOptionsTreeState.Set(Parsed<VTreeState>(L"0110"));
    config.FwxCustomToolbarData.Set({1, 2, 3});
    Save(config);
    ExpectSameValues(config, Loaded());
}

TEST_P(GlobalConfigStore, DamagedValuesTakeTheirDefaultsAndTheOthersAreKept) {
    VProfileKey& key = Key();
    key.SetDword(L"Minimize To Tray", 2);  // any number but 0 is on
    key.SetDword(L"Keep Shared Memory Agent Open", 0);
    key.SetDword(L"Timeout", 42);
    key.SetString(L"Show Toolbar", L"yes");  // texts where numbers belong
    key.SetString(L"Session Filter Delay", L"300");
    key.SetDword(L"Log File", 5);                          // and the reverse
    key.SetString(L"Global Options Tree State", L"1021");  // not of its form
    const BYTE cut[] = {44, 0, 0};
    key.SetBinary(L"Window Placement", cut, sizeof cut);
    GlobalConfig expected;
    expected.MinimizeToTray.Set(true);
    expected.KeepSharedMemoryAgentOpen.Set(false);
    expected.Timeout.Set(42);
    const GlobalConfig loaded = Loaded();
    ExpectSameValues(expected, loaded);
    EXPECT_TRUE(loaded.ShowToolbar.IsModified()) << "a switch that could not be read is written";
}

TEST_P(GlobalConfigStore, EachProductReadsAndWritesItsOwnNamesAndMovesRenamedOptions) {
    const struct {
        GlobalProduct product;
        bool toolbar;
        const wchar_t* otherName;
        uint32_t otherStored;
    } cases[] = {{GlobalProduct::Terminal, true, L"Show Toolbar FWX", 0},
                 {GlobalProduct::Transfer, false, L"Show Toolbar", 1}};
    for (const auto& c : cases) {
        VProfileKey& key = Key();
        key.SetDword(L"Show Toolbar", 1);
        key.SetDword(L"Show Toolbar FWX", 0);
        key.SetString(L"Termwright Tab State", L"1,-1,200");  // the older name and form
        key.DeleteValue(L"Termwright Tab State V2");
        GlobalConfig config = Loaded(c.product);
        EXPECT_EQ(config.ShowToolbar.Get(), c.toolbar);
        config.ShowToolbar.Set(!c.toolbar);
        Save(config);
        EXPECT_EQ(Loaded(c.product).ShowToolbar.Get(), !c.toolbar);
        EXPECT_EQ(StoredNumber(c.otherName), c.otherStored) << "the other product's is left alone";
        VUnicodeString present, former;
        Key(true).GetString(L"Termwright Tab State V2", present);
        key_->GetString(L"Termwright Tab State", former);
        EXPECT_EQ(present, L"1,-1,200;");
        EXPECT_EQ(former, L"") << "blanked, as older versions expect";
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
    ASSERT_TRUE(config.SaveToStore(report)) << VString(report.GetTextAsString()).c_str();
    const std::string written = ReadWholeFile(file);
    EXPECT_NE(written.find("D:\"Timeout\"=00000063"), std::string::npos);
    EXPECT_NE(written.find("D:\"Retry Attempts\"=00000014"), std::string::npos)
        << "untouched, and written all the same";
}

}  // namespace
