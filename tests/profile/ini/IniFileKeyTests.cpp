// VIniFileKey beyond what every back end shares: loading, "Is Session",
// descriptors as values, subkeys, refused input and saves that cannot be done.
#include <gtest/gtest.h>

#include <aclapi.h>

#include <functional>
#include <map>
#include <string>

#include "ConfigMessages.h"
#include "TestValues.h"
#include "TempFolder.h"
#include "VIniFileKey.h"
#include "VIniFileStoreFactory.h"
#include "VProfileStore.h"
#include "Win32Handle.h"

namespace {

const std::string Bom = "\xEF\xBB\xBF";

bool IsFolder(const VUnicodeString& path) {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY);
}

DWORD LastCode(VProfilePrivateKey& key) { return key.GetLastErrorParams().GetMessageCode(); }

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

TEST_F(IniFileKey, FilesAreReadOnFirstUseAndOnReloadAndAreNotRewrittenByReading) {
    const auto key = Key();
    const std::string bytes = Bom + "D:\"n\"=00000005\r\nthis is not an entry\r\nD:\"m\"=00000001\r\n";
    ASSERT_TRUE(WriteWholeFile(ValuesFile(), bytes));
    EXPECT_EQ((TestValues{{L"n", D(5)}}), ReadAllValues(*key));
    EXPECT_TRUE(key->Flush());
    EXPECT_EQ(bytes, ReadWholeFile(ValuesFile()));
    ASSERT_TRUE(WriteWholeFile(ValuesFile(), Bom + "D:\"n\"=00000006\r\n"));
    ASSERT_TRUE(key->SetDword(L"dropped", 2));
    EXPECT_EQ((TestValues{{L"n", D(5)}, {L"dropped", D(2)}}), ReadAllValues(*key));
    EXPECT_TRUE(key->Reload()) << "drops unsaved changes";
    EXPECT_EQ((TestValues{{L"n", D(6)}}), ReadAllValues(*key));
}

TEST_F(IniFileKey, SavingCreatesOnlyTheFoldersHoldingItsFiles) {
    const VUnicodeString deepFolder = folder_ / L"a\\b\\c";
    {
        VIniFileKey key(deepFolder, folder_ / L"p\\q\\c", false, nullptr);
        ASSERT_TRUE(key.SetDword(L"n", 1));
        ASSERT_TRUE(key.SetString(L"Password", L"x"));
        EXPECT_TRUE(key.Flush());
    }
    EXPECT_EQ(Bom + "D:\"n\"=00000001\r\n", ReadWholeFile(folder_ / L"a\\b\\c.ini"));
    EXPECT_EQ(Bom + "S:\"Password\"=x\r\n", ReadWholeFile(folder_ / L"p\\q\\c.ini"));
    EXPECT_FALSE(IsFolder(deepFolder));
}

TEST_F(IniFileKey, APrivateFolderEqualToTheFolderIsNoPrivateFolder) {
    {
        VIniFileKey key(keyFolder_ + L"\\", keyFolder_ + L"\\", false, nullptr);
        EXPECT_EQ(keyFolder_, key.GetFolderPath());
        ASSERT_TRUE(key.SetString(L"Password", L"x"));
    }
    EXPECT_EQ(Bom + "S:\"Password\"=x\r\n", ReadWholeFile(ValuesFile()));
}

TEST_F(IniFileKey, IsSessionIsOneWheneverTheValuesFileExists) {
    uint32_t value = 7;
    {
        const auto key = Key();
        EXPECT_FALSE(key->GetDword(L"Is Session", value));
        ASSERT_TRUE(key->SetDword(L"Is Session", 0));
        ASSERT_TRUE(key->SetDword(L"is session", 0));
        EXPECT_TRUE(key->GetDword(L"Is Session", value));
        EXPECT_EQ(0u, value) << "no file yet: the table answers";
    }
    const auto key = Key();
    EXPECT_TRUE(key->GetDword(L"Is Session", value));
    EXPECT_EQ(1u, value) << "the file answers, whatever it holds";
    EXPECT_TRUE(key->GetDword(L"is session", value));
    EXPECT_EQ(0u, value) << "only the exact name is special";

    ASSERT_TRUE(DeleteFileW(ValuesFile().c_str()));
    ASSERT_TRUE(CreateDirectoryW(ValuesFile().c_str(), nullptr));
    EXPECT_FALSE(Key(true)->GetDword(L"Is Session", value)) << "a folder is no values file";
}

TEST_F(IniFileKey, ASecurityDescriptorIsKeptExactlyAsTextOrAsBinary) {
    VSecurityDescriptor plain;
    ASSERT_TRUE(plain.FromText({L"allow,0x001f01ff,S-1-5-32-544", L"deny,0x00000002,S-1-1-0"}));
    VSecurityDescriptor perUser;
    ASSERT_TRUE(perUser.AssignCurrentUserAccess());
    {
        const auto key = Key();
        ASSERT_TRUE(key->SetSecurity(L"Plain", plain));
        ASSERT_TRUE(key->SetSecurity(L"Per User", perUser));
    }
    EXPECT_NE(std::string::npos,
              ReadWholeFile(ValuesFile()).find("Z:\"Plain\"=00000002\r\n allow,0x001f01ff,S-1-5-32-544\r\n"
                                               " deny,0x00000002,S-1-1-0\r\n"));
    const auto key = Key();
    for (const auto& [name, written] : {std::pair{L"Plain", &plain}, std::pair{L"Per User", &perUser}}) {
        VSecurityDescriptor read;
        ASSERT_TRUE(key->GetSecurity(VUnicodeString(name), read)) << LastCode(*key);
        EXPECT_EQ(std::string(static_cast<const char*>(written->Get()), written->GetLength()),
                  std::string(static_cast<const char*>(read.Get()), read.GetLength()));
    }
    VSecurityDescriptor read;
    ASSERT_TRUE(key->SetBinary(L"BadBinary", std::string(20, '\x09').data(), 20));
    ASSERT_TRUE(key->SetMultiString(L"BadText", {L"permit,0x1,S-1-5-18"}));
    const std::pair<const wchar_t*, DWORD> refused[] = {{L"BadBinary", ERROR_INVALID_SECURITY_DESCR},
                                                        {L"BadText", ERROR_INVALID_DATA},
                                                        {L"Missing", CONFIG_VALUE_ABSENT}};
    for (const auto& [name, code] : refused) {
        EXPECT_FALSE(key->GetSecurity(VUnicodeString(name), read)) << name;
        EXPECT_EQ(code, LastCode(*key)) << name;
    }
}

TEST_F(IniFileKey, ASaveKeepsTheFilesAccessListsAndAttributes) {
    VSecurityDescriptor perUser;
    ASSERT_TRUE(perUser.AssignCurrentUserAccess());
    const VUnicodeString files[] = {ValuesFile(), VIniFileKey::ValuesFilePath(privateFolder_)};
    const auto accessList = [](const VUnicodeString& path) {
        PSECURITY_DESCRIPTOR descriptor = nullptr;
        GetNamedSecurityInfoW(path.c_str(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION, nullptr, nullptr, nullptr,
                              nullptr, &descriptor);
        const LocalMemory owner(descriptor);
        return std::string(static_cast<const char*>(descriptor), descriptor ? GetSecurityDescriptorLength(descriptor) : 0);
    };
    std::string before[2];
    const VSecurityDescriptor* const securities[] = {&perUser, nullptr};  // made with one, then saved without
    for (const VSecurityDescriptor* security : securities) {
        {
            VIniFileKey key(keyFolder_, privateFolder_, false, security);
            ASSERT_TRUE(key.SetDword(L"n", security ? 1 : 2));
            ASSERT_TRUE(key.SetString(L"Password", VUnicodeString(security ? L"x" : L"y")));
        }
        for (int i = 0; i < 2; ++i) {
            if (security) {
                ASSERT_TRUE(SetFileAttributesW(files[i].c_str(), FILE_ATTRIBUTE_HIDDEN));
                before[i] = accessList(files[i]);
                continue;
            }
            EXPECT_EQ(before[i], accessList(files[i]));
            EXPECT_EQ(FILE_ATTRIBUTE_HIDDEN, GetFileAttributesW(files[i].c_str()) & ~FILE_ATTRIBUTE_ARCHIVE);
        }
    }
    EXPECT_EQ(Bom + "D:\"n\"=00000002\r\n", ReadWholeFile(ValuesFile()));
    WIN32_FIND_DATAW found;
    EXPECT_FALSE(FindHandle(FindFirstFileW((folder_ / L"*.tmp").c_str(), &found)));
}

TEST_F(IniFileKey, IsWritableFollowsTheFile) {
    ASSERT_TRUE(WriteWholeFile(ValuesFile(), Bom));
    EXPECT_TRUE(Key()->IsWritable());
    ASSERT_TRUE(SetFileAttributesW(ValuesFile().c_str(), FILE_ATTRIBUTE_READONLY));
    EXPECT_FALSE(Key()->IsWritable());
    ASSERT_TRUE(SetFileAttributesW(ValuesFile().c_str(), FILE_ATTRIBUTE_NORMAL));
}

using Tree = std::map<std::wstring, std::pair<int64_t, std::string>>;

Tree Snapshot(const std::wstring& folder, Tree tree = {}) {
    WIN32_FIND_DATAW entry;
    const FindHandle search(FindFirstFileW((folder + L"\\*").c_str(), &entry));
    if (!search) return tree;
    do {
        const std::wstring name = entry.cFileName;
        if (name == L"." || name == L"..") continue;
        const std::wstring path = folder + L"\\" + name;
        if (entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) {
            tree = Snapshot(path, std::move(tree));
            continue;
        }
        const int64_t size = (static_cast<int64_t>(entry.nFileSizeHigh) << 32) | entry.nFileSizeLow;
        tree[path] = {size, size < 1024 * 1024 ? ReadWholeFile(VUnicodeString(path.c_str())) : std::string()};
    } while (FindNextFileW(search.Get(), &entry));
    return tree;
}

TEST_F(IniFileKey, ASaveThatCannotBeDoneFailsAndDamagesNothing) {
    const std::string bytes = Bom + "D:\"n\"=00000001\r\n";
    const VUnicodeString privateFile = VIniFileKey::ValuesFilePath(privateFolder_);
    FileHandle held;
    struct Case {
        const char* what;
        VUnicodeString keyFolder;
        std::function<bool()> arrange;
        std::function<void()> clear;
        DWORD code;
        bool unreadable = false;  // the load failed: the key's reads say why, not "absent"
        std::function<void()> afterLoad = [] {};
    };
    const Case cases[] = {
        {"read-only values file", keyFolder_,
         [&] { return WriteWholeFile(ValuesFile(), bytes) && SetFileAttributesW(ValuesFile().c_str(), FILE_ATTRIBUTE_READONLY); },
         [&] { SetFileAttributesW(ValuesFile().c_str(), FILE_ATTRIBUTE_NORMAL); }, ERROR_ACCESS_DENIED},
        {"folder where the values file should be", folder_ / L"Other",
         [&] { return CreateDirectoryW((folder_ / L"Other.ini").c_str(), nullptr) != FALSE; },
         [&] { RemoveDirectoryW((folder_ / L"Other.ini").c_str()); }, ERROR_ACCESS_DENIED},
        {"read-only private file", keyFolder_,  // the main file must not take the secrets
         [&] {
             return WriteWholeFile(ValuesFile(), bytes) && WriteWholeFile(privateFile, Bom + "S:\"Password\"=old\r\n") &&
                    SetFileAttributesW(privateFile.c_str(), FILE_ATTRIBUTE_READONLY);
         },
         [&] { SetFileAttributesW(privateFile.c_str(), FILE_ATTRIBUTE_NORMAL); }, ERROR_ACCESS_DENIED},
        {"values file that another process had to itself at the load", keyFolder_,  // else a save wipes it
         [&] {
             held.Reset(CreateFileW(ValuesFile().c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0,
                                    nullptr));
             DWORD written = 0;
             return held && WriteFile(held.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
         },
         [] {}, ERROR_SHARING_VIOLATION, true, [&] { held.Reset(); }},
        {"values file too large to read", keyFolder_,  // sparse: its size must size nothing
         [&] {
             const FileHandle file(CreateFileW(ValuesFile().c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
             LARGE_INTEGER end;
             end.QuadPart = 1LL << 36;
             return file && SetFilePointerEx(file.Get(), end, nullptr, FILE_BEGIN) && SetEndOfFile(file.Get());
         },
         [&] { DeleteFileW(ValuesFile().c_str()); }, ERROR_FILE_TOO_LARGE, true},
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(test.what);
        ASSERT_TRUE(test.arrange());
        VIniFileKey key(test.keyFolder, privateFolder_, false, nullptr);
        ASSERT_TRUE(key.SetDword(L"n", 2));
        ASSERT_TRUE(key.SetString(L"Password", L"new"));
        test.afterLoad();
        uint32_t number = 0;
        EXPECT_FALSE(key.GetDword(L"absent", number));
        EXPECT_EQ(test.unreadable ? test.code : CONFIG_VALUE_ABSENT, LastCode(key));
        const Tree before = Snapshot(folder_.Path().c_str());
        EXPECT_FALSE(key.Flush());
        EXPECT_EQ(test.code, LastCode(key));
        EXPECT_EQ(before, Snapshot(folder_.Path().c_str()));
        test.clear();
        EXPECT_TRUE(key.Reload());
        ASSERT_TRUE(key.SetDword(L"n", 2));
        EXPECT_TRUE(key.Flush()) << LastCode(key);
        EXPECT_EQ(Bom + "D:\"n\"=00000002\r\n", ReadWholeFile(VIniFileKey::ValuesFilePath(test.keyFolder)));
        DeleteFileW(privateFile.c_str());
    }
}

TEST_F(IniFileKey, InputTheFormatCannotHoldIsRefusedAndChangesNothing) {
    const auto key = Key();
    ASSERT_TRUE(key->SetDword(L"kept", 1));
    const wchar_t loneSurrogate[] = {L'a', static_cast<wchar_t>(0xD800), L'b', 0};
    struct Case {
        const char* what;
        std::function<bool()> call;
        DWORD code;
    };
    const auto badName = [&](const wchar_t* name) {
        return key->SetDword(VUnicodeString(name), 1) || key->SetString(VUnicodeString(name), L"x") || key->SetBinary(VUnicodeString(name), "x", 1) ||
               key->SetMultiString(VUnicodeString(name), {});
    };
    const Case cases[] = {
        {"empty name", [&] { return badName(L""); }, ERROR_INVALID_NAME},
        {"quote in name", [&] { return badName(L"a\"b"); }, ERROR_INVALID_NAME},
        {"CR in name", [&] { return badName(L"line\rbreak"); }, ERROR_INVALID_NAME},
        {"LF in name", [&] { return badName(L"line\nbreak"); }, ERROR_INVALID_NAME},
        {"line break in a string", [&] { return key->SetString(L"s", L"two\r\nlines"); }, ERROR_INVALID_DATA},
        {"line break in a multi-string",
         [&] { return key->SetMultiString(L"z", {L"fine", L"not\nfine"}); }, ERROR_INVALID_DATA},
        {"lone surrogate", [&] { return key->SetString(L"s", VUnicodeString(loneSurrogate)); }, ERROR_NO_UNICODE_TRANSLATION},
        {"deleting what is absent", [&] { return key->DeleteValue(L"never stored"); }, ERROR_FILE_NOT_FOUND},
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(test.what);
        EXPECT_FALSE(test.call());
        EXPECT_EQ(test.code, LastCode(*key));
    }
    const auto readOnly = Key(true);
    EXPECT_FALSE(readOnly->SetDword(L"n", 1));
    EXPECT_EQ(static_cast<DWORD>(ERROR_ACCESS_DENIED), LastCode(*readOnly));
    EXPECT_TRUE(key->Flush());
    EXPECT_EQ(Bom + "D:\"kept\"=00000001\r\n", ReadWholeFile(ValuesFile()));
}

TEST_F(IniFileKey, SubkeyNamesThatAreNoPlainPathAreRefused) {
    const auto key = Key();
    const wchar_t* badNames[] = {L"",     L"..",      L".",    L"a\\..\\b", L"a/b",   L"\\a", L"a\\",
                                 L"a:b",  L"a*",      L"a?",   L"a|b",      L"a<b>",  L"a\"", L"trailing.",
                                 L"blank ", L"CON",   L"nul.txt", L"com1",  L"LPT9"};
    for (const wchar_t* name : badNames) {
        SCOPED_TRACE(testing::PrintToString(std::wstring(name)));
        EXPECT_EQ(nullptr, key->OpenKey(VUnicodeString(name), true, nullptr));
        EXPECT_EQ(static_cast<DWORD>(ERROR_INVALID_NAME), LastCode(*key));
        EXPECT_FALSE(key->KeyExists(VUnicodeString(name)));
        EXPECT_FALSE(key->DeleteKey(VUnicodeString(name)));
    }
    EXPECT_FALSE(IsFolder(keyFolder_)) << "nothing was created";
    EXPECT_FALSE(IsFolder(folder_ / L"b"));
    const wchar_t* goodNames[] = {L"Default", L"a.b", L" lead", L"COM10", L"Console", L"x\\y"};
    for (const wchar_t* name : goodNames) EXPECT_TRUE(VIniFileKey::IsValidSubkeyName(VUnicodeString(name))) << name;
}

TEST_F(IniFileKey, SubkeysAreFoldersAndValuesFiles) {
    const auto key = Key();
    ASSERT_TRUE(key->SetDword(L"a value", 1));
    for (const wchar_t* folder : {L"Both", L"FolderOnly", L"Odd.ini"})
        ASSERT_NE(nullptr, key->OpenKey(VUnicodeString(folder), true, nullptr));
    ASSERT_TRUE(WriteWholeFile(keyFolder_ + L"\\Both.ini", Bom));
    ASSERT_TRUE(WriteWholeFile(keyFolder_ + L"\\fileOnly.INI", Bom + "D:\"n\"=00000003\r\n"));
    ASSERT_TRUE(WriteWholeFile(keyFolder_ + L"\\notes.txt", "not a key"));
    ASSERT_TRUE(WriteWholeFile(keyFolder_ + L"\\.ini", "no name"));

    std::vector<std::wstring> listed;
    const auto iterator = key->CreatePrivateKeyIterator(false);
    VUnicodeString name;
    uint32_t kind = 0;
    while (iterator->Next(name, kind)) listed.emplace_back(name.c_str(), name.GetLength());
    EXPECT_EQ((std::vector<std::wstring>{L"Both", L"fileOnly", L"FolderOnly", L"Odd.ini"}), listed);
    EXPECT_TRUE(key->KeyExists(L"fileOnly"));
    EXPECT_FALSE(key->KeyExists(L"Odd"));
    const auto fileOnly = key->OpenKey(L"fileOnly", false, nullptr);
    ASSERT_NE(nullptr, fileOnly);
    EXPECT_EQ((TestValues{{L"n", D(3)}}), ReadAllValues(*fileOnly));
}

TEST_F(IniFileKey, AFolderThatCannotBeListedListsNothingAndSaysWhy) {
    ASSERT_TRUE(WriteWholeFile(keyFolder_, "a file, not a folder"));
    const auto key = Key();
    VUnicodeString name;
    EXPECT_FALSE(key->CreatePrivateKeyIterator(false)->Next(name));
    EXPECT_NE(0u, LastCode(*key));
    const auto sub = key->OpenKey(L"Sub", true, nullptr);
    ASSERT_NE(nullptr, sub) << "a subkey that cannot be created comes with the reason";
    EXPECT_NE(0u, LastCode(*sub));
}

TEST_F(IniFileKey, ASubkeyKeepsItsPrivateValuesUnderThePrivateFolderAndLosesThemWithIt) {
    VIniFileStoreFactory factory(keyFolder_, privateFolder_);
    SetIniFileStoreFactory(&factory);
    VProfileStore store;
    VProfileKey& key = store.GetRootKey();
    {
        VProfileKey session(key, L"Sessions\\Work\\Default", true);
        ASSERT_TRUE(session.SetString(L"Host", L"h"));
        ASSERT_TRUE(session.SetString(L"Password", L"p"));
    }
    SetIniFileStoreFactory(nullptr);
    const VUnicodeString locked = keyFolder_ + L"\\Sessions\\Work\\Default.ini";
    ASSERT_TRUE(SetFileAttributesW(locked.c_str(), FILE_ATTRIBUTE_READONLY));
    EXPECT_FALSE(key.DeleteKey(L"Sessions\\Work"));
    EXPECT_EQ(static_cast<DWORD>(ERROR_ACCESS_DENIED), key.GetLastErrorParams().GetMessageCode());
    ASSERT_TRUE(SetFileAttributesW(locked.c_str(), FILE_ATTRIBUTE_NORMAL));
    EXPECT_EQ(Bom + "S:\"Host\"=h\r\n", ReadWholeFile(locked));
    EXPECT_EQ(Bom + "S:\"Password\"=p\r\n", ReadWholeFile(privateFolder_ + L"\\Sessions\\Work\\Default.ini"));
    EXPECT_TRUE(key.DeleteKey(L"Sessions\\Work"));
    EXPECT_FALSE(IsFolder(keyFolder_ + L"\\Sessions\\Work"));
    EXPECT_FALSE(IsFolder(privateFolder_ + L"\\Sessions\\Work"));
    EXPECT_TRUE(IsFolder(keyFolder_ + L"\\Sessions"));
    EXPECT_FALSE(key.DeleteKey(L"Sessions\\Work"));
    EXPECT_EQ(static_cast<DWORD>(ERROR_FILE_NOT_FOUND), key.GetLastErrorParams().GetMessageCode());
}

}  // namespace
