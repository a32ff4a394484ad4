// What only the registry back end does, on Wine's real registry; what every
// back end shares is in the store behaviour suite.
#include <gtest/gtest.h>

#include <map>

#include "RegistrySandbox.h"
#include "StoreBehaviour.h"
#include "VProfileStore.h"
#include "VRegistryProfileKey.h"
#include "VRegistryStoreFactory.h"
#include "VSecurityDescriptor.h"

namespace {

class RegistryStoreTest : public ::testing::Test {
protected:
    VRegistryProfileKey OpenSandbox(bool readOnly = false) {
        return VRegistryProfileKey(HKEY_CURRENT_USER, sandbox_.Path(), readOnly, false, nullptr);
    }

    RegistrySandbox sandbox_;
};

VArray<VUnicodeString> EntriesOf(const VSecurityDescriptor& descriptor) {
    VArray<VUnicodeString> entries;
    EXPECT_TRUE(descriptor.ToText(entries));
    return entries;
}

VSecurityDescriptor DescriptorOf(const VArray<VUnicodeString>& entries) {
    VSecurityDescriptor descriptor;
    EXPECT_TRUE(descriptor.FromText(entries));
    return descriptor;
}

TEST_F(RegistryStoreTest, EachKindIsStoredWithItsRegistryTypeAndBytes) {
    VRegistryProfileKey key = OpenSandbox();
    const BYTE bytes[] = {0, 1, 2, 0xFF};
    ASSERT_TRUE(key.SetDword(L"number", 0xDEADBEEF));
    ASSERT_TRUE(key.SetString(L"text", L"caf\u00e9"));
    ASSERT_TRUE(key.SetBinary(L"bytes", bytes, sizeof bytes));
    ASSERT_TRUE(key.SetMultiString(L"list", VArray<VUnicodeString>{L"a", L"bc"}));

    const struct {
        const wchar_t* name;
        DWORD type;
        std::vector<BYTE> data;
    } cases[] = {
        {L"number", REG_DWORD, {0xEF, 0xBE, 0xAD, 0xDE}},
        {L"text", REG_SZ, {'c', 0, 'a', 0, 'f', 0, 0xE9, 0, 0, 0}},  // with its terminator
        {L"bytes", REG_BINARY, std::vector<BYTE>(bytes, bytes + sizeof bytes)},
        {L"list", REG_MULTI_SZ, {'a', 0, 0, 0, 'b', 0, 'c', 0, 0, 0, 0, 0}},  // ends with an empty string
    };
    for (const auto& c : cases) {
        std::vector<BYTE> data;
        EXPECT_EQ(RawValueType(sandbox_.Get(), c.name, &data), c.type) << c.name;
        EXPECT_EQ(data, c.data) << c.name;
    }
}

TEST_F(RegistryStoreTest, ValuesWrittenByOtherToolsAreReadAsTheyMeantThem) {
    const wchar_t unterminated[] = {L'a', L'b'};
    RawSetValue(sandbox_.Get(), L"text", REG_SZ, unterminated, sizeof unterminated);
    const wchar_t list[] = {L'x', L'\0', L'y', L'z'};
    RawSetValue(sandbox_.Get(), L"list", REG_MULTI_SZ, list, sizeof list);
    RawSetValue(sandbox_.Get(), L"empty list", REG_MULTI_SZ, L"", sizeof(wchar_t));
    RawSetValue(sandbox_.Get(), L"expandable", REG_EXPAND_SZ, L"%TEMP%", 7 * sizeof(wchar_t));

    VRegistryProfileKey key = OpenSandbox(true);
    VUnicodeString text;
    ASSERT_TRUE(key.GetString(L"text", text));
    EXPECT_EQ(text, L"ab");
    VArray<VUnicodeString> strings;
    ASSERT_TRUE(key.GetMultiString(L"list", strings));
    EXPECT_EQ(strings, (VArray<VUnicodeString>{L"x", L"yz"}));
    ASSERT_TRUE(key.GetMultiString(L"empty list", strings));
    EXPECT_TRUE(strings.IsEmpty());
    EXPECT_FALSE(key.GetString(L"expandable", text));
    ExpectValueAbsent(key.GetLastErrorParams(), L"expandable");
}

TEST_F(RegistryStoreTest, RefusedWritesAndReadsSayWhy) {
    VRegistryProfileKey key = OpenSandbox();
    EXPECT_FALSE(key.SetMultiString(L"list", VArray<VUnicodeString>{L"a", L"", L"b"}));  // "" ends a list
    EXPECT_EQ(key.GetLastErrorParams().GetMessageCode(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
    EXPECT_EQ(RawValueType(sandbox_.Get(), L"list"), static_cast<DWORD>(REG_NONE));

    const BYTE bytes[] = {1, 2, 3, 4, 5};
    ASSERT_TRUE(key.SetBinary(L"bytes", bytes, sizeof bytes));
    BYTE buffer[4] = {};
    size_t size = sizeof buffer;
    EXPECT_FALSE(key.GetBinary(L"bytes", buffer, size));
    EXPECT_EQ(key.GetLastErrorParams().GetMessageCode(), static_cast<DWORD>(ERROR_MORE_DATA));
    EXPECT_EQ(size, sizeof bytes);

    EXPECT_FALSE(key.DeleteKey(L"missing"));
    EXPECT_EQ(key.GetLastErrorParams().GetMessageCode(), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
    EXPECT_FALSE(key.DeleteKey(L""));  // never the key itself
    EXPECT_TRUE(RawKeyExists(HKEY_CURRENT_USER, sandbox_.Path().c_str()));
}

TEST_F(RegistryStoreTest, AKeyThatCannotBeWrittenIsOpenedForReading) {
    HKEY raw = nullptr;
    ASSERT_EQ(RegCreateKeyExW(sandbox_.Get(), L"locked", 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &raw, nullptr),
              ERROR_SUCCESS);
    RegistryKeyHandle locked(raw);
    RawSetValue(locked.Get(), L"kept", REG_SZ, L"yes", 4 * sizeof(wchar_t));
    VUnicodeString user;
    ASSERT_TRUE(GetCurrentUserSidString(user));
    ASSERT_EQ(RegSetKeySecurity(locked.Get(), DACL_SECURITY_INFORMATION,
                                DescriptorOf({L"allow,0x00060019," + user}).Get()),
              ERROR_SUCCESS);
    {
        VRegistryProfileKey key(sandbox_.Get(), L"locked", false, true, nullptr);
        ASSERT_TRUE(key.IsOpen());
        EXPECT_FALSE(key.IsWritable());
        VUnicodeString text;
        ASSERT_TRUE(key.GetString(L"kept", text));
        EXPECT_EQ(text, L"yes");
        EXPECT_FALSE(key.SetString(L"kept", L"no"));
        EXPECT_EQ(key.GetLastErrorParams().GetMessageCode(), static_cast<DWORD>(ERROR_ACCESS_DENIED));
    }
    ASSERT_TRUE(OpenSandbox().SetSecurity(L"locked", DescriptorOf({L"allow,0x000f003f," + user})));
    EXPECT_TRUE(VRegistryProfileKey(sandbox_.Get(), L"locked", false, false, nullptr).IsWritable());
}

TEST_F(RegistryStoreTest, AReadOnlyStoreCreatesNothingAndChangesNoSecurity) {
    {
        VRegistryStoreFactory factory(HKEY_CURRENT_USER, sandbox_.PathOf(L"missing\\store"));
        VProfileStore store(&factory, true);
        VProfileKey child(store.GetRootKey(), L"child", true);
        EXPECT_FALSE(child.IsOpen());
    }
    EXPECT_FALSE(RawKeyExists(sandbox_.Get(), L"missing"));

    ASSERT_NE(OpenSandbox().OpenKey(L"store\\child\\grandchild", true, nullptr), nullptr);
    VRegistryStoreFactory factory(HKEY_CURRENT_USER, sandbox_.PathOf(L"store"));
    VProfileStore store(&factory, true);
    VProfileKey child(store.GetRootKey(), L"child", false);
    ASSERT_TRUE(child.IsOpen());
    VSecurityDescriptor descriptor;
    ASSERT_TRUE(child.GetSecurity(L"grandchild", descriptor));
    EXPECT_FALSE(child.SetSecurity(L"grandchild", descriptor));
}

TEST_F(RegistryStoreTest, IteratorsTakeLongNamesAndMarkForeignTypesAndOutliveTheirKey) {
    std::unique_ptr<VProfilePrivateKeyIterator> values, subkeys;
    const std::wstring longValue(100, L'v'), longSubkey(200, L'k');
    {
        VRegistryProfileKey key = OpenSandbox();
        ASSERT_TRUE(key.SetString(longValue.c_str(), L"s"));
        RawSetValue(sandbox_.Get(), L"e", REG_EXPAND_SZ, L"%x%", 4 * sizeof(wchar_t));
        ASSERT_NE(key.OpenKey(longSubkey.c_str(), true, nullptr), nullptr);
        values = key.CreatePrivateKeyIterator(true);
        subkeys = key.CreatePrivateKeyIterator(false);
    }
    const auto list = [](VProfilePrivateKeyIterator& iterator) {
        std::map<std::wstring, uint32_t> entries;
        VUnicodeString name;
        uint32_t kind = 0;
        while (iterator.Next(name, kind)) entries[name.c_str()] = kind;
        return entries;
    };
    EXPECT_EQ(list(*values), (std::map<std::wstring, uint32_t>{{longValue, ProfileString},
                                                               {L"e", VRegistryProfileKey::NoKind}}));
    EXPECT_EQ(list(*subkeys), (std::map<std::wstring, uint32_t>{{longSubkey, ProfileSubkey}}));
}

TEST_F(RegistryStoreTest, SecurityIsSetOnCreationOrLaterAndReadBack) {
    VUnicodeString user;
    ASSERT_TRUE(GetCurrentUserSidString(user));
    const VArray<VUnicodeString> owner{L"allow,0x000f003f," + user};
    const VArray<VUnicodeString> guarded{L"allow,0x000f003f," + user, L"deny,0x00000002,S-1-1-0"};
    VRegistryProfileKey key = OpenSandbox();
    const VSecurityDescriptor ownerOnly = DescriptorOf(owner);
    auto subkey = key.OpenKey(L"private", true, &ownerOnly);
    ASSERT_NE(subkey, nullptr);
    VSecurityDescriptor read;
    ASSERT_TRUE(key.GetSecurity(L"private", read));
    EXPECT_EQ(EntriesOf(read), owner);

    ASSERT_TRUE(key.SetSecurity(L"private", DescriptorOf(guarded)));
    ASSERT_TRUE(subkey->GetSecurity(L"", read));  // an empty name is the key itself
    EXPECT_EQ(EntriesOf(read), guarded);

    EXPECT_FALSE(key.SetSecurity(L"private", VSecurityDescriptor()));
    EXPECT_EQ(key.GetLastErrorParams().GetMessageCode(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
    EXPECT_FALSE(key.GetSecurity(L"no such key", read));
    EXPECT_EQ(key.GetLastErrorParams().GetMessageCode(), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
}

}  // namespace
