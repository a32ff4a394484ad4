// A helper process for the INI-file store tests.
//
//   ini_store_helper churn <key folder> <milliseconds> <id> <result file>
//       Saves and loads the key in turns until the time is up. Every save
//       writes one generation of 150 values that all name this writer and
//       its counter (GenerationValues.h); every load checks that all values
//       are there and belong to one generation. Writes "saves loads last"
//       to the result file, last being the counter of its last save.
//   ini_store_helper save-generations <key folder> <private folder> <event>
//       Loads the key (main and private file, GenerationValues.h with
//       private values, KillValueCount values) and saves the following
//       generations of the same writer one after the other until it is
//       killed; signals the named event as the first save starts.
//   ini_store_helper hold <file> exclusive|shared <milliseconds> <event> [<text>]
//       Opens file, locks its first 4 bytes, signals the named event and keeps
//       the lock for the given time. Exclusive: then rewrites the file with
//       text (as UTF-8 after a mark) before unlocking. Shared: then checks that
//       the file did not change while it was held.
//
// Exit codes: 0 fine, 1 a check failed, 2 a call failed, 3 bad arguments.
// The lock is taken with the system's calls directly, not with the store's
// file classes, so that the store is checked against the system's locking.
#include <windows.h>

#include <cstdio>
#include <cwchar>
#include <string>

#include "GenerationValues.h"
#include "VIniFileKey.h"
#include "Win32Handle.h"

namespace {

constexpr unsigned ChurnValueCount = 150;

std::string ReadAll(HANDLE file) {
    std::string bytes;
    char buffer[4096];
    DWORD got = 0;
    SetFilePointer(file, 0, nullptr, FILE_BEGIN);
    while (ReadFile(file, buffer, sizeof buffer, &got, nullptr) && got > 0) bytes.append(buffer, got);
    return bytes;
}

int Hold(const wchar_t* path, bool exclusive, DWORD milliseconds, const wchar_t* eventName, const wchar_t* text) {
    const FileHandle file(CreateFileW(path, GENERIC_READ | GENERIC_WRITE,
                                      FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                                      FILE_ATTRIBUTE_NORMAL, nullptr));
    const KernelHandle ready(OpenEventW(EVENT_MODIFY_STATE, FALSE, eventName));
    if (!file || !ready) return 2;
    OVERLAPPED range{};
    if (!LockFileEx(file.Get(), exclusive ? LOCKFILE_EXCLUSIVE_LOCK : 0, 0, 4, 0, &range)) return 2;
    const std::string before = ReadAll(file.Get());
    SetEvent(ready.Get());
    Sleep(milliseconds);
    int result = 0;
    if (exclusive) {
        std::string bytes = "\xEF\xBB\xBF";
        const int length = WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr);
        std::string utf8(static_cast<size_t>(length), '\0');
        WideCharToMultiByte(CP_UTF8, 0, text, -1, utf8.data(), length, nullptr, nullptr);
        bytes += utf8.c_str();
        DWORD written = 0;
        SetFilePointer(file.Get(), 0, nullptr, FILE_BEGIN);
        if (!SetEndOfFile(file.Get()) ||
            !WriteFile(file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr))
            result = 2;
    } else if (ReadAll(file.Get()) != before) {
        result = 1;
    }
    UnlockFileEx(file.Get(), 0, 4, 0, &range);
    return result;
}

int Churn(const wchar_t* folder, DWORD milliseconds, unsigned id, const wchar_t* resultFile) {
    const ULONGLONG end = GetTickCount64() + milliseconds;
    unsigned saves = 0, loads = 0;
    Generation last{id, 0};
    for (unsigned counter = 0; GetTickCount64() < end; ++counter) {
        {
            VIniFileKey writer(VUnicodeString(folder), VUnicodeString(), false, nullptr);
            StoreGeneration(writer, {id, counter}, ChurnValueCount, false);
            if (!writer.Flush()) return 2;
            last.number = counter;
            ++saves;
        }
        for (int read = 0; read < 2; ++read) {
            VIniFileKey reader(VUnicodeString(folder), VUnicodeString(), true, nullptr);
            Generation main, personal;
            if (!ReadGeneration(reader, ChurnValueCount, false, main, personal)) return 1;
            ++loads;
        }
    }
    FILE* result = _wfopen(resultFile, L"w");
    if (!result) return 2;
    std::fprintf(result, "%u %u %u\n", saves, loads, last.number);
    std::fclose(result);
    return 0;
}

int SaveGenerations(const wchar_t* folder, const wchar_t* privateFolder, const wchar_t* eventName) {
    const KernelHandle ready(OpenEventW(EVENT_MODIFY_STATE, FALSE, eventName));
    if (!ready) return 2;
    VIniFileKey key(VUnicodeString(folder), VUnicodeString(privateFolder), false, nullptr);
    Generation main, personal;
    if (!ReadGeneration(key, KillValueCount, true, main, personal)) return 1;
    for (bool first = true;; first = false) {
        ++main.number;
        StoreGeneration(key, main, KillValueCount, true);
        // The kill is timed from the start of the first save.
        if (first) SetEvent(ready.Get());
        if (!key.Flush()) return 2;
    }
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
    if (argc == 6 && std::wcscmp(argv[1], L"churn") == 0)
        return Churn(argv[2], std::wcstoul(argv[3], nullptr, 10), std::wcstoul(argv[4], nullptr, 10), argv[5]);
    if (argc == 5 && std::wcscmp(argv[1], L"save-generations") == 0) return SaveGenerations(argv[2], argv[3], argv[4]);
    if ((argc == 6 || argc == 7) && std::wcscmp(argv[1], L"hold") == 0) {
        const bool exclusive = std::wcscmp(argv[3], L"exclusive") == 0;
        if (!exclusive && std::wcscmp(argv[3], L"shared") != 0) return 3;
        return Hold(argv[2], exclusive, std::wcstoul(argv[4], nullptr, 10), argv[5], argc == 7 ? argv[6] : L"");
    }
    return 3;
}
