#include "StartupPaths.h"

#include <windows.h>

#include <shlobj.h>

namespace {

// SHGetFolderPathW fills a buffer of MAX_PATH characters; empty on failure.
VUnicodeString ShellFolder(int folder) {
    wchar_t path[MAX_PATH] = {};
    if (FAILED(SHGetFolderPathW(nullptr, folder, nullptr, SHGFP_TYPE_CURRENT, path)))
        return VUnicodeString();
    return VUnicodeString(path);
}

}  // namespace

bool IsDirectory(const VUnicodeString& path) {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

VUnicodeString StripTrailingSeparators(VUnicodeString folder) {
    size_t length = folder.GetLength();
    while (length > 0 && (folder[length - 1] == L'\\' || folder[length - 1] == L'/')) {
        if (length >= 2 && folder[length - 2] == L':') break;
        --length;
    }
    return folder.Left(length);
}

VUnicodeString DocumentsFolder() { return ShellFolder(CSIDL_PERSONAL); }

VUnicodeString SshDataFolder() {
    VUnicodeString folder = DocumentsFolder();
    if (!folder.IsEmpty()) return folder;
    folder = ShellFolder(CSIDL_APPDATA);
    if (folder.IsEmpty()) return folder;
    return folder + L"\\Quillon\\";
}
