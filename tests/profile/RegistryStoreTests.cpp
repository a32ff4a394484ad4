// The registry back end on Wine's real registry: how values are typed, the
// write-else-read opening, read-only stores, iteration, subtree deletion and
// key security. Each test works under a sandbox key of its own.
#include <gtest/gtest.h>

#include <map>

#include "ConfigMessages.h"
#include "RegistrySandbox.h"
#include "StoreBehaviour.h"
#include "VProfileStore.h"
#include "VRegistryProfileKey.h"
#include "VRegistryStoreFactory.h"
#include "VSecurityDescriptor.h"

namespace {

class RegistryStoreTest : public ::testing::Test {
protected:
    // A writable key object on the sandbox itself.
    VRegistryProfileKey OpenSandbox(bool readOnly = false) {
        return VRegistryProfileKey(HKEY_CURRENT_USER, sandbox_.Path(), readOnly, false, nullptr);
    }

    static void ExpectAbsent(VProfilePrivateKey& key, const wchar_t* name) {
        ExpectValueAbsent(key.GetLastErrorParams(), name);
    }

    RegistrySandbox sandbox_;
};

// What a key holds, as the iterator lists it: name to kind code.
std::map<std::wstring, uint32_t> ListEntries(VProfilePrivateKey& key, bool values) {
    std::map<std::wstring, uint32_t> entries;
    auto iterator = key.CreatePrivateKeyIterator(values);
    VUnicodeString name;
    uint32_t kind = 0;
    while (iterator->Next(name, kind)) entries[name.c_str()] = kind;
    return entries;
}

TEST_F(RegistryStoreTest, EachKindIsStoredWithItsRegistryType) {
    VRegistryProfileKey key = OpenSandbox();
    ASSERT_TRUE(key.SetDword(L"number", 0xDEADBEEF));
    ASSERT_TRUE(key.SetString(L"text", L"caf\u00e9"));
    const BYTE bytes[] = {0, 1, 2, 0xFF};
    ASSERT_TRUE(key.SetBinary(L"bytes", bytes, sizeof bytes));
    ASSERT_TRUE(key.SetMultiString(L"list", VArray<VUnicodeString>{L"a", L"bc"}));

    std::vector<BYTE> data;
    EXPECT_EQ(RawValueType(sandbox_.Get(), L"number", &data), static_cast<DWORD>(REG_DWORD));
    EXPECT_EQ(data, (std::vector<BYTE>{0xEF, 0xBE, 0xAD, 0xDE}));
    EXPECT_EQ(RawValueType(sandbox_.Get(), L"text", &data), static_cast<DWORD>(REG_SZ));
    const wchar_t text[] = L"caf\u00e9";  // stored with its terminator
    EXPECT_EQ(data, std::vector<BYTE>(reinterpret_cast<const BYTE*>(text),
                                      reinterpret_cast<const BYTE*>(text) + sizeof text));
    EXPECT_EQ(RawValueType(sandbox_.Get(), L"bytes", &data), static_cast<DWORD>(REG_BINARY));
    EXPECT_EQ(data, std::vector<BYTE>(bytes, bytes + sizeof bytes));
    EXPECT_EQ(RawValueType(sandbox_.Get(), L"list", &data), static_cast<DWORD>(REG_MULTI_SZ));
    const wchar_t list[] = L"a\0bc\0";  // and the array's own terminator makes the final zero
    EXPECT_EQ(data, std::vector<BYTE>(reinterpret_cast<const BYTE*>(list),
                                      reinterpret_cast<const BYTE*>(list) + sizeof list));
}

TEST_F(RegistryStoreTest, ValuesWrittenByOtherToolsAreReadAsTheyMeantThem) {
    // Strings without terminators, and a list without its final empty string.
    const wchar_t unterminated[] = {L'a', L'b'};
    RawSetValue(sandbox_.Get(), L"text", REG_SZ, unterminated, sizeof unterminated);
    const wchar_t list[] = {L'x', L'\0', L'y', L'z'};
    RawSetValue(sandbox_.Get(), L"list", REG_MULTI_SZ, list, sizeof list);
    RawSetValue(sandbox_.Get(), L"empty list", REG_MULTI_SZ, L"", sizeof(wchar_t));

    VRegistryProfileKey key = OpenSandbox(true);
    VUnicodeString text;
    ASSERT_TRUE(key.GetString(L"text", text));
    EXPECT_EQ(text, L"ab");
    VArray<VUnicodeString> strings;
    ASSERT_TRUE(key.GetMultiString(L"list", strings));
    EXPECT_EQ(strings, (VArray<VUnicodeString>{L"x", L"yz"}));
    ASSERT_TRUE(key.GetMultiString(L"empty list", strings));
    EXPECT_TRUE(strings.IsEmpty());
}

TEST_F(RegistryStoreTest, AValueOfAnotherRegistryTypeReadsAsAbsent) {
    RawSetValue(sandbox_.Get(), L"text", REG_SZ, L"12", 3 * sizeof(wchar_t));
    RawSetValue(sandbox_.Get(), L"expandable", REG_EXPAND_SZ, L"%TEMP%", 7 * sizeof(wchar_t));
    const DWORD number = 12;
    RawSetValue(sandbox_.Get(), L"number", REG_DWORD, &number, sizeof number);

    VRegistryProfileKey key = OpenSandbox();
    uint32_t value = 7;
    EXPECT_FALSE(key.GetDword(L"text", value));
    ExpectAbsent(key, L"text");
    EXPECT_EQ(value, 7u);
    VUnicodeString text;
    EXPECT_FALSE(key.GetString(L"expandable", text));
    ExpectAbsent(key, L"expandable");
    size_t size = 0;
    EXPECT_FALSE(key.GetBinary(L"number", nullptr, size));
    ExpectAbsent(key, L"number");
    VArray<VUnicodeString> strings;
    EXPECT_FALSE(key.GetMultiString(L"text", strings));
    ExpectAbsent(key, L"text");
    // The mismatch changed nothing: the value still reads with its own type.
    ASSERT_TRUE(key.GetString(L"text", text));
    EXPECT_EQ(text, L"12");
}

TEST_F(RegistryStoreTest, TooSmallABinaryBufferFailsWithTheSizeNeeded) {
    VRegistryProfileKey key = OpenSandbox();
    const BYTE bytes[] = {1, 2, 3, 4, 5};
    ASSERT_TRUE(key.SetBinary(L"bytes", bytes, sizeof bytes));
    BYTE buffer[4] = {};
    size_t size = sizeof buffer;
    EXPECT_FALSE(key.GetBinary(L"bytes", buffer, size));
    EXPECT_EQ(key.GetLastErrorParams().GetMessageCode(), static_cast<DWORD>(ERROR_MORE_DATA));
    EXPECT_EQ(size, sizeof bytes);
}

TEST_F(RegistryStoreTest, AListWithAnEmptyStringIsRefusedAndNothingIsWritten) {
    VRegistryProfileKey key = OpenSandbox();
    EXPECT_FALSE(key.SetMultiString(L"list", VArray<VUnicodeString>{L"a", L"", L"b"}));
    EXPECT_EQ(key.GetLastErrorParams().GetMessageCode(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
    EXPECT_EQ(RawValueType(sandbox_.Get(), L"list"), static_cast<DWORD>(REG_NONE));
}

TEST_F(RegistryStoreTest, AKeyThatCannotBeWrittenIsOpenedForReading) {
    HKEY raw = nullptr;
    ASSERT_EQ(RegCreateKeyExW(sandbox_.Get(), L"locked", 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &raw, nullptr),
              ERROR_SUCCESS);
    RegistryKeyHandle locked(raw);
    RawSetValue(locked.Get(), L"kept", REG_SZ, L"yes", 4 * sizeof(wchar_t));
    // The user may read the key and change its access list, no more.
    VUnicodeString user;
    ASSERT_TRUE(GetCurrentUserSidString(user));
    VSecurityDescriptor readOnly;
    ASSERT_TRUE(readOnly.FromText({L"allow,0x00060019," + user}));
    ASSERT_EQ(RegSetKeySecurity(locked.Get(), DACL_SECURITY_INFORMATION, readOnly.Get()), ERROR_SUCCESS);

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

    // Full access again, through the sandbox key, so that the sandbox can go.
    VRegistryProfileKey sandbox = OpenSandbox();
    VSecurityDescriptor full;
    ASSERT_TRUE(full.FromText({L"allow,0x000f003f," + user}));
    ASSERT_TRUE(sandbox.SetSecurity(L"locked", full));
    VRegistryProfileKey key(sandbox_.Get(), L"locked", false, false, nullptr);
    EXPECT_TRUE(key.IsWritable());
}

TEST_F(RegistryStoreTest, AReadOnlyStoreOnAMissingPathCreatesNothing) {
    const VUnicodeString path = sandbox_.PathOf(L"missing\\store");
    VRegistryStoreFactory factory(HKEY_CURRENT_USER, path);
    {
        VProfileStore store(&factory, true);
        VProfileKey& root = store.GetRootKey();
        EXPECT_FALSE(root.IsWritable());
        uint32_t value = 0;
        EXPECT_FALSE(root.GetDword(L"anything", value));
        // Nothing is stored there, so typed values fall back to their defaults.
        EXPECT_EQ(root.GetLastErrorParams().GetMessageCode(), static_cast<DWORD>(CONFIG_VALUE_ABSENT));
        EXPECT_FALSE(root.SetDword(L"anything", 1));
        VProfileKey child(root, L"child", true);
        EXPECT_FALSE(child.IsOpen());
        EXPECT_FALSE(root.KeyExists(L"child"));
    }
    EXPECT_FALSE(RawKeyExists(sandbox_.Get(), L"missing"));
}

TEST_F(RegistryStoreTest, AReadOnlyStoreChangesNothingBelowIt) {
    HKEY raw = nullptr;
    ASSERT_EQ(RegCreateKeyExW(sandbox_.Get(), L"store\\child\\grandchild", 0, nullptr, 0, KEY_ALL_ACCESS, nullptr,
                              &raw, nullptr),
              ERROR_SUCCESS);
    RegCloseKey(raw);
    VRegistryStoreFactory factory(HKEY_CURRENT_USER, sandbox_.PathOf(L"store"));
    VProfileStore store(&factory, true);
    VProfileKey& root = store.GetRootKey();

    EXPECT_FALSE(root.DeleteKey(L"child"));
    EXPECT_EQ(root.GetLastErrorParams().GetMessageCode(), static_cast<DWORD>(ERROR_ACCESS_DENIED));
    EXPECT_TRUE(RawKeyExists(sandbox_.Get(), L"store\\child\\grandchild"));
    // Subkeys of a read-only store are read-only too, though the user could write them.
    VProfileKey child(root, L"child", false);
    ASSERT_TRUE(child.IsOpen());
    EXPECT_FALSE(child.IsWritable());
    EXPECT_FALSE(child.DeleteKey(L"grandchild"));
    VSecurityDescriptor descriptor;
    ASSERT_TRUE(child.GetSecurity(L"grandchild", descriptor));
    EXPECT_FALSE(child.SetSecurity(L"grandchild", descriptor));
    EXPECT_TRUE(RawKeyExists(sandbox_.Get(), L"store\\child\\grandchild"));
}

TEST_F(RegistryStoreTest, IteratorsListSubkeysOrValuesNeverBoth) {
    VRegistryProfileKey key = OpenSandbox();
    // Names longer than the first 32-character buffer make it grow.
    const VUnicodeString longValue(std::wstring(100, L'v').c_str());
    const VUnicodeString longSubkey(std::wstring(200, L'k').c_str());
    ASSERT_TRUE(key.SetDword(L"d", 1));
    ASSERT_TRUE(key.SetString(longValue, L"s"));
    ASSERT_TRUE(key.SetBinary(L"b", "x", 1));
    ASSERT_TRUE(key.SetMultiString(L"m", VArray<VUnicodeString>{L"x"}));
    RawSetValue(sandbox_.Get(), L"e", REG_EXPAND_SZ, L"%x%", 4 * sizeof(wchar_t));
    ASSERT_NE(key.OpenKey(L"first", true, nullptr), nullptr);
    ASSERT_NE(key.OpenKey(longSubkey, true, nullptr), nullptr);

    const std::map<std::wstring, uint32_t> values{{L"d", ProfileDword},
                                                  {longValue.c_str(), ProfileString},
                                                  {L"b", ProfileBinary},
                                                  {L"m", ProfileMultiString},
                                                  {L"e", VRegistryProfileKey::NoKind}};
    EXPECT_EQ(ListEntries(key, true), values);
    const std::map<std::wstring, uint32_t> subkeys{{L"first", ProfileSubkey}, {longSubkey.c_str(), ProfileSubkey}};
    EXPECT_EQ(ListEntries(key, false), subkeys);
}

TEST_F(RegistryStoreTest, AnIteratorOutlivesItsKeyObject) {
    std::unique_ptr<VProfilePrivateKeyIterator> iterator;
    {
        VRegistryProfileKey key = OpenSandbox();
        ASSERT_TRUE(key.SetDword(L"only", 1));
        iterator = key.CreatePrivateKeyIterator(true);
    }
    VUnicodeString name;
    ASSERT_TRUE(iterator->Next(name));
    EXPECT_EQ(name, L"only");
    EXPECT_FALSE(iterator->Next(name));
}

TEST_F(RegistryStoreTest, DeleteKeyRemovesTheWholeSubtreeAndNothingElse) {
    VRegistryProfileKey key = OpenSandbox();
    for (const wchar_t* path : {L"doomed\\a\\deep\\deeper", L"doomed\\b", L"doomed\\a\\wide", L"kept"}) {
        auto subkey = key.OpenKey(path, true, nullptr);
        ASSERT_NE(subkey, nullptr);
        ASSERT_TRUE(subkey->SetString(L"value", path));
    }
    ASSERT_TRUE(key.DeleteKey(L"doomed"));
    EXPECT_FALSE(RawKeyExists(sandbox_.Get(), L"doomed"));
    EXPECT_TRUE(RawKeyExists(sandbox_.Get(), L"kept"));

    EXPECT_FALSE(key.DeleteKey(L"doomed"));
    EXPECT_EQ(key.GetLastErrorParams().GetMessageCode(), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
    EXPECT_FALSE(key.DeleteKey(L""));  // never the key itself
    EXPECT_TRUE(RawKeyExists(HKEY_CURRENT_USER, sandbox_.Path().c_str()));
}

TEST_F(RegistryStoreTest, SecurityIsSetAndReadBackOnASubkeyOrTheKeyItself) {
    VRegistryProfileKey key = OpenSandbox();
    auto subkey = key.OpenKey(L"guarded", true, nullptr);
    ASSERT_NE(subkey, nullptr);
    VUnicodeString user;
    ASSERT_TRUE(GetCurrentUserSidString(user));
    const VArray<VUnicodeString> entries{L"allow,0x000f003f," + user, L"deny,0x00000002,S-1-1-0"};
    VSecurityDescriptor descriptor;
    ASSERT_TRUE(descriptor.FromText(entries));

    ASSERT_TRUE(key.SetSecurity(L"guarded", descriptor));
    VSecurityDescriptor read;
    ASSERT_TRUE(key.GetSecurity(L"guarded", read));
    VArray<VUnicodeString> readEntries;
    ASSERT_TRUE(read.ToText(readEntries));
    EXPECT_EQ(readEntries, entries);
    // An empty name is the key itself.
    VSecurityDescriptor itself;
    ASSERT_TRUE(subkey->GetSecurity(L"", itself));
    ASSERT_TRUE(itself.ToText(readEntries));
    EXPECT_EQ(readEntries, entries);

    EXPECT_FALSE(key.SetSecurity(L"guarded", VSecurityDescriptor()));
    EXPECT_EQ(key.GetLastErrorParams().GetMessageCode(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
    EXPECT_FALSE(key.GetSecurity(L"no such key", read));
    EXPECT_EQ(key.GetLastErrorParams().GetMessageCode(), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
}

TEST_F(RegistryStoreTest, SecurityGivenToOpenKeyGoesOnTheCreatedKey) {
    VUnicodeString user;
    ASSERT_TRUE(GetCurrentUserSidString(user));
    const VArray<VUnicodeString> entries{L"allow,0x000f003f," + user};
    VSecurityDescriptor descriptor;
    ASSERT_TRUE(descriptor.FromText(entries));
    VRegistryProfileKey key = OpenSandbox();
    ASSERT_NE(key.OpenKey(L"private", true, &descriptor), nullptr);

    VSecurityDescriptor read;
    ASSERT_TRUE(key.GetSecurity(L"private", read));
    VArray<VUnicodeString> readEntries;
    ASSERT_TRUE(read.ToText(readEntries));
    EXPECT_EQ(readEntries, entries);
}

TEST_F(RegistryStoreTest, FlushAndReloadAnswerForAnOpenKeyOnly) {
    VRegistryProfileKey key = OpenSandbox();
    EXPECT_TRUE(key.Flush());
    EXPECT_TRUE(key.Reload());
    EXPECT_FALSE(key.IsVolatile());
    VRegistryProfileKey missing(sandbox_.Get(), L"missing", true, false, nullptr);
    EXPECT_FALSE(missing.IsOpen());
    EXPECT_FALSE(missing.Flush());
    EXPECT_EQ(missing.GetLastErrorParams().GetMessageCode(), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
    EXPECT_FALSE(missing.Reload());
}

}  // namespace
