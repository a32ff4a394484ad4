// Installation facts and application folders, from hives redirected into a sandbox.

#include <gtest/gtest.h>

#include <shlobj.h>

#include <array>

#include "AppPaths.h"
#include "Installation.h"
#include "ProgramFolder.h"
#include "RegistrySandbox.h"
#include "TempFolder.h"

namespace {

VUnicodeString ShellFolder(int csidl) {
    wchar_t folder[MAX_PATH] = {};
    SHGetFolderPathW(nullptr, csidl, nullptr, SHGFP_TYPE_CURRENT, folder);
    return VUnicodeString(folder);
}

// Termwright, Termlet and Filewright installed, integrated, and Termwright or Termlet.
using Facts = std::array<bool, 5>;

class InstallationTest : public testing::Test {
protected:
    InstallationTest() {
        WriteWholeFile(folder_ / L"Termwright.exe", "MZ");
        WriteWholeFile(folder_ / L"Filewright.exe", "MZ");
        CreateDirectoryW((folder_ / L"Termlet.exe").c_str(), nullptr);  // a folder, not a program
    }

    // Sets name in subkey (empty: the key itself) of the "user" or "machine" installation key.
    void Set(const wchar_t* hive, const wchar_t* subkey, const wchar_t* name,
             const VUnicodeString& text) {
        Set(hive, subkey, name, REG_SZ, text.c_str(), (text.GetLength() + 1) * sizeof(wchar_t));
    }
    void Set(const wchar_t* hive, const wchar_t* subkey, const wchar_t* name, DWORD number) {
        Set(hive, subkey, name, REG_DWORD, &number, sizeof number);
    }
    void Set(const wchar_t* hive, const wchar_t* subkey, const wchar_t* name, DWORD type,
             const void* data, size_t size) {
        const VUnicodeString path =
            VUnicodeString(hive) + L"\\" + InstallationKeyPath + (*subkey ? L"\\" : L"") + subkey;
        ASSERT_EQ(RegSetKeyValueW(sandbox_.Get(), path.c_str(), name, type, data,
                                  static_cast<DWORD>(size)),
                  ERROR_SUCCESS);
    }

    static Facts Installed() {
        return {IsTermwrightInstalled(), IsTermletInstalled(), IsFilewrightInstalled(),
                IsIntegrated(), IsTermwrightOrTermletInstalled()};
    }

    TempFolder folder_;
    RegistrySandbox sandbox_;
    PredefinedKeyRedirect user_{HKEY_CURRENT_USER, sandbox_, L"user"};
    PredefinedKeyRedirect machine_{HKEY_LOCAL_MACHINE, sandbox_, L"machine"};
};

}  // namespace

TEST_F(InstallationTest, ClientsAreInstalledWhereTheRegistrySaysAndTheUserWins) {
    EXPECT_EQ(VUnicodeString(GetTermwrightPath()), GetPathBesideProgram(L"Termwright.exe"));
    EXPECT_EQ(Installed(), (Facts{false, false, false, false, false}))
        << "nothing set, nothing beside the tests";

    Set(L"machine", L"Termwright", L"Path", folder_ / L"Termwright.exe");
    Set(L"machine", L"Filewright", L"Path", folder_ / L"Filewright.exe");
    Set(L"machine", L"Termlet", L"Path", folder_ / L"Termlet.exe");
    EXPECT_EQ(Installed(), (Facts{true, false, true, true, true}))
        << "integrated since both are there";
    const wchar_t* machinePath = GetTermwrightPath();

    Set(L"machine", L"", L"Integrated", 0);
    Set(L"user", L"Termwright", L"Path", folder_ / L"Gone.exe");
    EXPECT_EQ(Installed(), (Facts{false, false, true, false, false})) << "the user's path wins";
    EXPECT_EQ(VUnicodeString(GetTermwrightPath()), folder_ / L"Gone.exe");
    EXPECT_EQ(VUnicodeString(machinePath), folder_ / L"Termwright.exe")
        << "a path handed out stays valid";

    SetEnvironmentVariableW(L"TRAYWELL_TEST_CLIENTS", folder_.Path().c_str());
    Set(L"user", L"Termwright", L"Path", L"%TRAYWELL_TEST_CLIENTS%\\Termwright.exe");
    Set(L"user", L"", L"Integrated", 1);
    EXPECT_EQ(Installed(), (Facts{true, false, true, true, true})) << "variables expanded";
}

TEST_F(InstallationTest, ApplicationFoldersHaveDefaultsUnderTheUsersApplicationData) {
    const VUnicodeString appData = ShellFolder(CSIDL_APPDATA),
                         local = ShellFolder(CSIDL_LOCAL_APPDATA);
    const struct {
        const wchar_t *app, *config;
        VUnicodeString configPath, personalPath;
    } defaults[] = {
        {L"Termwright", L"C:\\Config", appData + L"\\Quillon\\Termwright",
         local + L"\\Quillon\\Termwright\\Personal Data\\C__Config"},
        {L"Filewright", L"\\\\server\\share\\cfg", appData + L"\\Quillon\\Filewright",
         local + L"\\Quillon\\Filewright\\Personal Data\\__server_share_cfg"},
        {L"", L"C:\\Config", L"", L""},
    };
    for (const auto& test : defaults) {
        EXPECT_EQ(GetAppConfigPath(test.app), test.configPath) << test.app;
        EXPECT_FALSE(UsePersonalDataPath(test.app)) << test.app;
        EXPECT_EQ(GetAppPersonalDataPath(test.app, test.config), test.personalPath) << test.app;
    }
    Set(L"machine", L"Termwright", L"Config Folder", L"S:\\Shared\\Config");
    Set(L"user", L"Termwright", L"Use Personal Data Folder", 1);
    Set(L"user", L"Termwright", L"Personal Data Folder", L"H:\\Mine");
    EXPECT_EQ(GetAppConfigPath(L"Termwright"), L"S:\\Shared\\Config");
    EXPECT_TRUE(UsePersonalDataPath(L"Termwright"));
    EXPECT_EQ(GetAppPersonalDataPath(L"Termwright", L"S:\\Shared\\Config"), L"H:\\Mine");
}
