#include "Installation.h"

#include <windows.h>

#include <mutex>
#include <set>
#include <string>

#include "InstallationRegistry.h"
#include "ProgramFolder.h"

namespace {

constexpr wchar_t Termwright[] = L"Termwright";
constexpr wchar_t Termlet[] = L"Termlet";
constexpr wchar_t Filewright[] = L"Filewright";

VUnicodeString ExecutablePath(const wchar_t* client) {
    VUnicodeString path;
    if (!ReadInstallationString(client, L"Path", path))
        path = GetPathBesideProgram((VUnicodeString(client) + L".exe").c_str());
    return path;
}

bool IsInstalled(const wchar_t* client) {
    const VUnicodeString path = ExecutablePath(client);
    if (path.IsEmpty()) return false;
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

// The paths handed out must outlive the call, yet are read afresh each time:
// every distinct text is kept once for the life of the process.
const wchar_t* Interned(const VUnicodeString& text) {
    static std::mutex lock;
    static std::set<std::wstring> texts;
    std::lock_guard<std::mutex> hold(lock);
    return texts.emplace(text.c_str(), text.GetLength()).first->c_str();
}

}  // namespace

bool IsIntegrated() {
    uint32_t integrated = 0;
    if (ReadInstallationDword(nullptr, L"Integrated", integrated)) return integrated != 0;
    return IsTermwrightInstalled() && IsFilewrightInstalled();
}

bool IsTermwrightInstalled() { return IsInstalled(Termwright); }
bool IsTermletInstalled() { return IsInstalled(Termlet); }
bool IsFilewrightInstalled() { return IsInstalled(Filewright); }
bool IsTermwrightOrTermletInstalled() { return IsTermwrightInstalled() || IsTermletInstalled(); }

const wchar_t* GetTermwrightPath() { return Interned(ExecutablePath(Termwright)); }
const wchar_t* GetTermletPath() { return Interned(ExecutablePath(Termlet)); }
const wchar_t* GetFilewrightPath() { return Interned(ExecutablePath(Filewright)); }
