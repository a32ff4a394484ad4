// A helper process for the file tests: tries to take a byte-range lock on a
// file without waiting and tells by its exit code whether it was granted.
//
//   file_lock_probe <file> <offset> <length> shared|exclusive
//
// Exit codes: 0 granted, 1 refused (held by another process), 2 any other
// failure, 3 bad arguments.
#include <windows.h>

#include <cwchar>

int wmain(int argc, wchar_t** argv) {
    if (argc != 5) return 3;
    const unsigned long long offset = std::wcstoull(argv[2], nullptr, 0);
    const unsigned long long length = std::wcstoull(argv[3], nullptr, 0);
    const bool exclusive = std::wcscmp(argv[4], L"exclusive") == 0;
    if (!exclusive && std::wcscmp(argv[4], L"shared") != 0) return 3;

    const HANDLE file = CreateFileW(argv[1], GENERIC_READ | GENERIC_WRITE,
                                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                                    FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) return 2;
    OVERLAPPED overlapped{};
    overlapped.Offset = static_cast<DWORD>(offset);
    overlapped.OffsetHigh = static_cast<DWORD>(offset >> 32);
    const DWORD flags = LOCKFILE_FAIL_IMMEDIATELY | (exclusive ? LOCKFILE_EXCLUSIVE_LOCK : 0);
    int result = 0;
    if (!LockFileEx(file, flags, 0, static_cast<DWORD>(length), static_cast<DWORD>(length >> 32), &overlapped))
        result = GetLastError() == ERROR_LOCK_VIOLATION ? 1 : 2;
    CloseHandle(file);  // also releases the lock
    return result;
}
