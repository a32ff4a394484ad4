// The family's fixed registry places, with HKEY_LOCAL_MACHINE and
// HKEY_CURRENT_USER redirected into a sandbox that the tests fill freely.
#include <gtest/gtest.h>

#include "RegistrySandbox.h"
#include "RegistrySettings.h"
#include "VProfileStore.h"
#include "VRegistryKey.h"
#include "VRegistryStoreFactory.h"

namespace {

class RegistrySettingsTest : public ::testing::Test {
protected:
    static void Create(HKEY hive, const wchar_t* path, const wchar_t* name = nullptr, uint32_t value = 0,
                       const wchar_t* text = nullptr) {
        VRegistryKey key;
        ASSERT_TRUE(key.Create(hive, path, KEY_ALL_ACCESS, nullptr));
        ASSERT_TRUE(!name || (text ? key.SetString(name, text) : key.SetDword(name, value)));
    }

    RegistrySandbox sandbox_;
    PredefinedKeyRedirect machine_{HKEY_LOCAL_MACHINE, sandbox_, L"machine"};
    PredefinedKeyRedirect user_{HKEY_CURRENT_USER, sandbox_, L"user"};
};

constexpr wchar_t Family[] = L"SOFTWARE\\Quillon";
constexpr wchar_t OlderFamily[] = L"SOFTWARE\\Quillon Works";
constexpr wchar_t Policies[] = L"Software\\Policies\\Quillon";
constexpr wchar_t Global[] = L"SOFTWARE\\Quillon\\Global";

void ExpectBase(HKEY hive, const wchar_t* path) {
    const RegistryPlace base = FindFamilyRegistryBase();
    EXPECT_EQ(base.hive, hive);
    EXPECT_EQ(base.path, path);
}

TEST_F(RegistrySettingsTest, TheFirstOfTheFourBasePlacesThatExistsWins) {
    ExpectBase(HKEY_CURRENT_USER, Family);  // none exists
    EXPECT_FALSE(RawKeyExists(HKEY_CURRENT_USER, Family)) << "looking created it";
    const RegistryPlace places[] = {{HKEY_LOCAL_MACHINE, OlderFamily},
                                    {HKEY_CURRENT_USER, OlderFamily},
                                    {HKEY_LOCAL_MACHINE, Family},
                                    {HKEY_CURRENT_USER, Family}};
    for (const RegistryPlace& place : places) {
        Create(place.hive, place.path.c_str());
        ExpectBase(place.hive, place.path.c_str());
    }
}

TEST_F(RegistrySettingsTest, APolicyIsTakenFromTheFirstPlaceThatHasIt) {
    uint32_t value = 99;
    EXPECT_FALSE(GetPolicyDword(L"Limit", value));
    EXPECT_EQ(value, 99u);

    const RegistryPlace places[] = {
        {HKEY_LOCAL_MACHINE, Global}, {HKEY_CURRENT_USER, Policies}, {HKEY_LOCAL_MACHINE, Policies}};
    uint32_t set = 0;
    for (const RegistryPlace& place : places) {
        Create(place.hive, place.path.c_str(), L"Limit", ++set);
        ASSERT_TRUE(GetPolicyDword(L"Limit", value));
        EXPECT_EQ(value, set);
    }
    Create(HKEY_LOCAL_MACHINE, Policies, L"Limit", 0, L"text");
    ASSERT_TRUE(GetPolicyDword(L"Limit", value));
    EXPECT_EQ(value, 2u);
    VUnicodeString text;
    ASSERT_TRUE(GetPolicyString(L"Limit", text));
    EXPECT_EQ(text, L"text");
}

TEST_F(RegistrySettingsTest, AnApplicationSettingFallsBackThroughItsPlacesToTheDefault) {
    const wchar_t own[] = L"SOFTWARE\\Quillon\\Filewright\\Transfer";
    EXPECT_EQ(GetApplicationSettingDword(L"Retries", L"Filewright", L"Transfer", 5), 5u);
    Create(HKEY_LOCAL_MACHINE, own, L"Retries", 7);
    EXPECT_EQ(GetApplicationSettingDword(L"Retries", L"Filewright", L"Transfer", 5), 7u);
    Create(HKEY_CURRENT_USER, Policies, L"Retries", 9);
    EXPECT_EQ(GetApplicationSettingDword(L"Retries", L"Filewright", L"Transfer", 5), 9u);
    Create(HKEY_CURRENT_USER, own, L"Folder", 0, L"user");
    EXPECT_EQ(GetApplicationSettingString(L"Folder", L"Filewright", L"Transfer", L"default"), L"default");
}

TEST_F(RegistrySettingsTest, OnlyTheTerminalClientLooksInTheOlderLocation) {
    Create(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Quillon Works\\TERMWRIGHT Pro 3.0\\Paths", L"Folder", 0, L"older");
    Create(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Quillon Works\\Filewright 3.0\\Paths", L"Folder", 0, L"older");
    EXPECT_EQ(GetApplicationSettingString(L"Folder", L"TERMWRIGHT Pro", L"Paths", L"default"), L"older");
    EXPECT_EQ(GetApplicationSettingString(L"Folder", L"Filewright", L"Paths", L"default"), L"default");
    Create(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Quillon\\TERMWRIGHT Pro\\Paths", L"Folder", 0, L"own");
    EXPECT_EQ(GetApplicationSettingString(L"Folder", L"TERMWRIGHT Pro", L"Paths", L"default"), L"own");
}

TEST_F(RegistrySettingsTest, StoresUseTheRegistryUntilAnIniFileFactoryIsSet) {
    Create(HKEY_LOCAL_MACHINE, Family);  // a machine-wide installation only
    VRegistryStoreFactory registry(nullptr, Family);
    EXPECT_EQ(registry.GetHive(), HKEY_LOCAL_MACHINE);
    SetRegistryStoreFactory(&registry);
    SetIniFileStoreFactory(nullptr);
    EXPECT_EQ(CurrentProfileStoreFactory(), &registry);
    {
        VProfileStore store;
        VProfileKey options(store.GetRootKey(), L"Global", true);
        ASSERT_TRUE(options.SetDword(L"Tray Icon", 1));
    }
    VRegistryKey written;
    ASSERT_TRUE(written.Open(HKEY_LOCAL_MACHINE, Global, KEY_READ));
    uint32_t value = 0;
    ASSERT_TRUE(written.GetDword(L"Tray Icon", value));
    EXPECT_EQ(value, 1u);

    VRegistryStoreFactory other(HKEY_CURRENT_USER, Family);
    SetIniFileStoreFactory(&other);
    EXPECT_EQ(CurrentProfileStoreFactory(), &other);
    SetIniFileStoreFactory(nullptr);
    SetRegistryStoreFactory(nullptr);
}

}  // namespace
