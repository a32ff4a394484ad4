// What the benchmarks share: a clock, best-of-rounds timing, and the floor
// of reading a file (ReadFile plus one MultiByteToWideChar).
#pragma once

#include <windows.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

inline double Now() {
    LARGE_INTEGER frequency;
    LARGE_INTEGER counter;
    QueryPerformanceFrequency(&frequency);
    QueryPerformanceCounter(&counter);
    return static_cast<double>(counter.QuadPart) / static_cast<double>(frequency.QuadPart);
}

// Each case's best time in seconds over several rounds. Every round runs
// every case once, so a load that comes and goes on the machine touches the
// baseline and the cases alike.
inline std::vector<double> BestTimes(const std::vector<std::function<void()>>& cases,
                                     int rounds = 15) {
    std::vector<double> best(cases.size(), 1e30);
    for (int round = 0; round < rounds; ++round) {
        for (size_t i = 0; i < cases.size(); ++i) {
            const double start = Now();
            cases[i]();
            best[i] = std::min(best[i], Now() - start);
        }
    }
    return best;
}

// The system's temporary folder, with its trailing separator.
inline std::wstring TempPath() {
    wchar_t temp[MAX_PATH + 1];
    const DWORD length = GetTempPathW(MAX_PATH + 1, temp);
    return std::wstring(temp, length);
}

inline void WriteRaw(const std::wstring& path, const std::string& bytes) {
    const HANDLE file =
        CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    DWORD written = 0;
    WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
    CloseHandle(file);
}

// The floor of reading a UTF-8 file with a mark: every byte read in 4096-byte
// blocks and converted at once. bytes and text must be large enough; the
// number of characters.
inline size_t ReadFloor(const std::wstring& path, std::vector<char>& bytes,
                        std::vector<wchar_t>& text) {
    const HANDLE file = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                    OPEN_EXISTING, 0, nullptr);
    size_t size = 0;
    DWORD got = 0;
    while (ReadFile(file, bytes.data() + size, 4096, &got, nullptr) && got > 0) size += got;
    CloseHandle(file);
    return static_cast<size_t>(MultiByteToWideChar(CP_UTF8, 0, bytes.data() + 3,
                                                   static_cast<int>(size - 3), text.data(),
                                                   static_cast<int>(text.size())));
}
