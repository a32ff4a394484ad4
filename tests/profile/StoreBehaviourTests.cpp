// What callers may rely on whichever back end keeps their settings, checked
// through a store opened afresh so that a back end is held to what it persisted.
#include <map>
#include <string>
#include <vector>

#include "StoreBehaviour.h"
#include "TestValues.h"

namespace {

using Entries = std::map<std::wstring, uint32_t>;

Entries List(VProfileKey& key, bool values) {
    Entries entries;
    VProfileKeyIterator iterator(key, values);
    VUnicodeString name;
    uint32_t kind = 0;
    while (iterator.Next(name, kind)) entries[name.c_str()] = kind;
    return entries;
}

void ExpectAbsent(VProfileKey& key, const wchar_t* name) { ExpectValueAbsent(key.GetLastErrorParams(), name); }

bool ReadAs(VProfileKey& key, const wchar_t* name, uint32_t kind) {
    uint32_t number = 42;
    VUnicodeString text;
    uint32_t size = 0;
    VArray<VUnicodeString> strings;
    switch (kind) {
    case ProfileDword: {
        const bool read = key.GetDword(name, number);
        EXPECT_TRUE(read || number == 42u) << "a failed read changed the number";
        return read;
    }
    case ProfileString: return key.GetString(name, text);
    case ProfileBinary: return key.GetBinary(name, nullptr, size);
    default: return key.GetMultiString(name, strings);
    }
}

const VArray<VUnicodeString> List3{L"one", L"two words", L"\u00fcber \u20ac"};
const BYTE Bytes[] = {0, 1, 0x7F, 0x80, 0xFF, 0};
const std::vector<uint8_t> Large(10000, 0x5A);  // beyond any buffer a listing keeps for values

TEST_P(StoreBehaviour, EveryKindIsReadBackAndListedAsWrittenOverwrittenOrDeleted) {
    {
        auto store = Open();
        VProfileKey missing(store->GetRootKey(), L"values", false);
        EXPECT_FALSE(missing.IsOpen()) << "opened only when it exists or is created";
        EXPECT_FALSE(missing.SetDword(L"value", 1));
        EXPECT_FALSE(store->GetRootKey().KeyExists(L"values"));
        VProfileKey key(store->GetRootKey(), L"values", true);
        ASSERT_TRUE(key.IsOpen());
        ASSERT_TRUE(key.SetDword(L"zero", 0));
        ASSERT_TRUE(key.SetDword(L"max", 0xFFFFFFFF));
        ASSERT_TRUE(key.SetString(L"text", L"Gr\u00fc\u00dfe = \"quoted\" ; not a comment"));
        ASSERT_TRUE(key.SetString(L"empty", L""));
        ASSERT_TRUE(key.SetBinary(L"bytes", Bytes, sizeof Bytes));
        ASSERT_TRUE(key.SetBinary(L"no bytes", Bytes, 0));
        ASSERT_TRUE(key.SetMultiString(L"list", List3));
        ASSERT_TRUE(key.SetBinary(L"large", Large.data(), static_cast<uint32_t>(Large.size())));
        ASSERT_TRUE(key.SetString(L"max", L"first"));
        ASSERT_TRUE(key.SetDword(L"max", 0xFFFFFFFF));  // only the last form stays
        ASSERT_TRUE(key.SetDword(L"doomed", 1));
        ASSERT_TRUE(key.DeleteValue(L"doomed"));
        EXPECT_FALSE(ReadAs(key, L"doomed", ProfileDword));
        ExpectAbsent(key, L"doomed");
        VProfileKey first(key, L"first", true);
        VProfileKey second(key, L"second", true);
        ASSERT_TRUE(second.SetString(L"name", L"value"));
    }
    auto store = Open();
    VProfileKey key(store->GetRootKey(), L"values", false);
    ASSERT_TRUE(key.IsOpen());
    EXPECT_EQ(ReadAllValues(*key.GetPrivateKey()),
              (TestValues{{L"zero", D(0)},
                          {L"max", D(0xFFFFFFFF)},
                          {L"text", S(L"Gr\u00fc\u00dfe = \"quoted\" ; not a comment")},
                          {L"empty", S(L"")},
                          {L"bytes", B({0, 1, 0x7F, 0x80, 0xFF, 0})},
                          {L"no bytes", B({})},
                          {L"list", Z({L"one", L"two words", L"\u00fcber \u20ac"})},
                          {L"large", B(Large)}}));
    EXPECT_FALSE(ReadAs(key, L"max", ProfileString));
    uint32_t size = 99;  // without a buffer, the size alone
    ASSERT_TRUE(key.GetBinary(L"bytes", nullptr, size));
    EXPECT_EQ(size, sizeof Bytes);
    std::wstring subkeys;
    for (const auto& [name, kind] : List(key, false)) {
        subkeys += name + L";";
        EXPECT_TRUE(IsSubkeyKind(kind)) << "kind " << kind;
    }
    EXPECT_EQ(subkeys, L"first;second;");
    EXPECT_TRUE(key.KeyExists(L"second"));
    VProfileKey second(key, L"second", false);
    EXPECT_EQ(ReadAllValues(*second.GetPrivateKey()), (TestValues{{L"name", S(L"value")}}));
}

TEST_P(StoreBehaviour, AMissingValueOrOneOfAnotherKindIsAbsent) {
    auto store = Open();
    VProfileKey& root = store->GetRootKey();
    ASSERT_TRUE(root.SetString(L"text", L"12"));
    ASSERT_TRUE(root.SetDword(L"number", 12));
    ASSERT_TRUE(root.SetBinary(L"bytes", Bytes, sizeof Bytes));
    ASSERT_TRUE(root.SetMultiString(L"list", List3));
    const struct {
        const wchar_t* name;
        uint32_t kind;
    } reads[] = {{L"missing", ProfileDword},  {L"missing", ProfileString}, {L"missing", ProfileBinary},
                 {L"missing", ProfileMultiString}, {L"text", ProfileDword},    {L"number", ProfileString},
                 {L"list", ProfileString},    {L"bytes", ProfileMultiString}, {L"text", ProfileBinary}};
    for (const auto& read : reads) {
        SCOPED_TRACE(testing::Message() << "kind " << read.kind << " of " << read.name);
        EXPECT_FALSE(ReadAs(root, read.name, read.kind));
        ExpectAbsent(root, read.name);
    }
    VProfileKeyIterator iterator(root, true);  // rewriting each value while listing them
    VUnicodeString name;
    while (iterator.Next(name)) ASSERT_TRUE(root.SetDword(name, 2));
    EXPECT_EQ(ReadAllValues(*root.GetPrivateKey()),
              (TestValues{{L"text", D(2)}, {L"number", D(2)}, {L"bytes", D(2)}, {L"list", D(2)}}));
}

TEST_P(StoreBehaviour, DeleteKeyRemovesEverythingBelowIt) {
    {
        auto store = Open();
        VProfileKey& root = store->GetRootKey();
        VProfileKey doomed(root, L"doomed", true);
        VProfileKey inner(doomed, L"inner", true);
        VProfileKey innermost(inner, L"innermost", true);
        ASSERT_TRUE(innermost.SetDword(L"deep", 3));
        ASSERT_TRUE(inner.SetDword(L"middle", 2));
        ASSERT_TRUE(doomed.SetDword(L"top", 1));
        VProfileKey kept(root, L"kept", true);
        ASSERT_TRUE(kept.SetDword(L"value", 4));
    }
    {
        auto store = Open();
        ASSERT_TRUE(store->GetRootKey().DeleteKey(L"doomed"));
        EXPECT_FALSE(store->GetRootKey().KeyExists(L"doomed"));
    }
    auto store = Open();
    VProfileKey& root = store->GetRootKey();
    EXPECT_EQ(List(root, false).count(L"doomed"), 0u);
    VProfileKey again(root, L"doomed", true);
    ASSERT_TRUE(again.IsOpen());
    EXPECT_TRUE(List(again, true).empty());
    EXPECT_TRUE(List(again, false).empty());
    VProfileKey kept(root, L"kept", false);
    EXPECT_EQ(ReadAllValues(*kept.GetPrivateKey()), (TestValues{{L"value", D(4)}}));
}

TEST_P(StoreBehaviour, AReadOnlyStoreReadsButNeverWrites) {
    {
        auto store = Open(true);  // on the empty place: nothing to find, nothing made
        EXPECT_FALSE(ReadAs(store->GetRootKey(), L"value", ProfileDword));
        ExpectAbsent(store->GetRootKey(), L"value");
        EXPECT_FALSE(store->GetRootKey().SetDword(L"value", 9));
        EXPECT_TRUE(List(store->GetRootKey(), true).empty());
    }
    {
        auto store = Open();
        ASSERT_TRUE(store->GetRootKey().SetDword(L"value", 1));
        VProfileKey child(store->GetRootKey(), L"child", true);
        ASSERT_TRUE(child.SetDword(L"value", 2));
    }
    {
        auto store = Open(true);
        EXPECT_TRUE(store->IsReadOnly());
        VProfileKey& root = store->GetRootKey();
        EXPECT_FALSE(root.IsWritable());
        EXPECT_EQ(ReadAllValues(*root.GetPrivateKey()), (TestValues{{L"value", D(1)}}));
        EXPECT_FALSE(root.SetDword(L"value", 9));
        EXPECT_FALSE(root.DeleteValue(L"value"));
        EXPECT_FALSE(root.DeleteKey(L"child"));
        VProfileKey child(root, L"child", false);
        ASSERT_TRUE(child.IsOpen());
        EXPECT_FALSE(child.IsWritable());
        EXPECT_FALSE(child.SetDword(L"value", 9));
        VProfileKey created(root, L"created", true);
        EXPECT_FALSE(created.IsOpen());
    }
    auto store = Open();
    VProfileKey& root = store->GetRootKey();
    EXPECT_TRUE(root.IsWritable());
    EXPECT_EQ(ReadAllValues(*root.GetPrivateKey()), (TestValues{{L"value", D(1)}}));
    EXPECT_TRUE(root.KeyExists(L"child"));
    EXPECT_FALSE(root.KeyExists(L"created"));
}

TEST_P(StoreBehaviour, ASubkeyOutlivesItsParentAndStoreAndFlushesItsWrites) {
    std::unique_ptr<VProfileKey> child;
    {
        auto store = Open();
        VProfileKey parent(store->GetRootKey(), L"parent", true);
        child = std::make_unique<VProfileKey>(parent, L"child", true);
    }
    ASSERT_TRUE(child->IsOpen());
    ASSERT_TRUE(child->SetString(L"late", L"still here"));
    ASSERT_TRUE(child->Flush());
    auto store = Open(true);
    VProfileKey parent(store->GetRootKey(), L"parent", false);
    VProfileKey reopened(parent, L"child", false);
    EXPECT_EQ(ReadAllValues(*reopened.GetPrivateKey()), (TestValues{{L"late", S(L"still here")}}));
}

INSTANTIATE_TEST_SUITE_P(BackEnds, StoreBehaviour, ::testing::Values(RegistryBackEnd(), IniFileBackEnd()),
                         BackEndName);

}  // namespace
