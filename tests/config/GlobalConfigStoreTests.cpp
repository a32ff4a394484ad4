// Loading and saving the global options against both back ends of the store,
// through a global options key opened afresh for every step.
#include <gtest/gtest.h>

#include "ConfigMessages.h"
#include "GlobalConfig.h"
#include "StateText.h"
#include "StoreBehaviour.h"
#include "TempFolder.h"
#include "VIniFileKey.h"
#include "VIniFileStoreFactory.h"

namespace {

// Whether every option of actual holds what the same option of expected holds,
// as its kind compares values: expected's value is copied over actual's
// current one, which must then not differ from actual's saved one.
void ExpectSameValues(const GlobalConfig& expected, const GlobalConfig& actual) {
    GlobalConfig probe = actual;
    for (size_t i = 0; i < GlobalConfig::OptionCount; ++i) {
        probe.GetOption(i).CopyFrom(expected.GetOption(i));
        EXPECT_FALSE(probe.GetOption(i).IsChanged())
            << VString(probe.GetOption(i).GetName()).c_str();
    }
}

class GlobalConfigStore : public StoreBehaviour {
protected:
    std::unique_ptr<VProfileKey> OpenKey(VProfileStore& store, bool create = true) {
        return std::make_unique<VProfileKey>(store.GetRootKey(), GlobalConfig::KeyName, create);
    }

    GlobalConfig Loaded(GlobalProduct product = GlobalProduct::Terminal) {
        auto store = Open(true);
        GlobalConfig config(product);
        VReportMessageParams report;
        EXPECT_TRUE(config.Load(*OpenKey(*store, false), report))
            << VString(report.GetTextAsString()).c_str();
        return config;
    }

    void Saved(GlobalConfig& config, bool force = false) {
        auto store = Open();
        VReportMessageParams report;
        EXPECT_TRUE(config.Save(*OpenKey(*store), force, report))
            << VString(report.GetTextAsString()).c_str();
    }
};

TEST_P(GlobalConfigStore, AnEmptyProfileGivesTheDefaultsAndTheNextSaveWritesTheSwitches) {
    for (const bool keyExists : {false, true}) {
        if (keyExists) OpenKey(*Open());
        GlobalConfig loaded = Loaded();
        ExpectSameValues(GlobalConfig(), loaded);
        for (size_t i = 0; i < GlobalConfig::OptionCount; ++i) {
            const VProfileData& option = loaded.GetOption(i);
            const bool writtenAnyway = dynamic_cast<const GlobalSwitch*>(&option) ||
                                       dynamic_cast<const GlobalProtectedText*>(&option);
            EXPECT_EQ(option.IsModified(), writtenAnyway) << VString(option.GetName()).c_str();
        }
        Saved(loaded);
        {
            auto store = Open(true);
            uint32_t number = 0;
            EXPECT_TRUE(OpenKey(*store, false)->GetDword(L"Keep Shared Memory Agent Open", number));
            EXPECT_EQ(number, 1u);
            EXPECT_FALSE(OpenKey(*store, false)->GetDword(L"Timeout", number))
                << "an untouched number";
        }
        ASSERT_TRUE(Open()->GetRootKey().DeleteKey(GlobalConfig::KeyName));
    }
}

TEST_P(GlobalConfigStore, SavedOptionsOfEveryKindLoadEqualInAFreshObject) {
    GlobalConfig config = Loaded();
    VReportMessageParams report;
    config.MinimizeToTray.Set(true);
    config.SessionFilterDelay.Set(1234);
    config.ConnectedColor.Set(RGB(1, 2, 3));
    config.XPosition.Set(-20);
    config.LogFile.Set(L"D:\\Logs\\Gr\u00fc\u00dfe.txt");
    config.FilewrightBookmarks.Set({L"/var/log", L"C:\\Temp"});
    ASSERT_TRUE(config.ConfigPassphrase.SetPlainText(L"secret", report));
    SYSTEMTIME date{2024, 7, 0, 14, 9, 30, 0, 500};
    FILETIME time;
    ASSERT_TRUE(SystemTimeToFileTime(&date, &time));
    config.FwxUpdatePromptDate.Set(time);
    VWindowPlacement placement;
    placement.showCmd = SW_SHOWMAXIMIZED;
    placement.rcNormalPosition = {10, 20, 300, 400};
    config.WindowPlacement.Set(placement);
    config.HexViewFont.Set(VLogFont(L"Consolas", -16, FW_BOLD));
    CustomColors colors;
    colors.colors[3] = RGB(9, 9, 9);
    config.CustomColors.Set(colors);
    ColorScheme scheme;
    scheme.foreground = RGB(0, 255, 0);
    config.ColorSchemes.Set(scheme);
    config.LocalExplorerFrameState.Set(VPaneState{false, 120, 300});
    VTabStateList tabs;
    ASSERT_TRUE(VTabStateList::Parse(L"1,1,0;0,-1,-1;", tabs));
    config.TermwrightTabStateV2.Set(tabs);
    VListViewState columns;
    ASSERT_TRUE(VListViewState::Parse(L"1,0;200,80,120;0,2,1", columns));
    config.TraywellAgentKeysListViewState.Set(columns);
    VTreeState tree;
    ASSERT_TRUE(VTreeState::Parse(L"0110", tree));
    config.GlobalOptionsTreeState.Set(tree);
    config.FwxCustomToolbarData.Set({1, 2, 3});

    Saved(config);
    ExpectSameValues(config, Loaded());
}

TEST_P(GlobalConfigStore, DamagedValuesTakeTheirDefaultsAndTheOthersAreKept) {
    {
        auto store = Open();
        auto key = OpenKey(*store);
        key->SetDword(L"Minimize To Tray", 2);  // any number but 0 is on
        key->SetDword(L"Keep Shared Memory Agent Open", 0);
        key->SetDword(L"Timeout", 42);
        key->SetString(L"Show Toolbar", L"yes");  // texts where numbers belong
        key->SetString(L"Session Filter Delay", L"300");
        key->SetDword(L"Log File", 5);                              // and the reverse
        key->SetString(L"Local ExplorerFrame State", L"1,-5,200");  // not of its form
        const BYTE cut[] = {44, 0, 0};
        key->SetBinary(L"Window Placement", cut, sizeof cut);
    }
    GlobalConfig expected;
    expected.MinimizeToTray.Set(true);
    expected.KeepSharedMemoryAgentOpen.Set(false);
    expected.Timeout.Set(42);
    const GlobalConfig loaded = Loaded();
    ExpectSameValues(expected, loaded);
    EXPECT_FALSE(loaded.MinimizeToTray.IsModified());
    EXPECT_TRUE(loaded.ShowToolbar.IsModified())
        << "a switch that could not be read is written again";
}

TEST_P(GlobalConfigStore, EachProductReadsAndWritesItsOwnNames) {
    const struct {
        GlobalProduct product;
        bool toolbar;
        const wchar_t* session;
        const wchar_t* otherName;
        uint32_t otherStored;
    } cases[] = {{GlobalProduct::Terminal, true, L"terminal", L"Show Toolbar FWX", 0},
                 {GlobalProduct::Transfer, false, L"transfer", L"Show Toolbar", 1}};
    for (const auto& c : cases) {
        {
            auto store = Open();
            auto key = OpenKey(*store);
            key->SetDword(L"Show Toolbar", 1);
            key->SetDword(L"Show Toolbar FWX", 0);
            key->SetString(L"Auto Session Name", L"terminal");
            key->SetString(L"Auto Session Name FWX", L"transfer");
        }
        GlobalConfig config = Loaded(c.product);
        EXPECT_EQ(config.ShowToolbar.Get(), c.toolbar);
        EXPECT_EQ(config.AutoSessionName.Get(), c.session);
        config.ShowToolbar.Set(!c.toolbar);
        Saved(config);
        EXPECT_EQ(Loaded(c.product).ShowToolbar.Get(), !c.toolbar);
        auto store = Open(true);
        uint32_t other = 7;
        EXPECT_TRUE(OpenKey(*store, false)->GetDword(c.otherName, other));
        EXPECT_EQ(other, c.otherStored) << "the other product's value is left alone";
    }
}

// What key holds under name: one text, or lines each ended by "|"; "(none)"
// when it holds no value of that kind.
VUnicodeString StoredForm(VProfileKey& key, const wchar_t* name, bool list) {
    VUnicodeString text;
    VArray<VUnicodeString> lines;
    if (!list) return key.GetString(name, text) ? text : VUnicodeString(L"(none)");
    if (!key.GetMultiString(name, lines)) return L"(none)";
    for (const VUnicodeString& line : lines) text += line + L"|";
    return text;
}

TEST_P(GlobalConfigStore, OptionsFoundUnderTheirFormerNamesMoveToTheirPresentNames) {
    const struct {
        GlobalProduct product;
        GlobalOption option;
        const wchar_t* former;
        const wchar_t* present;
        bool list;
        const wchar_t* stored;     // one text, or "|"-ended lines
        const wchar_t* converted;  // what the present name holds after the save
    } cases[] = {
        {GlobalProduct::Terminal, GlobalOption::TermwrightTabStateV2, L"Termwright Tab State",
         L"Termwright Tab State V2", false, L"1,-1,200", L"1,-1,200;"},
        {GlobalProduct::Transfer, GlobalOption::RememberedSessionsListV2,
         L"Remembered Sessions List FWX", L"Remembered Sessions List V2", true,
         L"Work\\Router|Home|", L"Work\\Router|Home|"},
    };
    for (const auto& c : cases) {
        {
            auto store = Open();
            auto key = OpenKey(*store);
            VArray<VUnicodeString> lines;
            for (const VUnicodeString& line : StateText::Split(c.stored, L'|')) {
                if (!line.IsEmpty()) lines.Add(line);
            }
            ASSERT_TRUE(c.list ? key->SetMultiString(c.former, lines)
                               : key->SetString(c.former, c.stored));
        }
        GlobalConfig config = Loaded(c.product);
        EXPECT_TRUE(config.GetOption(c.option).IsModified())
            << "to be written under the present name";
        Saved(config);
        auto store = Open(true);
        auto key = OpenKey(*store, false);
        EXPECT_EQ(StoredForm(*key, c.present, c.list), c.converted);
        EXPECT_EQ(StoredForm(*key, c.former, c.list), L"") << "blanked, as older versions expect";
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
        << "untouched, written anyway";
}

}  // namespace
