// VFile against real files: open options, positioning, temporary names,
// folder chains and byte-range locks seen from another process.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "FileSystem.h"
#include "TempFolder.h"
#include "VFile.h"
#include "Win32Handle.h"

#include <sddl.h>  // after windows.h

namespace {

constexpr DWORD ReadWrite = GENERIC_READ | GENERIC_WRITE;
constexpr DWORD ShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

bool IsFolder(const VUnicodeString& path) {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY);
}

// The rights that the access list of path grants the user (allow entries
// naming the user's SID; the tests' descriptors deny nothing). Windows keeps
// the descriptor given at creation; Wine turns it into the file's Unix mode
// and reads that back, so the rights, not the exact entries, are compared.
ACCESS_MASK UserRights(const VUnicodeString& path, const VUnicodeString& user) {
    DWORD size = 0;
    GetFileSecurityW(path.c_str(), DACL_SECURITY_INFORMATION, nullptr, 0, &size);
    std::vector<BYTE> bytes(size);
    BOOL present = FALSE;
    BOOL defaulted = FALSE;
    PACL dacl = nullptr;
    if (size == 0 || !GetFileSecurityW(path.c_str(), DACL_SECURITY_INFORMATION, bytes.data(), size, &size) ||
        !GetSecurityDescriptorDacl(bytes.data(), &present, &dacl, &defaulted) || !present || !dacl)
        return 0;
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
    // Generic rights as files know them.
    GENERIC_MAPPING mapping = {FILE_GENERIC_READ, FILE_GENERIC_WRITE, FILE_GENERIC_EXECUTE, FILE_ALL_ACCESS};
    MapGenericMask(&rights, &mapping);
    return rights;
}

// Runs the lock probe beside this test program; its exit code, or -1.
int ProbeLock(const VUnicodeString& file, uint64_t offset, uint64_t length, bool exclusive) {
    wchar_t self[MAX_PATH];
    const DWORD selfLength = GetModuleFileNameW(nullptr, self, MAX_PATH);
    std::wstring folder(self, selfLength);
    folder.erase(folder.find_last_of(L'\\') + 1);
    std::wstring command = L"\"" + folder + L"file_lock_probe.exe\" \"" + file.c_str() + L"\" " +
                           std::to_wstring(offset) + L" " + std::to_wstring(length) +
                           (exclusive ? L" exclusive" : L" shared");
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process{};
    if (!CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process))
        return -1;
    const KernelHandle processOwner(process.hProcess);
    const KernelHandle threadOwner(process.hThread);
    WaitForSingleObject(process.hProcess, 30000);
    DWORD code = 0;
    return GetExitCodeProcess(process.hProcess, &code) ? static_cast<int>(code) : -1;
}

class FileTest : public ::testing::Test {
protected:
    TempFolder folder_;
};

TEST_F(FileTest, OpenFailureLeavesTheFileClosedWithTheSystemError) {
    VFile file;
    const VUnicodeString missing = folder_ / L"missing.ini";
    EXPECT_FALSE(file.Open(missing, GENERIC_READ, OPEN_EXISTING));
    EXPECT_EQ(ERROR_FILE_NOT_FOUND, GetLastError());
    EXPECT_FALSE(file.IsOpen());
    EXPECT_EQ(missing, file.GetFileName());

    EXPECT_FALSE(file.Open(folder_ / L"no\\such\\folder.ini", GENERIC_READ | GENERIC_WRITE, OPEN_ALWAYS));
    EXPECT_EQ(ERROR_PATH_NOT_FOUND, GetLastError());
}

TEST_F(FileTest, ShareModeDecidesWhetherASecondOpenIsAdmitted) {
    const VUnicodeString name = folder_ / L"shared.ini";
    VFile first;
    first.SetShareMode(0);
    ASSERT_TRUE(first.Open(name, ReadWrite, CREATE_ALWAYS));
    VFile second;
    second.SetShareMode(ShareAll);
    EXPECT_FALSE(second.Open(name, GENERIC_READ, OPEN_EXISTING));
    EXPECT_EQ(ERROR_SHARING_VIOLATION, GetLastError());

    first.SetShareMode(ShareAll);
    ASSERT_TRUE(first.Open(name, ReadWrite, OPEN_EXISTING));
    EXPECT_TRUE(second.Open(name, ReadWrite, OPEN_EXISTING));
    // Delete sharing lets the file be deleted while both hold it open.
    EXPECT_TRUE(DeleteFileW(name.c_str()));
}

TEST_F(FileTest, SeekTruncateAndRawInputOutput) {
    VFile file;
    ASSERT_TRUE(file.Open(folder_ / L"data.bin", ReadWrite, CREATE_NEW));
    ASSERT_TRUE(file.WriteBytes("0123456789", 10));
    uint64_t size = 0;
    ASSERT_TRUE(file.GetSize(size));
    EXPECT_EQ(10u, size);

    ASSERT_TRUE(file.Truncate(4));
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

    EXPECT_FALSE(file.Seek(-10, FILE_BEGIN));
    EXPECT_EQ(ERROR_NEGATIVE_SEEK, GetLastError());
}

TEST_F(FileTest, ClosingKeepsTheLastError) {
    VFile file;
    ASSERT_TRUE(file.Open(folder_ / L"close.bin", ReadWrite, CREATE_NEW));
    SetLastError(ERROR_LOCK_VIOLATION);
    file.Close();
    EXPECT_FALSE(file.IsOpen());
    EXPECT_EQ(ERROR_LOCK_VIOLATION, GetLastError());
}

TEST_F(FileTest, TemporaryNamesCountInUpperCaseHexadecimal) {
    const VUnicodeString prefix = folder_ / L"ini";
    VFile files[12];
    for (VFile& file : files) ASSERT_TRUE(file.OpenUniqueTemporary(prefix));
    const wchar_t* expected[] = {L"0", L"1", L"2", L"3", L"4", L"5", L"6", L"7", L"8", L"9", L"A", L"B"};
    for (size_t i = 0; i < 12; ++i) EXPECT_EQ(prefix + expected[i] + L".tmp", files[i].GetFileName());

    // A name freed again is taken again: the counter starts at 0 each time.
    files[3].Close();
    ASSERT_TRUE(DeleteFileW((prefix + L"3.tmp").c_str()));
    VFile again;
    ASSERT_TRUE(again.OpenUniqueTemporary(prefix));
    EXPECT_EQ(prefix + L"3.tmp", again.GetFileName());
    EXPECT_TRUE(again.WriteBytes("x", 1)) << "opened for writing";
}

TEST_F(FileTest, TemporaryNamesStopAtAnyErrorButAnExistingFile) {
    VFile file;
    EXPECT_FALSE(file.OpenUniqueTemporary(folder_ / L"absent\\ini"));
    EXPECT_EQ(ERROR_PATH_NOT_FOUND, GetLastError());
    EXPECT_FALSE(file.IsOpen());
    EXPECT_FALSE(file.OpenUniqueTemporary(folder_ / L"wild*card"));
    EXPECT_EQ(ERROR_INVALID_NAME, GetLastError());
}

TEST_F(FileTest, FolderChainCreatesEveryMissingParent) {
    const VUnicodeString deep = folder_ / L"a\\b/c\\d";
    ASSERT_TRUE(CreateFolderChain(deep));
    EXPECT_TRUE(IsFolder(folder_ / L"a\\b\\c\\d"));
    EXPECT_TRUE(CreateFolderChain(deep)) << "an existing folder is no error";
    EXPECT_TRUE(CreateFolderChain(folder_ / L"a\\b\\"));
    EXPECT_TRUE(CreateFolderChain(folder_ / L"x\\y\\\\"));
    EXPECT_TRUE(IsFolder(folder_ / L"x\\y"));
    EXPECT_TRUE(CreateFolderChain(VUnicodeString(L"C:\\")));
}

TEST_F(FileTest, FolderChainRefusesAFileInTheWay) {
    ASSERT_TRUE(WriteWholeFile(folder_ / L"plain", "x"));
    EXPECT_FALSE(CreateFolderChain(folder_ / L"plain"));
    EXPECT_EQ(ERROR_ALREADY_EXISTS, GetLastError());
    EXPECT_FALSE(CreateFolderChain(folder_ / L"plain\\below"));
    EXPECT_NE(static_cast<DWORD>(ERROR_SUCCESS), GetLastError());
    EXPECT_EQ("x", ReadWholeFile(folder_ / L"plain")) << "the file is left as it was";
    EXPECT_FALSE(CreateFolderChain(VUnicodeString(L"Q:\\no\\such\\drive")));
}

TEST_F(FileTest, FolderChainAppliesTheDescriptorToWhatItCreates) {
    VUnicodeString user;
    ASSERT_TRUE(GetCurrentUserSidString(user));
    VSecurityDescriptor readOnly;
    ASSERT_TRUE(readOnly.FromText({VUnicodeString(L"allow,0x001200a9,") + user}));
    ASSERT_TRUE(CreateFolderChain(folder_ / L"open"));
    ASSERT_TRUE(CreateFolderChain(folder_ / L"open\\closed\\inner", &readOnly));

    EXPECT_TRUE(UserRights(folder_ / L"open", user) & FILE_ADD_FILE) << "made before, without the descriptor";
    EXPECT_FALSE(UserRights(folder_ / L"open\\closed", user) & FILE_ADD_FILE);
    EXPECT_TRUE(UserRights(folder_ / L"open\\closed", user) & FILE_LIST_DIRECTORY);
    EXPECT_FALSE(UserRights(folder_ / L"open\\closed\\inner", user) & FILE_ADD_FILE);
}

TEST_F(FileTest, OpenAppliesTheHeldDescriptorWhenItCreatesTheFile) {
    VUnicodeString user;
    ASSERT_TRUE(GetCurrentUserSidString(user));
    VSecurityDescriptor readOnly;
    ASSERT_TRUE(readOnly.FromText({VUnicodeString(L"allow,0x00120089,") + user}));
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

// A file held open with every kind of sharing, as the file store holds it.
class FileLockTest : public FileTest {
protected:
    void SetUp() override {
        ASSERT_TRUE(WriteWholeFile(name_, "header and more"));
        file_.SetShareMode(ShareAll);
        ASSERT_TRUE(file_.Open(name_, ReadWrite, OPEN_EXISTING));
    }

    const VUnicodeString name_ = folder_ / L"locked.ini";
    VFile file_;
};

TEST_F(FileLockTest, ASharedLockAdmitsOtherReadersButNoWriter) {
    ASSERT_TRUE(file_.Lock(0, 4, false));
    EXPECT_EQ(0, ProbeLock(name_, 0, 4, false));
    EXPECT_EQ(1, ProbeLock(name_, 0, 4, true));
    EXPECT_EQ(0, ProbeLock(name_, 4, 4, true)) << "the bytes after the range are free";
    ASSERT_TRUE(file_.Unlock(0, 4));
    EXPECT_EQ(0, ProbeLock(name_, 0, 4, true));
}

TEST_F(FileLockTest, AnExclusiveLockAdmitsNobody) {
    ASSERT_TRUE(file_.Lock(0, 4, true));
    EXPECT_EQ(1, ProbeLock(name_, 0, 4, false));
    EXPECT_EQ(1, ProbeLock(name_, 2, 1, true));
    ASSERT_TRUE(file_.Unlock(0, 4));
    EXPECT_EQ(0, ProbeLock(name_, 0, 4, false));

    // Windows answers ERROR_NOT_LOCKED, Wine ERROR_LOCK_VIOLATION.
    EXPECT_FALSE(file_.Unlock(0, 4)) << "nothing is locked any more";
}

TEST_F(FileLockTest, LockOffsetsAndLengthsUseAll64Bits) {
    const uint64_t distant = 0x100000000ull;
    ASSERT_TRUE(file_.Lock(distant, 4, true));
    EXPECT_EQ(1, ProbeLock(name_, distant, 4, false));
    EXPECT_EQ(0, ProbeLock(name_, 0, 4, true)) << "the high half of the offset was kept";
    ASSERT_TRUE(file_.Unlock(distant, 4));

    ASSERT_TRUE(file_.Lock(0, distant + 8, true));
    EXPECT_EQ(1, ProbeLock(name_, distant + 4, 2, false)) << "the high half of the length was kept";
    ASSERT_TRUE(file_.Unlock(0, distant + 8));
}

}  // namespace
