#include "ProgramFolder.h"

#include <windows.h>

#include <vector>

VUnicodeString GetProgramFolder() {
    // Long-path aware: the module path may exceed MAX_PATH.
    std::vector<wchar_t> path(32768);
    const DWORD length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
    if (length == 0 || length == path.size()) return VUnicodeString();
    const wchar_t* lastSeparator = wcsrchr(path.data(), L'\\');
    if (!lastSeparator) return VUnicodeString();
    size_t folderLength = static_cast<size_t>(lastSeparator - path.data());
    if (folderLength > 0 && path[folderLength - 1] == L':') ++folderLength;  // "C:\" stays a root
    return VUnicodeString(path.data(), folderLength);
}

VUnicodeString GetPathBesideProgram(const wchar_t* fileName) {
    VUnicodeString path = GetProgramFolder();
    if (path.IsEmpty()) return path;
    if (!path.EndsWith(L"\\")) path += L"\\";
    path += fileName;
    return path;
}
