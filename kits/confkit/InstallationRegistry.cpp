#include "InstallationRegistry.h"

#include <windows.h>

#include <shlobj.h>

#include <vector>

#include "Installation.h"
#include "VRegistryKey.h"

namespace {

VUnicodeString KeyPath(const wchar_t* subkey) {
    VUnicodeString path(InstallationKeyPath);
    if (subkey && *subkey) {
        path += L"\\";
        path += subkey;
    }
    return path;
}

template <class T, class Read>
bool ReadFirst(const wchar_t* subkey, T& value, Read read) {
    const VUnicodeString path = KeyPath(subkey);
    for (HKEY hive : {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE}) {
        VRegistryKey key;
        T found{};
        if (key.Open(hive, path, KEY_READ) && read(key, found)) {
            value = found;
            return true;
        }
    }
    return false;
}

VUnicodeString ExpandEnvironment(const VUnicodeString& text) {
    const DWORD needed = ExpandEnvironmentStringsW(text.c_str(), nullptr, 0);
    if (needed == 0) return text;
    std::vector<wchar_t> expanded(needed);
    if (ExpandEnvironmentStringsW(text.c_str(), expanded.data(), needed) == 0) return text;
    return VUnicodeString(expanded.data());
}

}  // namespace

bool ReadInstallationString(const wchar_t* subkey, const wchar_t* name, VUnicodeString& value) {
    VUnicodeString text;
    if (!ReadFirst(subkey, text, [name](VRegistryKey& key, VUnicodeString& found) {
            return key.GetString(name, found);
        }))
        return false;
    value = ExpandEnvironment(text);
    return true;
}

bool ReadInstallationDword(const wchar_t* subkey, const wchar_t* name, uint32_t& value) {
    return ReadFirst(subkey, value, [name](VRegistryKey& key, uint32_t& found) {
        return key.GetDword(name, found);
    });
}

VUnicodeString GetShellFolder(int csidl) {
    wchar_t folder[MAX_PATH];
    if (FAILED(SHGetFolderPathW(nullptr, csidl, nullptr, SHGFP_TYPE_CURRENT, folder)))
        return VUnicodeString();
    VUnicodeString path(folder);
    while (path.EndsWith(L"\\") && !path.EndsWith(L":\\")) path.Delete(path.GetLength() - 1, 1);
    return path;
}
