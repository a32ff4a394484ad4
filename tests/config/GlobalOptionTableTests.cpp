// The global option table against itself and against the clients' list of
// value names (GlobalOptionNames.txt), and the lookups derived from it.
#include <gtest/gtest.h>

#include <map>
#include <set>
#include <sstream>

#include "GlobalConfig.h"
#include "RegistrySandbox.h"
#include "TempFolder.h"

namespace {

constexpr GlobalProduct Products[] = {GlobalProduct::Terminal, GlobalProduct::Transfer};

std::set<std::wstring> ListedNames() {
    std::istringstream lines(ReadWholeFile(VUnicodeString(GLOBAL_OPTION_NAMES_FILE)));
    std::set<std::wstring> names;
    for (std::string line; std::getline(lines, line);) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        if (!line.empty() && line[0] != '#') names.emplace(line.begin(), line.end());
    }
    return names;
}

std::string Narrow(const std::wstring& name) {
    return VString(VUnicodeString(name.c_str())).c_str();
}

// Every name any product reads (present or former; upper-cased, as the store
// compares them) belongs to one option, is found by the lookup, and is listed
// or a start-up option's; and the names the products keep apart are listed
// in pairs, which the table does not keep as two options.
TEST(GlobalOptionTable, ReadsEveryListedNameOnceAndTheProductsPairsAsOneOption) {
    std::map<std::wstring, std::set<size_t>> readBy;
    for (const GlobalProduct product : Products) {
        GlobalConfig config(product);
        for (size_t i = 0; i < GlobalConfig::OptionCount; ++i) {
            for (VUnicodeString name : {GlobalConfig::GetValueName(i, product),
                                        GlobalConfig::GetFormerName(i, product)}) {
                name.MakeUpper();
                if (!name.IsEmpty()) readBy[name.c_str()].insert(i);
            }
            EXPECT_EQ(config.FindOption(GlobalConfig::GetValueName(i, product)),
                      &config.GetOption(i));
        }
    }
    const std::set<std::wstring> listed = ListedNames();
    ASSERT_EQ(listed.size(), 285u) << "the list of names is incomplete";
    for (const std::wstring& name : listed) {
        VUnicodeString upper(name.c_str());
        upper.MakeUpper();
        EXPECT_EQ(readBy[upper.c_str()].size(), 1u) << Narrow(name);
        readBy.erase(upper.c_str());
    }
    ASSERT_EQ(readBy.size(), 2u) << "besides the listed names, the two start-up options";
    for (const auto& [name, options] : readBy)
        EXPECT_TRUE(GlobalConfig::IsStartUpOption(*options.begin())) << Narrow(name);

    std::set<std::wstring> perProduct;
    for (const VUnicodeString& name : GlobalConfig::GetProductDependentNames())
        perProduct.insert(name.c_str());
    for (const std::wstring& name : listed) {
        const std::wstring plain = name.substr(0, name.size() - 4);
        if (name.ends_with(L" FWX") && listed.count(plain)) {
            EXPECT_TRUE(perProduct.count(plain)) << Narrow(name);
        }
    }
}

TEST(GlobalOptionTable, ReadSwitchTakesAPolicyForTheStartUpOptionsOnly) {
    GlobalConfig config;
    bool value = true;
    EXPECT_FALSE(config.ReadSwitch(L"Log File", value)) << "not a switch";
    EXPECT_FALSE(config.ReadSwitch(L"No Such Option", value));

    RegistrySandbox sandbox;
    PredefinedKeyRedirect machine(HKEY_LOCAL_MACHINE, sandbox, L"machine");
    HKEY policies = nullptr;
    ASSERT_EQ(RegCreateKeyExW(HKEY_LOCAL_MACHINE, L"Software\\Policies\\Quillon", 0, nullptr, 0,
                              KEY_ALL_ACCESS, nullptr, &policies, nullptr),
              ERROR_SUCCESS);
    const RegistryKeyHandle owned(policies);
    const DWORD on = 1;
    for (const wchar_t* name : {L"Enable FIPS Mode", L"Minimize To Tray"})
        RawSetValue(policies, name, REG_DWORD, &on, sizeof on);
    ASSERT_TRUE(config.ReadSwitch(L"enable fips mode", value));
    EXPECT_TRUE(value) << "an administrator's policy wins";
    ASSERT_TRUE(config.ReadSwitch(L"Minimize To Tray", value));
    EXPECT_FALSE(value) << "the user's own, its default";
}

}  // namespace
