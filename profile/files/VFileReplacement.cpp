#include "VFileReplacement.h"

#include <windows.h>

#include <aclapi.h>

#include "FileSystem.h"
#include "Win32Handle.h"

namespace {

// What a new file can be given at creation and a user may have set on a
// values file. Read-only files are refused instead; the archive mark comes
// with every new content, as any write gives it.
constexpr DWORD KeptAttributes =
    FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_NOT_CONTENT_INDEXED;

bool Fail(DWORD error) {
    SetLastError(error);
    return false;
}

// The folder that holds path ("C:\Config" for "C:\Config\Sessions.ini").
VUnicodeString ParentFolder(const VUnicodeString& path) {
    size_t length = path.GetLength();
    while (length > 0 && path[length - 1] != L'\\' && path[length - 1] != L'/') --length;
    while (length > 1 && (path[length - 1] == L'\\' || path[length - 1] == L'/') &&
           path[length - 2] != L':')
        --length;
    return path.Left(length);
}

// The access list of the file at path, with its protection from inheritance.
bool ReadAccessList(const VUnicodeString& path, VSecurityDescriptor& descriptor) {
    PSECURITY_DESCRIPTOR found = nullptr;
    const DWORD result =
        GetNamedSecurityInfoW(path.c_str(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION, nullptr,
                              nullptr, nullptr, nullptr, &found);
    if (result != ERROR_SUCCESS) return Fail(result);
    const LocalMemory owner(found);
    return descriptor.Assign(found);
}

VUnicodeString TemporaryPrefix(const VUnicodeString& path) { return path + L"."; }

}  // namespace

VFileReplacement::~VFileReplacement() {
    if (file_.IsOpen() && !committed_) file_.DeleteOnClose();
}

bool VFileReplacement::Prepare(const VUnicodeString& path, const wchar_t* text, size_t length,
                               const VSecurityDescriptor* security) {
    path_ = path;
    WIN32_FILE_ATTRIBUTE_DATA existing;
    VSecurityDescriptor accessList;
    DWORD attributes = FILE_ATTRIBUTE_NORMAL;
    if (GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &existing)) {
        // Windows refuses to replace a read-only file, but Wine grants it to
        // a process run by root; the attribute is honoured here for both.
        if (existing.dwFileAttributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_READONLY))
            return Fail(ERROR_ACCESS_DENIED);
        if (!ReadAccessList(path, accessList)) return false;
        security = &accessList;
        if (existing.dwFileAttributes & KeptAttributes)
            attributes = existing.dwFileAttributes & KeptAttributes;
    }
    // Readers may open it as soon as it has been renamed into place; anyone
    // else is shut out, which marks it as in use (RemoveLeftovers).
    file_.SetShareMode(FILE_SHARE_READ);
    file_.SetSecurityDescriptor(security);
    file_.SetFlagsAndAttributes(attributes);
    if (!file_.OpenUniqueTemporary(TemporaryPrefix(path), &counter_)) {
        if (GetLastError() != ERROR_PATH_NOT_FOUND) return false;
        // Most often the key's folder chain does not exist yet.
        if (!CreateFolderChain(ParentFolder(path), security) ||
            !file_.OpenUniqueTemporary(TemporaryPrefix(path), &counter_))
            return false;
    }
    file_.SetEncoding(TextEncodingUtf8);
    file_.SetBlockLocking(false);
    // The mark is U+FEFF in the file's encoding.
    return file_.Write(L"\xFEFF", 1) && file_.Write(text, length) && file_.Flush();
}

bool VFileReplacement::Commit() {
    const ULONGLONG deadline = GetTickCount64() + RenameWaitMilliseconds;
    for (unsigned attempt = 0; !file_.RenameOver(path_); ++attempt) {
        const DWORD error = GetLastError();
        // Another handle holds the file open: a reader for a moment, or a
        // writer of an older program that rewrites it in place.
        if ((error != ERROR_ACCESS_DENIED && error != ERROR_SHARING_VIOLATION) ||
            GetTickCount64() >= deadline)
            return Fail(error);
        Sleep(attempt < 16 ? 0 : 1);
    }
    committed_ = true;
    file_.Close();
    return true;
}

void VFileReplacement::RemoveLeftovers() const {
    if (!committed_ || counter_ == 0) return;
    const VUnicodeString prefix = TemporaryPrefix(path_);
    // Every name below this one's was taken when it was made; above it, the
    // names taken go on up to the first free one.
    DWORD top = counter_;
    while (GetFileAttributesW(VFile::TemporaryName(prefix, top + 1).c_str()) !=
           INVALID_FILE_ATTRIBUTES)
        ++top;
    // From the top down, so that a writer killed meanwhile leaves the names
    // from 0 on taken, and the next save that finds them removes them.
    for (DWORD counter = top + 1; counter-- > 0;) {
        if (counter == counter_) continue;
        // Opens only when no live writer holds it (they share it for reading
        // alone); it goes when this handle closes.
        const FileHandle leftover(CreateFileW(VFile::TemporaryName(prefix, counter).c_str(), DELETE,
                                              0, nullptr, OPEN_EXISTING, FILE_FLAG_DELETE_ON_CLOSE,
                                              nullptr));
    }
}
