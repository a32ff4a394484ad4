// The installation facts and application folders, read from a registry whose
// per-user and machine-wide hives are redirected into a sandbox, with fake
// client executables in a temporary folder.

#include <gtest/gtest.h>

#include <shlobj.h>

#include <string>

#include "AppPaths.h"
#include "Installation.h"
#include "ProgramFolder.h"
#include "RegistrySandbox.h"
#include "TempFolder.h"

namespace {

constexpr wchar_t User[] = L"user";
constexpr wchar_t Machine[] = L"machine";

VUnicodeString ShellFolder(int csidl) {
    wchar_t folder[MAX_PATH] = {};
    SHGetFolderPathW(nullptr, csidl, nullptr, SHGFP_TYPE_CURRENT, folder);
    return VUnicodeString(folder);
}

class InstallationTest : public testing::Test {
protected:
    InstallationTest()
        : appData_(ShellFolder(CSIDL_APPDATA)),
          localAppData_(ShellFolder(CSIDL_LOCAL_APPDATA)),
          user_(HKEY_CURRENT_USER, sandbox_, User),
          machine_(HKEY_LOCAL_MACHINE, sandbox_, Machine) {
        WriteWholeFile(folder_ / L"Termwright.exe", "MZ");
        WriteWholeFile(folder_ / L"Filewright.exe", "MZ");
        CreateDirectoryW((folder_ / L"Termlet.exe").c_str(), nullptr);  // a folder, not a program
    }

    // Sets value name of the installation key's subkey (empty: the key) in hive.
    void SetText(const wchar_t* hive, const wchar_t* subkey, const wchar_t* name, const VUnicodeString& text) {
        ASSERT_EQ(RegSetKeyValueW(sandbox_.Get(), KeyOf(hive, subkey).c_str(), name, REG_SZ, text.c_str(),
                                  static_cast<DWORD>((text.GetLength() + 1) * sizeof(wchar_t))),
                  ERROR_SUCCESS);
    }
    void SetNumber(const wchar_t* hive, const wchar_t* subkey, const wchar_t* name, DWORD number) {
        ASSERT_EQ(RegSetKeyValueW(sandbox_.Get(), KeyOf(hive, subkey).c_str(), name, REG_DWORD, &number,
                                  sizeof(number)),
                  ERROR_SUCCESS);
    }

    static VUnicodeString KeyOf(const wchar_t* hive, const wchar_t* subkey) {
        VUnicodeString path = VUnicodeString(hive) + L"\\" + InstallationKeyPath;
        if (*subkey) path += VUnicodeString(L"\\") + subkey;
        return path;
    }

    const VUnicodeString appData_;
    const VUnicodeString localAppData_;
    TempFolder folder_;
    RegistrySandbox sandbox_;
    PredefinedKeyRedirect user_;
    PredefinedKeyRedirect machine_;
};

struct Facts {
    bool termwright, termlet, filewright, integrated;
};

Facts Installed() {
    return {IsTermwrightInstalled(), IsTermletInstalled(), IsFilewrightInstalled(), IsIntegrated()};
}

void ExpectFacts(const Facts& expected, const char* step) {
    const Facts actual = Installed();
    EXPECT_EQ(actual.termwright, expected.termwright) << step;
    EXPECT_EQ(actual.termlet, expected.termlet) << step;
    EXPECT_EQ(actual.filewright, expected.filewright) << step;
    EXPECT_EQ(actual.integrated, expected.integrated) << step;
    EXPECT_EQ(IsTermwrightOrTermletInstalled(), expected.termwright || expected.termlet) << step;
}

}  // namespace

TEST_F(InstallationTest, ClientsAreInstalledWhereTheRegistrySaysAndTheUserWins) {
    EXPECT_EQ(VUnicodeString(GetTermwrightPath()), GetPathBesideProgram(L"Termwright.exe"));
    ExpectFacts({false, false, false, false}, "nothing set, nothing beside the tests");

    SetText(Machine, L"Termwright", L"Path", folder_ / L"Termwright.exe");
    SetText(Machine, L"Filewright", L"Path", folder_ / L"Filewright.exe");
    SetText(Machine, L"Termlet", L"Path", folder_ / L"Termlet.exe");
    ExpectFacts({true, false, true, true}, "machine-wide; integrated since both are there");
    const wchar_t* machinePath = GetTermwrightPath();
    EXPECT_EQ(VUnicodeString(machinePath), folder_ / L"Termwright.exe");

    SetNumber(Machine, L"", L"Integrated", 0);
    SetText(User, L"Termwright", L"Path", folder_ / L"Gone.exe");
    ExpectFacts({false, false, true, false}, "the user's values win");
    EXPECT_EQ(VUnicodeString(GetTermwrightPath()), folder_ / L"Gone.exe");
    EXPECT_EQ(VUnicodeString(machinePath), folder_ / L"Termwright.exe") << "a path handed out stays valid";

    SetEnvironmentVariableW(L"TRAYWELL_TEST_CLIENTS", folder_.Path().c_str());
    SetText(User, L"Termwright", L"Path", L"%TRAYWELL_TEST_CLIENTS%\\Termwright.exe");
    SetNumber(User, L"", L"Integrated", 1);
    ExpectFacts({true, false, true, true}, "variables expanded; the user's Integrated");
}

TEST_F(InstallationTest, ApplicationFoldersHaveDefaultsUnderTheUsersApplicationData) {
    const struct {
        const wchar_t* app;
        const wchar_t* config;
        VUnicodeString configPath;
        bool usePersonal;
        VUnicodeString personalPath;
    } defaults[] = {
        {L"Termwright", L"C:\\Config", appData_ + L"\\Quillon\\Termwright", false,
         localAppData_ + L"\\Quillon\\Termwright\\Personal Data\\C__Config"},
        {L"Filewright", L"\\\\server\\share\\cfg", appData_ + L"\\Quillon\\Filewright", false,
         localAppData_ + L"\\Quillon\\Filewright\\Personal Data\\__server_share_cfg"},
        {L"", L"C:\\Config", L"", false, L""},
    };
    for (const auto& test : defaults) {
        EXPECT_EQ(GetAppConfigPath(test.app), test.configPath) << test.app;
        EXPECT_EQ(UsePersonalDataPath(test.app), test.usePersonal) << test.app;
        EXPECT_EQ(GetAppPersonalDataPath(test.app, test.config), test.personalPath) << test.app;
    }
    EXPECT_EQ(GetAppConfigPath(nullptr), L"");

    SetText(Machine, L"Termwright", L"Config Folder", L"S:\\Shared\\Config");
    SetNumber(User, L"Termwright", L"Use Personal Data Folder", 1);
    SetText(User, L"Termwright", L"Personal Data Folder", L"H:\\Mine");
    EXPECT_EQ(GetAppConfigPath(L"Termwright"), L"S:\\Shared\\Config");
    EXPECT_TRUE(UsePersonalDataPath(L"Termwright"));
    EXPECT_EQ(GetAppPersonalDataPath(L"Termwright", L"S:\\Shared\\Config"), L"H:\\Mine");
    EXPECT_FALSE(UsePersonalDataPath(L"Filewright"));
}
