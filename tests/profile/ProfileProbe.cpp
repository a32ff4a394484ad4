// The helper process of the profile tests: it locks, reads, writes and shares
// what the test process does, from outside it, with the system's own calls
// where it checks the store. Modes (see wmain): lock <file> <offset> <length>
// shared|exclusive; hold <file> exclusive|shared <ms> <event> [<text>];
// churn <key folder> <ms> <id> <result file>; save-generations <key folder>
// <private folder> <event>; cache open|hold|peek|count <name> <size> [...].
#include <windows.h>

#include <cstdio>
#include <cstring>
#include <cwchar>
#include <string>

#include "GenerationValues.h"
#include "ProfileProbe.h"
#include "VIniFileKey.h"
#include "VSharedMemoryCache.h"
#include "Win32Handle.h"

namespace {

constexpr unsigned ChurnValueCount = 150;
constexpr DWORD EventWait = 60000;

bool SetNamedEvent(const wchar_t* name) {
    const KernelHandle event(OpenEventW(EVENT_MODIFY_STATE, FALSE, name));
    return event && SetEvent(event.Get());
}

bool WaitForEvent(const wchar_t* name) {
    const KernelHandle event(OpenEventW(SYNCHRONIZE, FALSE, name));
    return event && WaitForSingleObject(event.Get(), EventWait) == WAIT_OBJECT_0;
}

FileHandle OpenShared(const wchar_t* path) {
    return FileHandle(CreateFileW(path, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                  nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
}

// Tries the byte-range lock without waiting: ProbeRefused when another process holds it.
int Lock(const wchar_t* path, unsigned long long offset, unsigned long long length, bool exclusive) {
    const FileHandle file = OpenShared(path);
    OVERLAPPED overlapped{};
    overlapped.Offset = static_cast<DWORD>(offset);
    overlapped.OffsetHigh = static_cast<DWORD>(offset >> 32);
    const DWORD flags = LOCKFILE_FAIL_IMMEDIATELY | (exclusive ? LOCKFILE_EXCLUSIVE_LOCK : 0);
    if (!file) return ProbeFailed;
    if (LockFileEx(file.Get(), flags, 0, static_cast<DWORD>(length), static_cast<DWORD>(length >> 32), &overlapped))
        return 0;  // closing the file releases the lock
    return GetLastError() == ERROR_LOCK_VIOLATION ? ProbeRefused : ProbeFailed;
}

std::string ReadAll(HANDLE file) {
    std::string bytes;
    char buffer[4096];
    DWORD got = 0;
    SetFilePointer(file, 0, nullptr, FILE_BEGIN);
    while (ReadFile(file, buffer, sizeof buffer, &got, nullptr) && got > 0) bytes.append(buffer, got);
    return bytes;
}

// Locks the first 4 bytes, sets event and keeps the lock for milliseconds; then
// exclusive rewrites the file in place with text (UTF-8 after a mark), as older
// programs of the family do, and shared checks that the file did not change.
int Hold(const wchar_t* path, bool exclusive, DWORD milliseconds, const wchar_t* event, const wchar_t* text) {
    const FileHandle file = OpenShared(path);
    OVERLAPPED range{};
    if (!file || !LockFileEx(file.Get(), exclusive ? LOCKFILE_EXCLUSIVE_LOCK : 0, 0, 4, 0, &range)) return ProbeFailed;
    const std::string before = ReadAll(file.Get());
    if (!SetNamedEvent(event)) return ProbeBadArguments;
    Sleep(milliseconds);
    int result = 0;
    if (exclusive) {
        char utf8[4096];
        const std::string bytes = "\xEF\xBB\xBF" + std::string(utf8, WideCharToMultiByte(CP_UTF8, 0, text, -1, utf8,
                                                                                          sizeof utf8, nullptr, nullptr) - 1);
        DWORD written = 0;
        SetFilePointer(file.Get(), 0, nullptr, FILE_BEGIN);
        if (!SetEndOfFile(file.Get()) ||
            !WriteFile(file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr))
            result = ProbeFailed;
    } else if (ReadAll(file.Get()) != before) {
        result = ProbeRefused;
    }
    UnlockFileEx(file.Get(), 0, 4, 0, &range);
    return result;
}

// Saves one generation and loads the key twice, in turns, until the time is up;
// writes "saves loads last-generation" to resultFile.
int Churn(const wchar_t* folder, DWORD milliseconds, unsigned id, const wchar_t* resultFile) {
    const ULONGLONG end = GetTickCount64() + milliseconds;
    unsigned saves = 0, loads = 0, last = 0;
    for (unsigned counter = 0; GetTickCount64() < end; ++counter) {
        VIniFileKey writer(VUnicodeString(folder), VUnicodeString(), false, nullptr);
        StoreGeneration(writer, {id, counter}, ChurnValueCount, false);
        if (!writer.Flush()) return ProbeFailed;
        last = counter;
        ++saves;
        for (int read = 0; read < 2; ++read, ++loads) {
            VIniFileKey reader(VUnicodeString(folder), VUnicodeString(), true, nullptr);
            Generation main, personal;
            if (!ReadGeneration(reader, ChurnValueCount, false, main, personal)) return ProbeRefused;
        }
    }
    FILE* result = _wfopen(resultFile, L"w");
    if (!result) return ProbeFailed;
    std::fprintf(result, "%u %u %u\n", saves, loads, last);
    std::fclose(result);
    return 0;
}

// Saves the generations after the one it loads until it is killed.
int SaveGenerations(const wchar_t* folder, const wchar_t* privateFolder, const wchar_t* event) {
    VIniFileKey key(VUnicodeString(folder), VUnicodeString(privateFolder), false, nullptr);
    Generation main, personal;
    if (!ReadGeneration(key, KillValueCount, true, main, personal)) return ProbeRefused;
    for (bool first = true;; first = false) {
        ++main.number;
        StoreGeneration(key, main, KillValueCount, true);
        // The kill is timed from the start of the first save.
        if (first && !SetNamedEvent(event)) return ProbeBadArguments;
        if (!key.Flush()) return ProbeFailed;
    }
}

// open; hold <ready> <quit>; peek <byte> <count>: checks the data's first count
// bytes and writes the holder count after them; count <go> <times>: adds one to
// the counter at the start of the data that many times, under the lock.
int Cache(int argc, wchar_t** argv) {
    const wchar_t* mode = argv[2];
    const auto cache =
        VRefPtr<VSharedMemoryCache>::Adopt(new VSharedMemoryCache(argv[3], std::wcstoull(argv[4], nullptr, 0)));
    if (const DWORD created = GetLastError()) return static_cast<int>(created);
    if (std::wcscmp(mode, L"open") == 0 && argc == 5) return 0;
    if (argc != 7) return ProbeBadArguments;
    if (std::wcscmp(mode, L"hold") == 0) {
        if (!SetNamedEvent(argv[5])) return ProbeBadArguments;
        return WaitForEvent(argv[6]) ? 0 : ProbeTimedOut;
    }
    auto* data = static_cast<uint8_t*>(cache->GetData());
    if (std::wcscmp(mode, L"peek") == 0) {
        const unsigned byte = std::wcstoul(argv[5], nullptr, 0);
        const size_t count = std::wcstoull(argv[6], nullptr, 0);
        cache->Lock();
        bool same = true;
        for (size_t i = 0; i < count; ++i) same = same && data[i] == byte;
        const uint32_t holders = cache->GetHolderCount();
        std::memcpy(data + count, &holders, sizeof holders);
        cache->Unlock();
        return same ? 0 : ProbeRefused;
    }
    if (std::wcscmp(mode, L"count") != 0) return ProbeBadArguments;
    if (!WaitForEvent(argv[5])) return ProbeTimedOut;
    auto* counter = reinterpret_cast<volatile uint32_t*>(data);
    for (unsigned long i = std::wcstoul(argv[6], nullptr, 0); i > 0; --i) {
        cache->Lock();
        const uint32_t seen = *counter;
        SwitchToThread();  // invites the others in: without the lock, updates would be lost
        *counter = seen + 1;
        cache->Unlock();
    }
    return 0;
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
    const auto is = [&](const wchar_t* mode, int from, int to) {
        return argc >= from && argc <= to && std::wcscmp(argv[1], mode) == 0;
    };
    if (is(L"lock", 6, 6))
        return Lock(argv[2], std::wcstoull(argv[3], nullptr, 0), std::wcstoull(argv[4], nullptr, 0),
                    std::wcscmp(argv[5], L"exclusive") == 0);
    if (is(L"hold", 6, 7))
        return Hold(argv[2], std::wcscmp(argv[3], L"exclusive") == 0, std::wcstoul(argv[4], nullptr, 10), argv[5],
                    argc == 7 ? argv[6] : L"");
    if (is(L"churn", 6, 6))
        return Churn(argv[2], std::wcstoul(argv[3], nullptr, 10), std::wcstoul(argv[4], nullptr, 10), argv[5]);
    if (is(L"save-generations", 5, 5)) return SaveGenerations(argv[2], argv[3], argv[4]);
    if (is(L"cache", 5, 7)) return Cache(argc, argv);
    return ProbeBadArguments;
}
