#include "TempFolder.h"

#include <atomic>

#include "Win32Handle.h"

namespace {

void RemoveTree(const std::wstring& path) {
    WIN32_FIND_DATAW entry;
    const HANDLE search = FindFirstFileW((path + L"\\*").c_str(), &entry);
    if (search != INVALID_HANDLE_VALUE) {
        do {
            const std::wstring name = entry.cFileName;
            if (name == L"." || name == L"..") continue;
            const std::wstring child = path + L"\\" + name;
            // Tests leave read-only files and folders behind.
            SetFileAttributesW(child.c_str(), FILE_ATTRIBUTE_NORMAL);
            if (entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) RemoveTree(child);
            else DeleteFileW(child.c_str());
        } while (FindNextFileW(search, &entry));
        FindClose(search);
    }
    RemoveDirectoryW(path.c_str());
}

}  // namespace

TempFolder::TempFolder() {
    static std::atomic<unsigned> counter{0};
    wchar_t base[MAX_PATH + 1];
    const DWORD length = GetTempPathW(MAX_PATH + 1, base);
    path_.FormatPositional(L"%1traywell-files-%2!u!-%3!u!", VUnicodeString(base, length).c_str(),
                           static_cast<unsigned>(GetCurrentProcessId()), counter++);
    CreateDirectoryW(path_.c_str(), nullptr);
}

TempFolder::~TempFolder() { RemoveTree(path_.c_str()); }

bool WriteWholeFile(const VUnicodeString& path, const std::string& bytes) {
    const FileHandle file(CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
    DWORD written = 0;
    return file && WriteFile(file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) &&
           written == bytes.size();
}

std::string ReadWholeFile(const VUnicodeString& path) {
    const FileHandle file(CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                      OPEN_EXISTING, 0, nullptr));
    std::string bytes;
    if (!file) return bytes;
    char buffer[4096];
    DWORD got = 0;
    while (ReadFile(file.Get(), buffer, sizeof buffer, &got, nullptr) && got > 0) bytes.append(buffer, got);
    return bytes;
}
