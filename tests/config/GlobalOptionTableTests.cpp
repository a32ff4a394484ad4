// The global option table against itself and against the clients' list of
// value names (GlobalOptionNames.txt), and the lookups derived from it.
#include <gtest/gtest.h>

#include <map>
#include <sstream>
#include <string>

#include "GlobalConfig.h"
#include "RegistrySandbox.h"
#include "TempFolder.h"

namespace {

constexpr GlobalProduct Products[] = {GlobalProduct::Terminal, GlobalProduct::Transfer};

std::vector<std::wstring> ListedNames() {
    std::istringstream lines(ReadWholeFile(VUnicodeString(GLOBAL_OPTION_NAMES_FILE)));
    std::vector<std::wstring> names;
    for (std::string line; std::getline(lines, line);) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        if (!line.empty() && line[0] != '#') names.emplace_back(line.begin(), line.end());
    }
    return names;
}

std::wstring Upper(const VUnicodeString& name) {
    VUnicodeString upper = name;
    upper.MakeUpper();
    return upper.c_str();
}

// Every name the table reads, upper-cased (the store compares without regard
// to case), with the options it belongs to.
std::map<std::wstring, std::vector<size_t>> NamesRead() {
    std::map<std::wstring, std::vector<size_t>> read;
    for (size_t i = 0; i < GlobalConfig::OptionCount; ++i) {
        std::map<std::wstring, bool> ofOption;  // a name both products share counts once
        for (const GlobalProduct product : Products) {
            ofOption[Upper(GlobalConfig::GetValueName(i, product))] = true;
            const VUnicodeString& former = GlobalConfig::GetFormerName(i, product);
            if (!former.IsEmpty()) ofOption[Upper(former)] = true;
        }
        for (const auto& [name, unused] : ofOption) read[name].push_back(i);
    }
    return read;
}

TEST(GlobalOptionTable, ReadsEveryListedNameOnceAndNothingElseButTheStartUpOptions) {
    const std::vector<std::wstring> listed = ListedNames();
    ASSERT_EQ(listed.size(), 285u) << "the list of names is incomplete";
    std::map<std::wstring, std::vector<size_t>> read = NamesRead();
    for (const std::wstring& name : listed) {
        const auto found = read.find(Upper(name.c_str()));
        ASSERT_NE(found, read.end())
            << "missing: " << VString(VUnicodeString(name.c_str())).c_str();
        EXPECT_EQ(found->second.size(), 1u)
            << "read by several options: " << VString(VUnicodeString(name.c_str())).c_str();
        read.erase(found);
    }
    for (const auto& [name, options] : read) {
        EXPECT_TRUE(GlobalConfig::IsStartUpOption(options[0]))
            << "not a listed name: " << VString(VUnicodeString(name.c_str())).c_str();
    }
    EXPECT_EQ(read.size(), 2u) << "the two start-up options";
}

TEST(GlobalOptionTable, ProductDependentNamesComeInCompletePairs) {
    const std::vector<std::wstring> listed = ListedNames();
    std::map<std::wstring, bool> isListed;
    for (const std::wstring& name : listed) isListed[name] = true;
    std::map<std::wstring, bool> perProduct;
    for (const VUnicodeString& name : GlobalConfig::GetProductDependentNames()) {
        perProduct[name.c_str()] = true;
        EXPECT_TRUE(isListed[name.c_str()] && isListed[std::wstring(name.c_str()) + L" FWX"])
            << VString(name).c_str();
    }
    // A listed pair that the table keeps as two options would be read by both products.
    for (const std::wstring& name : listed) {
        const size_t suffix = name.rfind(L" FWX");
        if (suffix == std::wstring::npos || suffix + 4 != name.size() ||
            !isListed[name.substr(0, suffix)])
            continue;
        EXPECT_TRUE(perProduct[name.substr(0, suffix)])
            << VString(VUnicodeString(name.c_str())).c_str();
    }
}

TEST(GlobalOptionTable, LookupsByIndexAndByNameFindTheSameMember) {
    for (const GlobalProduct product : Products) {
        GlobalConfig config(product);
        for (size_t i = 0; i < GlobalConfig::OptionCount; ++i) {
            const VUnicodeString& name = GlobalConfig::GetValueName(i, product);
            EXPECT_EQ(config.GetOption(i).GetName(), name);
            VUnicodeString otherCase = name;
            otherCase.MakeUpper();
            EXPECT_EQ(config.FindOption(otherCase), &config.GetOption(i)) << VString(name).c_str();
        }
        EXPECT_THROW(config.GetOption(GlobalConfig::OptionCount), VContainerOutOfRange);
    }
    GlobalConfig transfer(GlobalProduct::Transfer);
    EXPECT_EQ(transfer.FindOption(L"Show Toolbar"), nullptr) << "the terminal client's name";
    EXPECT_EQ(&transfer.GetOption(GlobalOption::ShowToolbar),
              transfer.FindOption(L"Show Toolbar FWX"));
}

TEST(GlobalOptionTable, ReadSwitchTakesThePolicyForStartUpOptionsOnly) {
    GlobalConfig config;
    config.EnableFipsMode.Set(false);
    config.MinimizeToTray.Set(false);
    bool value = true;
    EXPECT_FALSE(config.ReadSwitch(L"Log File", value)) << "not a switch";
    EXPECT_FALSE(config.ReadSwitch(L"No Such Option", value));
    EXPECT_TRUE(value) << "untouched";

    RegistrySandbox sandbox;
    PredefinedKeyRedirect machine(HKEY_LOCAL_MACHINE, sandbox, L"machine");
    HKEY policies = nullptr;
    ASSERT_EQ(RegCreateKeyExW(HKEY_LOCAL_MACHINE, L"Software\\Policies\\Quillon", 0, nullptr, 0,
                              KEY_ALL_ACCESS, nullptr, &policies, nullptr),
              ERROR_SUCCESS);
    const RegistryKeyHandle owned(policies);
    const DWORD on = 1;
    RawSetValue(policies, L"Enable FIPS Mode", REG_DWORD, &on, sizeof on);
    RawSetValue(policies, L"Minimize To Tray", REG_DWORD, &on, sizeof on);
    ASSERT_TRUE(config.ReadSwitch(L"enable fips mode", value));
    EXPECT_TRUE(value) << "an administrator's policy wins";
    ASSERT_TRUE(config.ReadSwitch(L"Minimize To Tray", value));
    EXPECT_FALSE(value) << "policies apply to start-up options only";
}

TEST(GlobalOptionTable, TreeStatesAreTextsOfZerosAndOnes) {
    const struct {
        const wchar_t* text;
        bool valid;
        size_t nodes;
    } cases[] = {{L"", true, 0},      {L"1001000100", true, 10}, {L"0", true, 1},
                 {L"10 1", false, 0}, {L"102", false, 0},        {L"1,0", false, 0}};
    for (const auto& c : cases) {
        VTreeState state;
        state.expanded.Add(true);  // a refused text leaves it so
        ASSERT_EQ(VTreeState::Parse(c.text, state), c.valid)
            << VString(VUnicodeString(c.text)).c_str();
        EXPECT_EQ(state.expanded.GetCount(), c.valid ? c.nodes : 1u);
        if (!c.valid) continue;
        EXPECT_EQ(state.Format(), c.text) << "written back as read";
    }
}

}  // namespace
