// VIniFileKey and its store: lazy loading, typed reads, "Is Session",
// security descriptors kept as values, subkeys, iterators, and what the key
// answers to bad input.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "ConfigMessages.h"
#include "IniTestValues.h"
#include "TempFolder.h"
#include "VIniFileKey.h"
#include "VIniFileStoreFactory.h"
#include "VProfileStore.h"

namespace {

const std::string Bom = "\xEF\xBB\xBF";

VUnicodeString W(const wchar_t* text) { return VUnicodeString(text); }

bool IsFolder(const VUnicodeString& path) {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY);
}

bool IsFile(const VUnicodeString& path) {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && !(attributes & FILE_ATTRIBUTE_DIRECTORY);
}

class IniFileKey : public ::testing::Test {
protected:
    std::unique_ptr<VIniFileKey> Key(bool readOnly = false) {
        return std::make_unique<VIniFileKey>(keyFolder_, privateFolder_, readOnly, nullptr);
    }
    VUnicodeString ValuesFile() const { return VIniFileKey::ValuesFilePath(keyFolder_); }

    TempFolder folder_;
    const VUnicodeString keyFolder_ = folder_ / L"Config";
    const VUnicodeString privateFolder_ = folder_ / L"Personal";
};

// ---- loading and saving ----

TEST_F(IniFileKey, NothingIsReadBeforeTheFirstValueIsTouched) {
    const auto key = Key();
    ASSERT_TRUE(WriteWholeFile(ValuesFile(), Bom + "D:\"n\"=00000005\r\n"));
    uint32_t value = 0;
    EXPECT_TRUE(key->GetDword(W(L"n"), value));
    EXPECT_EQ(5u, value);
    // Read once: a later change on disk is not seen ...
    ASSERT_TRUE(WriteWholeFile(ValuesFile(), Bom + "D:\"n\"=00000006\r\n"));
    EXPECT_TRUE(key->GetDword(W(L"n"), value));
    EXPECT_EQ(5u, value);
    // ... until the key is reloaded.
    EXPECT_TRUE(key->Reload());
    EXPECT_TRUE(key->GetDword(W(L"n"), value));
    EXPECT_EQ(6u, value);
}

TEST_F(IniFileKey, AKeyThatWasOnlyReadLeavesItsFilesAlone) {
    // A rewrite would drop the damaged tail.
    const std::string bytes = Bom + "D:\"n\"=00000005\r\nthis is not an entry\r\nD:\"m\"=00000001\r\n";
    ASSERT_TRUE(WriteWholeFile(ValuesFile(), bytes));
    {
        const auto key = Key();
        uint32_t value = 0;
        EXPECT_TRUE(key->GetDword(W(L"n"), value));
        EXPECT_FALSE(key->GetDword(W(L"m"), value));
        EXPECT_TRUE(key->Flush());
    }
    EXPECT_EQ(bytes, ReadWholeFile(ValuesFile()));
}

TEST_F(IniFileKey, ReloadDropsUnsavedChanges) {
    {
        const auto key = Key();
        ASSERT_TRUE(key->SetDword(W(L"kept"), 1));
    }
    const auto key = Key();
    ASSERT_TRUE(key->SetDword(W(L"dropped"), 2));
    ASSERT_TRUE(key->DeleteValue(W(L"kept")));
    EXPECT_TRUE(key->Reload());
    EXPECT_EQ((TestValues{{L"kept", TestValue::Dword(1)}}), ReadAllValues(*key));
}

TEST_F(IniFileKey, SavingCreatesTheMissingFoldersOfItsFiles) {
    const VUnicodeString deepFolder = folder_ / L"a\\b\\c";
    {
        VIniFileKey key(deepFolder, folder_ / L"p\\q\\c", false, nullptr);
        ASSERT_TRUE(key.SetDword(W(L"n"), 1));
        ASSERT_TRUE(key.SetString(W(L"Password"), W(L"x")));
        EXPECT_TRUE(key.Flush());
    }
    EXPECT_EQ(Bom + "D:\"n\"=00000001\r\n", ReadWholeFile(folder_ / L"a\\b\\c.ini"));
    EXPECT_EQ(Bom + "S:\"Password\"=x\r\n", ReadWholeFile(folder_ / L"p\\q\\c.ini"));
    EXPECT_FALSE(IsFolder(deepFolder)) << "only the folder holding the file is needed";
}

TEST_F(IniFileKey, APrivateFolderEqualToTheFolderIsNoPrivateFolder) {
    {
        VIniFileKey key(keyFolder_ + L"\\", keyFolder_ + L"\\", false, nullptr);
        EXPECT_EQ(keyFolder_, key.GetFolderPath());
        EXPECT_TRUE(key.GetPrivateFolderPath().IsEmpty());
        ASSERT_TRUE(key.SetString(W(L"Password"), W(L"x")));
    }
    EXPECT_EQ(Bom + "S:\"Password\"=x\r\n", ReadWholeFile(ValuesFile()));
}

// ---- typed reads ----

TEST_F(IniFileKey, ABinaryReadIntoTooSmallABufferTellsTheSizeNeeded) {
    const auto key = Key();
    const uint8_t bytes[] = {1, 2, 3, 4, 5};
    ASSERT_TRUE(key->SetBinary(W(L"b"), bytes, sizeof bytes));
    uint8_t small[4] = {};
    size_t size = sizeof small;
    EXPECT_FALSE(key->GetBinary(W(L"b"), small, size));
    EXPECT_EQ(static_cast<DWORD>(ERROR_MORE_DATA), key->GetLastErrorParams().GetMessageCode());
    EXPECT_EQ(sizeof bytes, size);

    uint8_t large[8] = {};
    size = sizeof large;
    EXPECT_TRUE(key->GetBinary(W(L"b"), large, size));
    EXPECT_EQ(sizeof bytes, size);
    EXPECT_EQ(0, std::memcmp(bytes, large, sizeof bytes));
}

TEST_F(IniFileKey, IsSessionIsOneWheneverTheValuesFileExists) {
    uint32_t value = 7;
    {
        const auto key = Key();
        EXPECT_FALSE(key->GetDword(W(L"Is Session"), value));
        ASSERT_TRUE(key->SetDword(W(L"Is Session"), 0));
        ASSERT_TRUE(key->SetDword(W(L"is session"), 0));
        EXPECT_TRUE(key->GetDword(W(L"Is Session"), value));
        EXPECT_EQ(0u, value) << "no file yet: the table answers";
    }
    const auto key = Key();
    EXPECT_TRUE(key->GetDword(W(L"Is Session"), value));
    EXPECT_EQ(1u, value) << "the file answers, whatever it holds";
    EXPECT_TRUE(key->GetDword(W(L"is session"), value));
    EXPECT_EQ(0u, value) << "only the exact name is special";

    ASSERT_TRUE(DeleteFileW(ValuesFile().c_str()));
    ASSERT_TRUE(CreateDirectoryW(ValuesFile().c_str(), nullptr));
    const auto folderKey = Key(true);
    EXPECT_FALSE(folderKey->GetDword(W(L"Is Session"), value)) << "a folder is no values file";
}

// ---- security descriptors ----

TEST_F(IniFileKey, ASecurityDescriptorIsKeptAsItsTextForm) {
    VSecurityDescriptor written;
    ASSERT_TRUE(written.FromText({W(L"allow,0x001f01ff,S-1-5-32-544"), W(L"deny,0x00000002,S-1-1-0")}));
    {
        const auto key = Key();
        ASSERT_TRUE(key->SetSecurity(W(L"Security"), written));
    }
    const std::string file = ReadWholeFile(ValuesFile());
    EXPECT_EQ(Bom + "Z:\"Security\"=00000002\r\n allow,0x001f01ff,S-1-5-32-544\r\n deny,0x00000002,S-1-1-0\r\n",
              file);
    const auto key = Key(true);
    VSecurityDescriptor read;
    ASSERT_TRUE(key->GetSecurity(W(L"Security"), read));
    ASSERT_EQ(written.GetLength(), read.GetLength());
    EXPECT_EQ(0, std::memcmp(written.Get(), read.Get(), written.GetLength()));
}

TEST_F(IniFileKey, ASecurityDescriptorIsAlsoReadFromAValidBinaryValue) {
    VSecurityDescriptor descriptor;
    ASSERT_TRUE(descriptor.FromText({W(L"allow,0x00000001,S-1-5-18")}));
    const auto key = Key();
    ASSERT_TRUE(key->SetBinary(W(L"Good"), descriptor.Get(), descriptor.GetLength()));
    VSecurityDescriptor read;
    ASSERT_TRUE(key->GetSecurity(W(L"Good"), read));
    VArray<VUnicodeString> text;
    ASSERT_TRUE(read.ToText(text));
    EXPECT_EQ((VArray<VUnicodeString>{W(L"allow,0x00000001,S-1-5-18")}), text);

    const uint8_t garbage[] = {9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9};
    ASSERT_TRUE(key->SetBinary(W(L"Bad"), garbage, sizeof garbage));
    EXPECT_FALSE(key->GetSecurity(W(L"Bad"), read));
    EXPECT_EQ(static_cast<DWORD>(ERROR_INVALID_SECURITY_DESCR), key->GetLastErrorParams().GetMessageCode());

    ASSERT_TRUE(key->SetMultiString(W(L"BadText"), {W(L"permit,0x1,S-1-5-18")}));
    EXPECT_FALSE(key->GetSecurity(W(L"BadText"), read));
    EXPECT_EQ(static_cast<DWORD>(ERROR_INVALID_DATA), key->GetLastErrorParams().GetMessageCode());

    EXPECT_FALSE(key->GetSecurity(W(L"Missing"), read));
    EXPECT_EQ(static_cast<DWORD>(CONFIG_VALUE_ABSENT), key->GetLastErrorParams().GetMessageCode());
}

// ---- writability and bad input ----

TEST_F(IniFileKey, IsWritableFollowsTheKeyAndItsFile) {
    EXPECT_TRUE(Key()->IsWritable()) << "no file yet";
    EXPECT_FALSE(Key(true)->IsWritable());
    ASSERT_TRUE(WriteWholeFile(ValuesFile(), Bom));
    EXPECT_TRUE(Key()->IsWritable());
    ASSERT_TRUE(SetFileAttributesW(ValuesFile().c_str(), FILE_ATTRIBUTE_READONLY));
    EXPECT_FALSE(Key()->IsWritable());
    ASSERT_TRUE(SetFileAttributesW(ValuesFile().c_str(), FILE_ATTRIBUTE_NORMAL));
}

TEST_F(IniFileKey, AReadOnlyValuesFileFailsTheSaveAndStaysAsItWas) {
    const std::string bytes = Bom + "D:\"n\"=00000001\r\n";
    ASSERT_TRUE(WriteWholeFile(ValuesFile(), bytes));
    ASSERT_TRUE(SetFileAttributesW(ValuesFile().c_str(), FILE_ATTRIBUTE_READONLY));
    {
        const auto key = Key();
        ASSERT_TRUE(key->SetDword(W(L"n"), 2));
        EXPECT_FALSE(key->Flush());
        EXPECT_EQ(static_cast<DWORD>(ERROR_ACCESS_DENIED), key->GetLastErrorParams().GetMessageCode());
        EXPECT_EQ(bytes, ReadWholeFile(ValuesFile()));
        // The change is still held, and saved once the file can be written.
        uint32_t value = 0;
        EXPECT_TRUE(key->GetDword(W(L"n"), value));
        EXPECT_EQ(2u, value);
        ASSERT_TRUE(SetFileAttributesW(ValuesFile().c_str(), FILE_ATTRIBUTE_NORMAL));
        EXPECT_TRUE(key->Flush());
    }
    EXPECT_EQ(Bom + "D:\"n\"=00000002\r\n", ReadWholeFile(ValuesFile()));
}

TEST_F(IniFileKey, AFolderWhereTheValuesFileShouldBeFailsTheSave) {
    ASSERT_TRUE(CreateDirectoryW(ValuesFile().c_str(), nullptr));
    const auto key = Key();
    EXPECT_FALSE(key->IsWritable());
    ASSERT_TRUE(key->SetDword(W(L"n"), 1));
    EXPECT_FALSE(key->Flush());
    EXPECT_NE(0u, key->GetLastErrorParams().GetMessageCode());
    EXPECT_TRUE(IsFolder(ValuesFile()));
}

TEST_F(IniFileKey, AFileWhereTheParentFolderShouldBeFailsTheSave) {
    ASSERT_TRUE(WriteWholeFile(folder_ / L"Parent", "a file"));
    VIniFileKey key(folder_ / L"Parent\\Key", VUnicodeString(), false, nullptr);
    ASSERT_TRUE(key.SetDword(W(L"n"), 1));
    EXPECT_FALSE(key.Flush());
    EXPECT_NE(0u, key.GetLastErrorParams().GetMessageCode());
    EXPECT_EQ("a file", ReadWholeFile(folder_ / L"Parent"));
}

TEST_F(IniFileKey, NamesTheFormatCannotHoldAreRefusedAndChangeNothing) {
    const auto key = Key();
    ASSERT_TRUE(key->SetDword(W(L"kept"), 1));
    const wchar_t* badNames[] = {L"", L"a\"b", L"line\rbreak", L"line\nbreak"};
    for (const wchar_t* name : badNames) {
        SCOPED_TRACE(testing::PrintToString(std::wstring(name)));
        EXPECT_FALSE(key->SetDword(W(name), 1));
        EXPECT_EQ(static_cast<DWORD>(ERROR_INVALID_NAME), key->GetLastErrorParams().GetMessageCode());
        EXPECT_FALSE(key->SetString(W(name), W(L"x")));
        EXPECT_FALSE(key->SetBinary(W(name), "x", 1));
        EXPECT_FALSE(key->SetMultiString(W(name), {}));
    }
    EXPECT_FALSE(key->SetString(W(L"s"), W(L"two\r\nlines")));
    EXPECT_EQ(static_cast<DWORD>(ERROR_INVALID_DATA), key->GetLastErrorParams().GetMessageCode());
    EXPECT_FALSE(key->SetMultiString(W(L"z"), {W(L"fine"), W(L"not\nfine")}));
    EXPECT_EQ(static_cast<DWORD>(ERROR_INVALID_DATA), key->GetLastErrorParams().GetMessageCode());
    const wchar_t loneSurrogate[] = {L'a', static_cast<wchar_t>(0xD800), L'b', 0};
    EXPECT_FALSE(key->SetString(W(L"s"), W(loneSurrogate)));
    EXPECT_EQ(static_cast<DWORD>(ERROR_NO_UNICODE_TRANSLATION), key->GetLastErrorParams().GetMessageCode());
    EXPECT_FALSE(key->DeleteValue(W(L"never stored")));
    EXPECT_EQ(static_cast<DWORD>(ERROR_FILE_NOT_FOUND), key->GetLastErrorParams().GetMessageCode());

    EXPECT_EQ((TestValues{{L"kept", TestValue::Dword(1)}}), ReadAllValues(*key));
    EXPECT_TRUE(key->Flush());
    EXPECT_EQ(Bom + "D:\"kept\"=00000001\r\n", ReadWholeFile(ValuesFile()));
}

TEST_F(IniFileKey, AReadOnlyKeyRefusesChangesAndWritesNothing) {
    const auto key = Key(true);
    EXPECT_FALSE(key->SetDword(W(L"n"), 1));
    EXPECT_EQ(static_cast<DWORD>(ERROR_ACCESS_DENIED), key->GetLastErrorParams().GetMessageCode());
    EXPECT_FALSE(key->DeleteValue(W(L"n")));
    EXPECT_FALSE(key->DeleteKey(W(L"sub")));
    EXPECT_EQ(nullptr, key->OpenKey(W(L"sub"), true, nullptr)) << "opens only what exists";
    EXPECT_FALSE(IsFolder(keyFolder_ + L"\\sub"));
    EXPECT_TRUE(key->Flush()) << "nothing to save";
}

// ---- subkeys ----

TEST_F(IniFileKey, OpeningWithoutCreateNeedsAnExistingSubkey) {
    const auto key = Key();
    EXPECT_EQ(nullptr, key->OpenKey(W(L"Sessions"), false, nullptr));
    EXPECT_EQ(static_cast<DWORD>(ERROR_FILE_NOT_FOUND), key->GetLastErrorParams().GetMessageCode());
    EXPECT_FALSE(key->KeyExists(W(L"Sessions")));

    // A values file alone makes a subkey, ...
    ASSERT_TRUE(CreateDirectoryW(keyFolder_.c_str(), nullptr));
    ASSERT_TRUE(WriteWholeFile(keyFolder_ + L"\\Sessions.ini", Bom + "D:\"n\"=00000003\r\n"));
    EXPECT_TRUE(key->KeyExists(W(L"Sessions")));
    const auto sessions = key->OpenKey(W(L"Sessions"), false, nullptr);
    ASSERT_NE(nullptr, sessions);
    EXPECT_EQ((TestValues{{L"n", TestValue::Dword(3)}}), ReadAllValues(*sessions));
    // ... and so does a folder alone, but not a values file that is a folder.
    ASSERT_TRUE(CreateDirectoryW((keyFolder_ + L"\\Folder").c_str(), nullptr));
    EXPECT_TRUE(key->KeyExists(W(L"Folder")));
    ASSERT_TRUE(CreateDirectoryW((keyFolder_ + L"\\Odd.ini").c_str(), nullptr));
    EXPECT_FALSE(key->KeyExists(W(L"Odd")));
}

TEST_F(IniFileKey, CreatingASubkeyMakesItsFoldersAndMissingParents) {
    const auto key = Key();
    const auto session = key->OpenKey(W(L"Sessions\\Work\\Default"), true, nullptr);
    ASSERT_NE(nullptr, session);
    EXPECT_TRUE(IsFolder(keyFolder_ + L"\\Sessions\\Work\\Default"));
    EXPECT_TRUE(IsFolder(privateFolder_ + L"\\Sessions\\Work\\Default"));
    EXPECT_TRUE(key->KeyExists(W(L"Sessions\\Work")));
    ASSERT_TRUE(session->SetString(W(L"Host"), W(L"h")));
    ASSERT_TRUE(session->SetString(W(L"Password"), W(L"p")));
    ASSERT_TRUE(session->Flush());
    EXPECT_EQ(Bom + "S:\"Host\"=h\r\n", ReadWholeFile(keyFolder_ + L"\\Sessions\\Work\\Default.ini"));
    EXPECT_EQ(Bom + "S:\"Password\"=p\r\n", ReadWholeFile(privateFolder_ + L"\\Sessions\\Work\\Default.ini"));
}

TEST_F(IniFileKey, ASubkeyThatCannotBeCreatedIsReturnedWithTheReason) {
    ASSERT_TRUE(WriteWholeFile(keyFolder_, "a file where the key's folder should be"));
    const auto key = Key();
    const auto sub = key->OpenKey(W(L"Sub"), true, nullptr);
    ASSERT_NE(nullptr, sub);
    EXPECT_NE(0u, sub->GetLastErrorParams().GetMessageCode());
}

TEST_F(IniFileKey, SubkeyNamesThatAreNoPlainPathAreRefused) {
    const auto key = Key();
    const wchar_t* badNames[] = {L"",     L"..",      L".",    L"a\\..\\b", L"a/b",   L"\\a", L"a\\",
                                 L"a:b",  L"a*",      L"a?",   L"a|b",      L"a<b>",  L"a\"", L"trailing.",
                                 L"blank ", L"CON",   L"nul.txt", L"com1",  L"LPT9"};
    for (const wchar_t* name : badNames) {
        SCOPED_TRACE(testing::PrintToString(std::wstring(name)));
        EXPECT_EQ(nullptr, key->OpenKey(W(name), true, nullptr));
        EXPECT_EQ(static_cast<DWORD>(ERROR_INVALID_NAME), key->GetLastErrorParams().GetMessageCode());
        EXPECT_FALSE(key->KeyExists(W(name)));
        EXPECT_FALSE(key->DeleteKey(W(name)));
    }
    EXPECT_FALSE(IsFolder(keyFolder_)) << "nothing was created";
    EXPECT_FALSE(IsFolder(folder_ / L"b"));
    const wchar_t* goodNames[] = {L"Default", L"a.b", L" lead", L"COM10", L"Console", L"x\\y"};
    for (const wchar_t* name : goodNames) EXPECT_TRUE(VIniFileKey::IsValidSubkeyName(W(name))) << name;
}

TEST_F(IniFileKey, DeletingASubkeyRemovesEverythingBelowIt) {
    const auto key = Key();
    {
        const auto session = key->OpenKey(W(L"Sessions\\Work\\Default"), true, nullptr);
        ASSERT_TRUE(session->SetString(W(L"Password"), W(L"p")));
        ASSERT_TRUE(session->SetString(W(L"Host"), W(L"h")));
    }
    {
        const auto work = key->OpenKey(W(L"Sessions\\Work"), false, nullptr);
        ASSERT_TRUE(work->SetDword(W(L"Is Expanded"), 1));
    }
    ASSERT_TRUE(IsFile(keyFolder_ + L"\\Sessions\\Work.ini"));
    EXPECT_TRUE(key->DeleteKey(W(L"Sessions\\Work")));
    EXPECT_FALSE(key->KeyExists(W(L"Sessions\\Work")));
    EXPECT_FALSE(IsFile(keyFolder_ + L"\\Sessions\\Work.ini"));
    EXPECT_FALSE(IsFolder(keyFolder_ + L"\\Sessions\\Work"));
    EXPECT_FALSE(IsFolder(privateFolder_ + L"\\Sessions\\Work"));
    EXPECT_TRUE(IsFolder(keyFolder_ + L"\\Sessions"));

    EXPECT_FALSE(key->DeleteKey(W(L"Sessions\\Work")));
    EXPECT_EQ(static_cast<DWORD>(ERROR_FILE_NOT_FOUND), key->GetLastErrorParams().GetMessageCode());
}

TEST_F(IniFileKey, ASubkeyHoldingAReadOnlyFileIsNotForcedAway) {
    const auto key = Key();
    {
        const auto sub = key->OpenKey(W(L"Sub\\Inner"), true, nullptr);
        ASSERT_TRUE(sub->SetDword(W(L"n"), 1));
    }
    const VUnicodeString locked = keyFolder_ + L"\\Sub\\Inner.ini";
    ASSERT_TRUE(SetFileAttributesW(locked.c_str(), FILE_ATTRIBUTE_READONLY));
    EXPECT_FALSE(key->DeleteKey(W(L"Sub")));
    EXPECT_EQ(static_cast<DWORD>(ERROR_ACCESS_DENIED), key->GetLastErrorParams().GetMessageCode());
    EXPECT_TRUE(IsFile(locked));
    ASSERT_TRUE(SetFileAttributesW(locked.c_str(), FILE_ATTRIBUTE_NORMAL));
}

// ---- iterators ----

std::vector<std::pair<std::wstring, uint32_t>> List(VProfilePrivateKey& key, bool values) {
    std::vector<std::pair<std::wstring, uint32_t>> entries;
    const auto iterator = key.CreatePrivateKeyIterator(values);
    VUnicodeString name;
    uint32_t kind = 0;
    while (iterator->Next(name, kind)) entries.emplace_back(name.c_str(), kind);
    return entries;
}

TEST_F(IniFileKey, TheValueIteratorListsStoredValuesByNameWithTheirKinds) {
    const auto key = Key();
    ASSERT_TRUE(key->SetMultiString(W(L"zeta"), {}));
    ASSERT_TRUE(key->SetDword(W(L"Beta"), 1));
    ASSERT_TRUE(key->SetString(W(L"Password"), W(L"p")));
    ASSERT_TRUE(key->SetBinary(W(L"alpha"), "", 0));
    ASSERT_TRUE(key->SetString(W(L"gone"), W(L"g")));
    ASSERT_TRUE(key->DeleteValue(W(L"gone")));
    ASSERT_TRUE(key->SetDword(W(L"Beta"), 2));
    const std::vector<std::pair<std::wstring, uint32_t>> expected{
        {L"Beta", ProfileDword}, {L"Password", ProfileString}, {L"alpha", ProfileBinary}, {L"zeta", ProfileMultiString}};
    EXPECT_EQ(expected, List(*key, true));
    EXPECT_TRUE(List(*key, false).empty()) << "values are no subkeys";
}

TEST_F(IniFileKey, TheSubkeyIteratorListsFoldersAndValuesFilesOnce) {
    const auto key = Key();
    ASSERT_TRUE(key->SetDword(W(L"a value"), 1));
    for (const wchar_t* folder : {L"Both", L"FolderOnly", L"Odd.ini"})
        ASSERT_NE(nullptr, key->OpenKey(W(folder), true, nullptr));
    ASSERT_TRUE(WriteWholeFile(keyFolder_ + L"\\Both.ini", Bom));
    ASSERT_TRUE(WriteWholeFile(keyFolder_ + L"\\fileOnly.INI", Bom));
    ASSERT_TRUE(WriteWholeFile(keyFolder_ + L"\\notes.txt", "not a key"));
    ASSERT_TRUE(WriteWholeFile(keyFolder_ + L"\\.ini", "no name"));
    const std::vector<std::pair<std::wstring, uint32_t>> expected{
        {L"Both", ProfileSubkey}, {L"fileOnly", ProfileSubkey}, {L"FolderOnly", ProfileSubkey},
        {L"Odd.ini", ProfileSubkey}};
    const auto listed = List(*key, false);
    EXPECT_EQ(expected, listed);
    for (const auto& [name, kind] : listed) EXPECT_TRUE(IsSubkeyKind(kind));

    VUnicodeString name;
    const auto iterator = key->CreatePrivateKeyIterator(false);
    EXPECT_TRUE(iterator->Next(name));
    EXPECT_EQ(W(L"Both"), name);
}

TEST_F(IniFileKey, AFolderThatCannotBeListedListsNothingAndSaysWhy) {
    ASSERT_TRUE(WriteWholeFile(keyFolder_, "a file, not a folder"));
    const auto key = Key();
    EXPECT_TRUE(List(*key, false).empty());
    EXPECT_NE(0u, key->GetLastErrorParams().GetMessageCode());
}

// ---- the store ----

TEST_F(IniFileKey, TheProcessWideFactoryServesStoresOnTheConfigurationFolder) {
    VIniFileStoreFactory factory(keyFolder_, privateFolder_);
    SetIniFileStoreFactory(&factory);
    EXPECT_EQ(&factory, CurrentProfileStoreFactory());
    {
        VProfileStore store;
        VProfileKey session(store.GetRootKey(), W(L"Sessions\\Default"), true);
        ASSERT_TRUE(session.IsOpen());
        EXPECT_TRUE(session.SetString(W(L"Host"), W(L"example.org")));
        EXPECT_TRUE(session.SetString(W(L"Username"), W(L"me")));
    }
    {
        VProfileStore store(true);
        VProfileKey session(store.GetRootKey(), W(L"Sessions\\Default"), false);
        ASSERT_TRUE(session.IsOpen());
        uint32_t isSession = 0;
        EXPECT_TRUE(session.GetDword(W(L"Is Session"), isSession));
        EXPECT_EQ(1u, isSession);
        VUnicodeString text;
        EXPECT_TRUE(session.GetString(W(L"Username"), text));
        EXPECT_EQ(W(L"me"), text);
        EXPECT_FALSE(session.SetString(W(L"Host"), W(L"other"))) << "a read-only store";
        VProfileKey missing(store.GetRootKey(), W(L"Sessions\\Missing"), true);
        EXPECT_FALSE(missing.IsOpen());
    }
    SetIniFileStoreFactory(nullptr);
    EXPECT_EQ(Bom + "S:\"Host\"=example.org\r\n", ReadWholeFile(keyFolder_ + L"\\Sessions\\Default.ini"));
    EXPECT_EQ(Bom + "S:\"Username\"=me\r\n", ReadWholeFile(privateFolder_ + L"\\Sessions\\Default.ini"));
}

}  // namespace
