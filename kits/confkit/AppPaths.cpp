#include "AppPaths.h"

#include <windows.h>

#include <shlobj.h>

#include "InstallationRegistry.h"

namespace {

bool IsEmptyName(const wchar_t* appName) { return !appName || !*appName; }

// The application's folder below a shell folder: <shell folder>\Quillon\<application>.
VUnicodeString FamilyFolder(int csidl, const wchar_t* appName) {
    VUnicodeString folder = GetShellFolder(csidl);
    if (folder.IsEmpty()) return folder;
    if (!folder.EndsWith(L"\\")) folder += L"\\";
    return folder + L"Quillon\\" + appName;
}

// configFolder as one folder name: "C:\Config" gives "C__Config".
VUnicodeString AsFolderName(const wchar_t* configFolder) {
    VUnicodeString name;
    for (const wchar_t* character = configFolder ? configFolder : L""; *character; ++character)
        name += (*character < 32 || wcschr(L"\\/:*?\"<>|", *character)) ? L'_' : *character;
    return name;
}

}  // namespace

VUnicodeString GetAppConfigPath(const wchar_t* appName) {
    if (IsEmptyName(appName)) return VUnicodeString();
    VUnicodeString folder;
    if (ReadInstallationString(appName, L"Config Folder", folder)) return folder;
    return FamilyFolder(CSIDL_APPDATA, appName);
}

bool UsePersonalDataPath(const wchar_t* appName) {
    uint32_t use = 0;
    return !IsEmptyName(appName) &&
           ReadInstallationDword(appName, L"Use Personal Data Folder", use) && use != 0;
}

VUnicodeString GetAppPersonalDataPath(const wchar_t* appName, const wchar_t* configFolder) {
    if (IsEmptyName(appName)) return VUnicodeString();
    VUnicodeString folder;
    if (ReadInstallationString(appName, L"Personal Data Folder", folder)) return folder;
    folder = FamilyFolder(CSIDL_LOCAL_APPDATA, appName);
    if (folder.IsEmpty()) return folder;
    folder += L"\\Personal Data";
    const VUnicodeString name = AsFolderName(configFolder);
    if (!name.IsEmpty()) folder += L"\\" + name;
    return folder;
}
