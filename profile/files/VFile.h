// files/ owns what the stores keep their data with: files and their locks,
// text files, whole-file replacement, folders, security descriptors and the
// buffers wiped before they are freed.
//
// VFile: a file handle with the open options and the byte-range locks that the
// profile file store relies on. Byte-range locks are the only coordination of
// profile files between processes.
//
// Failures: every operation that can fail returns false and leaves the
// operating system's error code as the thread's last error; a failed Open
// leaves the file closed. Closing keeps the last-error value unchanged.
// One thread at a time.
#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>

#include "VSecurityDescriptor.h"
#include "VString.h"
#include "Win32Handle.h"

class VFile {
public:
    // Readers may share the file with each other; the file store asks for
    // read, write and delete sharing itself.
    static constexpr DWORD DefaultShareMode = FILE_SHARE_READ;

    VFile() = default;
    virtual ~VFile() = default;
    VFile(const VFile&) = delete;
    VFile& operator=(const VFile&) = delete;

    // Open options, taken by the next Open.
    void SetShareMode(DWORD shareMode) noexcept { shareMode_ = shareMode; }
    DWORD GetShareMode() const noexcept { return shareMode_; }
    // The flags-and-attributes word of CreateFileW (default FILE_ATTRIBUTE_NORMAL).
    void SetFlagsAndAttributes(DWORD flags) noexcept { flagsAndAttributes_ = flags; }
    DWORD GetFlagsAndAttributes() const noexcept { return flagsAndAttributes_; }
    // Copies the descriptor, applied when Open creates the file; null (or an
    // empty descriptor) gives the default security.
    void SetSecurityDescriptor(const VSecurityDescriptor* descriptor);

    // CreateFileW with the held share mode, security (never inheritable),
    // disposition and flags; closes a file held before. Remembers fileName.
    bool Open(const VUnicodeString& fileName, DWORD access, DWORD creationDisposition);
    // Opens a new file named prefix, then the counter in upper-case hexadecimal,
    // then ".tmp" ("%1%2!X!.tmp": prefix0.tmp, prefix1.tmp, ... prefixA.tmp),
    // for reading and writing (and renaming, RenameOver) with CREATE_NEW, the
    // counter counting up from 0. An existing name (ERROR_FILE_EXISTS) moves on
    // to the next counter; any other error ends the attempt, and so does the
    // counter reaching all ones (with ERROR_FILE_EXISTS). The prefix usually
    // holds a folder path. counter, when given, receives the counter used.
    bool OpenUniqueTemporary(const VUnicodeString& prefix, DWORD* counter = nullptr);
    // The name OpenUniqueTemporary tries for counter.
    static VUnicodeString TemporaryName(const VUnicodeString& prefix, DWORD counter);
    virtual void Close() noexcept;

    bool IsOpen() const noexcept { return handle_.IsValid(); }
    // The handle stays owned by this object.
    HANDLE GetHandle() const noexcept { return handle_.Get(); }
    // The name of the last Open (kept after Close).
    const VUnicodeString& GetFileName() const noexcept { return fileName_; }

    // Byte-range locks (LockFileEx / UnlockFileEx). Lock waits until the range
    // is granted: exclusive, or shared with other shared holders. Locks are
    // mandatory on Windows: while another handle holds any lock on a range, a
    // write through this handle to it fails, and so does a read under another
    // handle's exclusive lock.
    virtual bool Lock(uint64_t offset, uint64_t length, bool exclusive);
    virtual bool Unlock(uint64_t offset, uint64_t length);

    // SetFilePointerEx: method is FILE_BEGIN, FILE_CURRENT or FILE_END.
    virtual bool Seek(int64_t distance, DWORD method, uint64_t* newPosition = nullptr);
    // Ends the file at position and leaves the file pointer there.
    virtual bool Truncate(uint64_t position);
    bool GetSize(uint64_t& size) const;

    // Renames the open file to path, replacing a file there, in one step: a
    // reader of path opens the old file or the new one, never neither. Needs
    // a file opened with DELETE access (OpenUniqueTemporary's files are).
    // Where the system offers it, the rename replaces a file that others hold
    // open; elsewhere (Wine, older Windows) it fails with ERROR_ACCESS_DENIED
    // while any handle of the replaced file is open, and the caller tries again.
    bool RenameOver(const VUnicodeString& path);
    // Marks the open file to be deleted when its last handle closes (needs
    // DELETE access).
    bool DeleteOnClose();

    // Raw I/O at the file pointer. ReadBytes answers 0 bytes at the end of the
    // file; WriteBytes fails unless every byte was written.
    bool ReadBytes(void* buffer, DWORD size, DWORD& bytesRead);
    bool WriteBytes(const void* bytes, DWORD size);

private:
    FileHandle handle_;
    VUnicodeString fileName_;
    DWORD shareMode_ = DefaultShareMode;
    DWORD flagsAndAttributes_ = FILE_ATTRIBUTE_NORMAL;
    std::optional<VSecurityDescriptor> security_;
};
