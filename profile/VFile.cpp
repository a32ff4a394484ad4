// The file handle of the profile file store: open options, byte-range locks,
// positioning and raw I/O.
#include "VFile.h"

void VFile::SetSecurityDescriptor(const VSecurityDescriptor* descriptor) {
    if (descriptor && !descriptor->IsEmpty()) security_ = *descriptor;
    else security_.reset();
}

bool VFile::Open(const VUnicodeString& fileName, DWORD access, DWORD creationDisposition) {
    Close();
    fileName_ = fileName;
    SECURITY_ATTRIBUTES attributes = VSecurityDescriptor::SecurityAttributesFor(security_ ? &*security_ : nullptr);
    handle_.Reset(CreateFileW(fileName.c_str(), access, shareMode_, &attributes, creationDisposition,
                              flagsAndAttributes_, nullptr));
    return handle_.IsValid();
}

bool VFile::OpenUniqueTemporary(const VUnicodeString& prefix) {
    // The counter stops short of all ones, the sign that it has gone round.
    for (DWORD counter = 0; counter != MAXDWORD; ++counter) {
        VUnicodeString name;
        if (!name.FormatPositional(L"%1%2!X!.tmp", prefix.c_str(), counter)) return false;
        if (Open(name, GENERIC_READ | GENERIC_WRITE, CREATE_NEW)) return true;
        if (GetLastError() != ERROR_FILE_EXISTS) return false;
    }
    SetLastError(ERROR_FILE_EXISTS);
    return false;
}

void VFile::Close() noexcept { handle_.Reset(); }

bool VFile::Lock(uint64_t offset, uint64_t length, bool exclusive) {
    OVERLAPPED overlapped{};
    overlapped.Offset = static_cast<DWORD>(offset);
    overlapped.OffsetHigh = static_cast<DWORD>(offset >> 32);
    // No LOCKFILE_FAIL_IMMEDIATELY: a lock waits until it is granted.
    return LockFileEx(handle_.Get(), exclusive ? LOCKFILE_EXCLUSIVE_LOCK : 0, 0, static_cast<DWORD>(length),
                      static_cast<DWORD>(length >> 32), &overlapped) != FALSE;
}

bool VFile::Unlock(uint64_t offset, uint64_t length) {
    OVERLAPPED overlapped{};
    overlapped.Offset = static_cast<DWORD>(offset);
    overlapped.OffsetHigh = static_cast<DWORD>(offset >> 32);
    return UnlockFileEx(handle_.Get(), 0, static_cast<DWORD>(length), static_cast<DWORD>(length >> 32),
                        &overlapped) != FALSE;
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
