// The file handle of the profile file store: open options, byte-range locks,
// positioning and raw I/O.
#include "VFile.h"

#include <cstddef>
#include <cstring>
#include <vector>

void VFile::SetSecurityDescriptor(const VSecurityDescriptor* descriptor) {
    if (descriptor && !descriptor->IsEmpty())
        security_ = *descriptor;
    else
        security_.reset();
}

bool VFile::Open(const VUnicodeString& fileName, DWORD access, DWORD creationDisposition) {
    Close();
    fileName_ = fileName;
    SECURITY_ATTRIBUTES attributes =
        VSecurityDescriptor::SecurityAttributesFor(security_ ? &*security_ : nullptr);
    handle_.Reset(CreateFileW(fileName.c_str(), access, shareMode_, &attributes,
                              creationDisposition, flagsAndAttributes_, nullptr));
    return handle_.IsValid();
}

bool VFile::OpenUniqueTemporary(const VUnicodeString& prefix, DWORD* counter) {
    // The counter stops short of all ones, the sign that it has gone round.
    for (DWORD next = 0; next != MAXDWORD; ++next) {
        if (Open(TemporaryName(prefix, next), GENERIC_READ | GENERIC_WRITE | DELETE, CREATE_NEW)) {
            if (counter) *counter = next;
            return true;
        }
        if (GetLastError() != ERROR_FILE_EXISTS) return false;
    }
    SetLastError(ERROR_FILE_EXISTS);
    return false;
}

// As the pattern "%1%2!X!.tmp" makes it, without the system's formatter.
VUnicodeString VFile::TemporaryName(const VUnicodeString& prefix, DWORD counter) {
    static constexpr wchar_t Digits[] = L"0123456789ABCDEF";
    wchar_t hex[8];
    size_t length = 0;
    do {
        hex[length++] = Digits[counter & 15];
        counter >>= 4;
    } while (counter != 0);
    VUnicodeString name = prefix;
    while (length > 0) name += hex[--length];
    return name + L".tmp";
}

void VFile::Close() noexcept { handle_.Reset(); }

bool VFile::Lock(uint64_t offset, uint64_t length, bool exclusive) {
    OVERLAPPED overlapped{};
    overlapped.Offset = static_cast<DWORD>(offset);
    overlapped.OffsetHigh = static_cast<DWORD>(offset >> 32);
    // No LOCKFILE_FAIL_IMMEDIATELY: a lock waits until it is granted.
    return LockFileEx(handle_.Get(), exclusive ? LOCKFILE_EXCLUSIVE_LOCK : 0, 0,
                      static_cast<DWORD>(length), static_cast<DWORD>(length >> 32),
                      &overlapped) != FALSE;
}

bool VFile::Unlock(uint64_t offset, uint64_t length) {
    OVERLAPPED overlapped{};
    overlapped.Offset = static_cast<DWORD>(offset);
    overlapped.OffsetHigh = static_cast<DWORD>(offset >> 32);
    return UnlockFileEx(handle_.Get(), 0, static_cast<DWORD>(length),
                        static_cast<DWORD>(length >> 32), &overlapped) != FALSE;
}

bool VFile::Seek(int64_t distance, DWORD method, uint64_t* newPosition) {
    LARGE_INTEGER move;
    move.QuadPart = distance;
    LARGE_INTEGER position;
    if (!SetFilePointerEx(handle_.Get(), move, &position, method)) return false;
    if (newPosition) *newPosition = static_cast<uint64_t>(position.QuadPart);
    return true;
}

bool VFile::Truncate(uint64_t position) {
    return VFile::Seek(static_cast<int64_t>(position), FILE_BEGIN) && SetEndOfFile(handle_.Get());
}

bool VFile::GetSize(uint64_t& size) const {
    LARGE_INTEGER value;
    if (!GetFileSizeEx(handle_.Get(), &value)) return false;
    size = static_cast<uint64_t>(value.QuadPart);
    return true;
}

bool VFile::RenameOver(const VUnicodeString& path) {
    // FILE_RENAME_INFO ends in the name; the structure is allocated with room for it.
    const size_t nameBytes = path.GetLength() * sizeof(wchar_t);
    std::vector<BYTE> buffer(offsetof(FILE_RENAME_INFO, FileName) + nameBytes + sizeof(wchar_t));
    auto* rename = reinterpret_cast<FILE_RENAME_INFO*>(buffer.data());
    rename->FileNameLength = static_cast<DWORD>(nameBytes);
    std::memcpy(rename->FileName, path.c_str(), nameBytes);
    // First with POSIX semantics (Windows 10 and later), which replace a file
    // that others hold open; systems without them refuse the class.
    constexpr auto RenameInfoEx = static_cast<FILE_INFO_BY_HANDLE_CLASS>(22);  // FileRenameInfoEx
    constexpr DWORD ReplaceIfExists = 0x1;  // FILE_RENAME_FLAG_...
    constexpr DWORD PosixSemantics = 0x2;
    rename->Flags = ReplaceIfExists | PosixSemantics;
    if (SetFileInformationByHandle(handle_.Get(), RenameInfoEx, rename,
                                   static_cast<DWORD>(buffer.size())))
        return true;
    const DWORD error = GetLastError();
    if (error != ERROR_INVALID_PARAMETER && error != ERROR_NOT_SUPPORTED &&
        error != ERROR_INVALID_FUNCTION)
        return false;
    rename->Flags = 0;
    rename->ReplaceIfExists = TRUE;
    return SetFileInformationByHandle(handle_.Get(), FileRenameInfo, rename,
                                      static_cast<DWORD>(buffer.size())) != FALSE;
}

bool VFile::DeleteOnClose() {
    FILE_DISPOSITION_INFO disposition{TRUE};
    return SetFileInformationByHandle(handle_.Get(), FileDispositionInfo, &disposition,
                                      sizeof disposition) != FALSE;
}

bool VFile::ReadBytes(void* buffer, DWORD size, DWORD& bytesRead) {
    bytesRead = 0;
    return ReadFile(handle_.Get(), buffer, size, &bytesRead, nullptr) != FALSE;
}

bool VFile::WriteBytes(const void* bytes, DWORD size) {
    const BYTE* next = static_cast<const BYTE*>(bytes);
    while (size > 0) {
        DWORD written = 0;
        if (!WriteFile(handle_.Get(), next, size, &written, nullptr)) return false;
        if (written == 0) {
            SetLastError(ERROR_WRITE_FAULT);
            return false;
        }
        next += written;
        size -= written;
    }
    return true;
}
