// Folder chains and tree removal for the profile file store.
#include "FileSystem.h"

#include <windows.h>

#include <algorithm>

#include "Win32Handle.h"

namespace {

bool IsSeparator(wchar_t c) { return c == L'\\' || c == L'/'; }

bool IsFolder(const wchar_t* path) {
    const DWORD attributes = GetFileAttributesW(path);
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY);
}

// The position after count names (each with its separator) from position on.
size_t SkipNames(const wchar_t* text, size_t length, size_t position, int count) {
    for (; count > 0; --count) {
        while (position < length && !IsSeparator(text[position])) ++position;
        if (position < length) ++position;
    }
    return position;
}

// The length of the root, which is never created: "C:\", "\\server\share\",
// "\\?\C:\", "\\?\UNC\server\share\", "\\?\Volume{...}\" or a leading "\".
size_t RootLength(const VUnicodeString& path) {
    const wchar_t* text = path.c_str();
    const size_t length = path.GetLength();
    const bool device = length >= 4 && text[0] == L'\\' && text[1] == L'\\' &&
                        (text[2] == L'?' || text[2] == L'.') && text[3] == L'\\';
    if (device) {
        if (path.Mid(4, 4).EqualsNoCase(VUnicodeString(L"UNC\\")))
            return SkipNames(text, length, 8, 2);
        if (length >= 6 && text[5] == L':') return std::min(length, size_t{7});
        return SkipNames(text, length, 4, 1);
    }
    if (length >= 2 && text[1] == L':') return (length >= 3 && IsSeparator(text[2])) ? 3 : 2;
    if (length >= 2 && IsSeparator(text[0]) && IsSeparator(text[1]))
        return SkipNames(text, length, 2, 2);
    return (length > 0 && IsSeparator(text[0])) ? 1 : 0;
}

// Makes one folder; true also when it is there already as a folder.
bool MakeFolder(const VUnicodeString& path, SECURITY_ATTRIBUTES& attributes) {
    if (CreateDirectoryW(path.c_str(), &attributes)) return true;
    const DWORD error = GetLastError();
    // Also the case when another process made it a moment ago.
    if (error == ERROR_ALREADY_EXISTS && IsFolder(path.c_str())) return true;
    SetLastError(error);
    return false;
}

// path has no trailing separator and is longer than its root.
bool MakeChain(const VUnicodeString& path, size_t rootLength, SECURITY_ATTRIBUTES& attributes) {
    // The usual case, parents present, costs one call.
    if (MakeFolder(path, attributes)) return true;
    const DWORD error = GetLastError();
    if (error != ERROR_PATH_NOT_FOUND) return false;

    size_t end = path.GetLength();
    while (end > rootLength && !IsSeparator(path[end - 1])) --end;
    while (end > rootLength && IsSeparator(path[end - 1])) --end;
    if (end <= rootLength) {
        SetLastError(error);  // the root itself is missing
        return false;
    }
    return MakeChain(path.Left(end), rootLength, attributes) && MakeFolder(path, attributes);
}

// Removes one entry, found with attributes.
bool DeleteEntry(const VUnicodeString& path, DWORD attributes) {
    if (!(attributes & FILE_ATTRIBUTE_DIRECTORY)) return DeleteFileW(path.c_str()) != 0;
    if (attributes & FILE_ATTRIBUTE_REPARSE_POINT) return RemoveDirectoryW(path.c_str()) != 0;
    WIN32_FIND_DATAW found;
    const FindHandle search(FindFirstFileExW((path + L"\\*").c_str(), FindExInfoBasic, &found,
                                             FindExSearchNameMatch, nullptr, 0));
    if (search) {
        bool removed = true;
        do {
            const VUnicodeString name(found.cFileName);
            if (name == L"." || name == L"..") continue;
            removed = DeleteEntry(path + L"\\" + name, found.dwFileAttributes);
        } while (removed && FindNextFileW(search.Get(), &found));
        if (!removed) return false;
    }
    return RemoveDirectoryW(path.c_str()) != 0;
}

}  // namespace

bool DeleteTree(const VUnicodeString& path) {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && DeleteEntry(path, attributes);
}

bool CreateFolderChain(const VUnicodeString& path, const VSecurityDescriptor* security) {
    const size_t rootLength = RootLength(path);
    size_t end = path.GetLength();
    while (end > rootLength && IsSeparator(path[end - 1])) --end;
    if (end <= rootLength) {
        // A bare root is never created: it is there or it is not.
        if (IsFolder(path.c_str())) return true;
        SetLastError(ERROR_PATH_NOT_FOUND);
        return false;
    }
    SECURITY_ATTRIBUTES attributes = VSecurityDescriptor::SecurityAttributesFor(security);
    return MakeChain(path.Left(end), rootLength, attributes);
}
