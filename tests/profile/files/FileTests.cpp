// VFile against real files: open options, positioning, temporary names,
// folder chains and byte-range locks seen from another process.
#include <gtest/gtest.h>

#include <string>

#include "ChildProcess.h"
#include "FileSystem.h"
#include "ProfileProbe.h"
#include "ProgramFolder.h"
#include "TempFolder.h"
#include "VFile.h"
#include "Win32Handle.h"

#include <aclapi.h>  // after windows.h
#include <sddl.h>

namespace {

constexpr DWORD ReadWrite = GENERIC_READ | GENERIC_WRITE;
constexpr DWORD ShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

// Wine keeps a descriptor as the file's Unix mode: rights, not exact entries, are compared.
ACCESS_MASK UserRights(const VUnicodeString& path, const VUnicodeString& user) {
    PACL dacl = nullptr;
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    if (GetNamedSecurityInfoW(path.c_str(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION, nullptr, nullptr, &dacl, nullptr,
                              &descriptor) != ERROR_SUCCESS)
        return 0;
    const LocalMemory descriptorOwner(descriptor);
    if (!dacl) return 0;
    PSID userSid = nullptr;
    if (!ConvertStringSidToSidW(user.c_str(), &userSid)) return 0;
    const LocalMemory sidOwner(userSid);
    ACCESS_MASK rights = 0;
    for (WORD i = 0; i < dacl->AceCount; ++i) {
        void* ace = nullptr;
        if (!GetAce(dacl, i, &ace)) return 0;
        const ACCESS_ALLOWED_ACE* entry = static_cast<const ACCESS_ALLOWED_ACE*>(ace);
        if (entry->Header.AceType == ACCESS_ALLOWED_ACE_TYPE &&
            EqualSid(const_cast<DWORD*>(&entry->SidStart), userSid))
            rights |= entry->Mask;
    }
    GENERIC_MAPPING mapping = {FILE_GENERIC_READ, FILE_GENERIC_WRITE, FILE_GENERIC_EXECUTE, FILE_ALL_ACCESS};
    MapGenericMask(&rights, &mapping);
    return rights;
}

long ProbeLock(const VUnicodeString& file, uint64_t offset, uint64_t length, bool exclusive) {
    VUnicodeString arguments;
    arguments.FormatPrintf(MAX_PATH + 64, L"lock \"%ls\" %llu %llu %ls", file.c_str(), offset, length,
                           exclusive ? L"exclusive" : L"shared");
    return ChildProcess(GetPathBesideProgram(L"profile_probe.exe"), arguments).Wait(30000);
}

class FileTest : public ::testing::Test {
protected:
    TempFolder folder_;
};

TEST_F(FileTest, OpenPassesTheShareModeAndAFailureLeavesTheFileClosed) {
    VFile file;
    const VUnicodeString missing = folder_ / L"missing.ini";
    EXPECT_FALSE(file.Open(missing, GENERIC_READ, OPEN_EXISTING));
    EXPECT_EQ(static_cast<DWORD>(ERROR_FILE_NOT_FOUND), GetLastError());
    EXPECT_FALSE(file.IsOpen());
    EXPECT_EQ(missing, file.GetFileName());

    const VUnicodeString name = folder_ / L"shared.ini";
    file.SetShareMode(0);
    ASSERT_TRUE(file.Open(name, ReadWrite, CREATE_ALWAYS));
    VFile second;
    second.SetShareMode(ShareAll);
    EXPECT_FALSE(second.Open(name, GENERIC_READ, OPEN_EXISTING));
    EXPECT_EQ(static_cast<DWORD>(ERROR_SHARING_VIOLATION), GetLastError());
    file.SetShareMode(ShareAll);
    ASSERT_TRUE(file.Open(name, ReadWrite, OPEN_EXISTING)) << "closes the file held before";
    EXPECT_TRUE(second.Open(name, ReadWrite, OPEN_EXISTING));

    SetLastError(ERROR_LOCK_VIOLATION);
    file.Close();
    EXPECT_EQ(static_cast<DWORD>(ERROR_LOCK_VIOLATION), GetLastError()) << "closing keeps the last error";
}

TEST_F(FileTest, SeekTruncateAndRawInputOutput) {
    VFile file;
    ASSERT_TRUE(file.Open(folder_ / L"data.bin", ReadWrite, CREATE_NEW));
    ASSERT_TRUE(file.WriteBytes("0123456789", 10));
    ASSERT_TRUE(file.Truncate(4));
    uint64_t size = 0;
    ASSERT_TRUE(file.GetSize(size));
    EXPECT_EQ(4u, size);
    uint64_t position = 99;
    ASSERT_TRUE(file.Seek(0, FILE_CURRENT, &position));
    EXPECT_EQ(4u, position) << "truncating leaves the pointer at the cut";

    ASSERT_TRUE(file.Seek(-3, FILE_END, &position));
    EXPECT_EQ(1u, position);
    char buffer[8] = {};
    DWORD got = 0;
    ASSERT_TRUE(file.ReadBytes(buffer, sizeof buffer, got));
    EXPECT_EQ("123", std::string(buffer, got));
    ASSERT_TRUE(file.ReadBytes(buffer, sizeof buffer, got));
    EXPECT_EQ(0u, got) << "the end of the file reads as no bytes";
}

TEST_F(FileTest, TemporaryNamesCountInUpperCaseHexadecimal) {
    const VUnicodeString prefix = folder_ / L"ini";
    VFile files[12];
    for (VFile& file : files) ASSERT_TRUE(file.OpenUniqueTemporary(prefix));
    for (size_t i = 0; i < 12; ++i)
        EXPECT_EQ(prefix + std::wstring(1, L"0123456789AB"[i]).c_str() + L".tmp", files[i].GetFileName());

    files[3].Close();
    ASSERT_TRUE(DeleteFileW((prefix + L"3.tmp").c_str()));
    VFile again;
    ASSERT_TRUE(again.OpenUniqueTemporary(prefix));
    EXPECT_EQ(prefix + L"3.tmp", again.GetFileName());
    EXPECT_TRUE(again.WriteBytes("x", 1)) << "opened for writing";

    EXPECT_FALSE(again.OpenUniqueTemporary(folder_ / L"absent\\ini"));
    EXPECT_EQ(static_cast<DWORD>(ERROR_PATH_NOT_FOUND), GetLastError());
    EXPECT_FALSE(again.IsOpen());
}

TEST_F(FileTest, FolderChainCreatesEveryMissingParentAndRefusesAFileInTheWay) {
    for (const wchar_t* path : {L"a\\b/c\\d", L"a\\b/c\\d", L"a\\b\\", L"x\\y\\\\"})
        EXPECT_TRUE(CreateFolderChain(folder_ / path)) << path;
    for (const wchar_t* made : {L"a\\b\\c\\d", L"x\\y"})
        EXPECT_TRUE(GetFileAttributesW((folder_ / made).c_str()) & FILE_ATTRIBUTE_DIRECTORY) << made;
    EXPECT_TRUE(CreateFolderChain(VUnicodeString(L"C:\\"))) << "a root is never created";

    ASSERT_TRUE(WriteWholeFile(folder_ / L"plain", "x"));
    EXPECT_FALSE(CreateFolderChain(folder_ / L"plain"));
    EXPECT_EQ(static_cast<DWORD>(ERROR_ALREADY_EXISTS), GetLastError());
    EXPECT_FALSE(CreateFolderChain(folder_ / L"plain\\below"));
    EXPECT_EQ("x", ReadWholeFile(folder_ / L"plain")) << "the file is left as it was";
}

TEST_F(FileTest, CreationAppliesTheHeldDescriptor) {
    VUnicodeString user;
    ASSERT_TRUE(GetCurrentUserSidString(user));
    VSecurityDescriptor readOnly;
    ASSERT_TRUE(readOnly.FromText({VUnicodeString(L"allow,0x001200a9,") + user}));
    ASSERT_TRUE(CreateFolderChain(folder_ / L"open"));
    ASSERT_TRUE(CreateFolderChain(folder_ / L"open\\closed", &readOnly));
    EXPECT_TRUE(UserRights(folder_ / L"open", user) & FILE_ADD_FILE);
    EXPECT_FALSE(UserRights(folder_ / L"open\\closed", user) & FILE_ADD_FILE);
    EXPECT_TRUE(UserRights(folder_ / L"open\\closed", user) & FILE_LIST_DIRECTORY);

    VFile file;
    file.SetSecurityDescriptor(&readOnly);
    readOnly.Clear();  // the file keeps its own copy
    ASSERT_TRUE(file.Open(folder_ / L"secure.ini", ReadWrite, CREATE_NEW));
    EXPECT_TRUE(file.WriteBytes("x", 1)) << "the creating handle has the access it asked for";
    EXPECT_FALSE(UserRights(folder_ / L"secure.ini", user) & FILE_WRITE_DATA);
    EXPECT_TRUE(UserRights(folder_ / L"secure.ini", user) & FILE_READ_DATA);
    file.SetSecurityDescriptor(nullptr);
    ASSERT_TRUE(file.Open(folder_ / L"plain.ini", ReadWrite, CREATE_NEW));
    EXPECT_TRUE(UserRights(folder_ / L"plain.ini", user) & FILE_WRITE_DATA);
}

TEST_F(FileTest, LocksAreSeenByAnotherProcess) {
    const VUnicodeString name = folder_ / L"locked.ini";
    ASSERT_TRUE(WriteWholeFile(name, "header and more"));
    VFile file;
    file.SetShareMode(ShareAll);  // as the file store holds it
    ASSERT_TRUE(file.Open(name, ReadWrite, OPEN_EXISTING));

    constexpr uint64_t Distant = 0x100000000ull;  // the high halves must be kept
    constexpr long No = ProbeRefused;
    const struct {
        uint64_t offset, length;
        bool exclusive;
        struct Probe {
            uint64_t offset, length;
            bool exclusive;
            long expected;
        } probes[3];
    } cases[] = {
        {0, 4, false, {{0, 4, false, 0}, {0, 4, true, No}, {4, 4, true, 0}}},
        {0, 4, true, {{0, 4, false, No}, {2, 1, true, No}, {4, 4, true, 0}}},
        {Distant, 4, true, {{Distant, 4, false, No}, {0, 4, true, 0}, {Distant + 4, 1, true, 0}}},
        {0, Distant + 8, true, {{Distant + 4, 2, false, No}, {0, 1, false, No}, {Distant + 8, 1, true, 0}}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(::testing::Message() << "held " << c.offset << "+" << c.length << (c.exclusive ? " exclusive" : " shared"));
        ASSERT_TRUE(file.Lock(c.offset, c.length, c.exclusive));
        for (const auto& probe : c.probes)
            EXPECT_EQ(probe.expected, ProbeLock(name, probe.offset, probe.length, probe.exclusive))
                << "probe " << probe.offset << "+" << probe.length;
        ASSERT_TRUE(file.Unlock(c.offset, c.length));
        EXPECT_EQ(0, ProbeLock(name, c.offset, c.length, true)) << "released";
    }
    EXPECT_FALSE(file.Unlock(0, 4)) << "nothing is locked any more";
}

}  // namespace
