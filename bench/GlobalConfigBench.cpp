// How fast the whole global options object loads and saves, from an INI file
// and from the registry, against the floor measured in the same run on the
// same data: the same bytes read with ReadFile and converted with one
// MultiByteToWideChar, or the same registry values read (written) with one
// RegQueryValueExW (RegSetValueExW) each, with no parsing and no typing.
//
//   global_config_bench [rounds]     (default 30)
//
// The key holds every option (a profile that has been saved whole). A load is
// GlobalConfig::LoadFromStore: open a store and the global options key, read
// every option with its kind and convert it. "The store alone" opens the same
// key and reads the same values with the store's getters, untyped: the part
// of a load that is the store's. A save is GlobalConfig::Save with force,
// which writes every option and flushes the key.
#include <windows.h>

#include <cstdio>
#include <cwchar>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "BenchSupport.h"
#include "BenchValues.h"
#include "GlobalConfig.h"
#include "VIniFileStoreFactory.h"
#include "VRegistryStoreFactory.h"

namespace {

// Every value of a registry key as stored: name, type and bytes.
struct RawValue {
    std::wstring name;
    DWORD type;
    std::vector<BYTE> data;
};

std::vector<RawValue> ReadRawValues(HKEY parent, const std::wstring& path) {
    std::vector<RawValue> values;
    HKEY key = nullptr;
    if (RegOpenKeyExW(parent, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) return values;
    for (DWORD index = 0;; ++index) {
        wchar_t name[256];
        DWORD nameLength = 256;
        BYTE data[4096];
        DWORD size = sizeof data;
        DWORD type = REG_NONE;
        if (RegEnumValueW(key, index, name, &nameLength, nullptr, &type, data, &size) !=
            ERROR_SUCCESS)
            break;
        values.push_back(
            {std::wstring(name, nameLength), type, std::vector<BYTE>(data, data + size)});
    }
    RegCloseKey(key);
    return values;
}

// The floor of a load: every value read once into a buffer; the number read.
size_t QueryAll(HKEY parent, const std::wstring& path, const std::vector<RawValue>& values) {
    HKEY key = nullptr;
    if (RegOpenKeyExW(parent, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) return 0;
    size_t read = 0;
    BYTE data[4096];
    for (const RawValue& value : values) {
        DWORD size = sizeof data;
        DWORD type = REG_NONE;
        read +=
            RegQueryValueExW(key, value.name.c_str(), nullptr, &type, data, &size) == ERROR_SUCCESS;
    }
    RegCloseKey(key);
    return read;
}

// The floor of a save: every value written once.
void SetAll(HKEY parent, const std::wstring& path, const std::vector<RawValue>& values) {
    HKEY key = nullptr;
    if (RegCreateKeyExW(parent, path.c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, &key, nullptr) !=
        ERROR_SUCCESS)
        return;
    for (const RawValue& value : values) {
        RegSetValueExW(key, value.name.c_str(), 0, value.type, value.data.data(),
                       static_cast<DWORD>(value.data.size()));
    }
    RegCloseKey(key);
}

std::string ReadBytes(const std::wstring& path) {
    std::vector<char> bytes(1 << 20);
    std::vector<wchar_t> text(bytes.size());
    const HANDLE file = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                    OPEN_EXISTING, 0, nullptr);
    DWORD got = 0;
    ReadFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &got, nullptr);
    CloseHandle(file);
    return std::string(bytes.data(), got);
}

// The values of the global options key with their kinds.
std::vector<std::pair<VUnicodeString, uint32_t>> ListValues(VProfileStoreFactory& factory) {
    VProfileStore store(&factory, true);
    VProfileKey key(store.GetRootKey(), GlobalConfig::KeyName, false);
    std::vector<std::pair<VUnicodeString, uint32_t>> entries;
    VProfileKeyIterator iterator(key, true);
    VUnicodeString name;
    uint32_t kind = 0;
    while (iterator.Next(name, kind)) entries.emplace_back(name, kind);
    return entries;
}

// What the store alone costs: the global options key opened and every value
// read with the getter of its kind, untyped; the number read.
size_t ReadUntyped(VProfileStoreFactory& factory,
                   const std::vector<std::pair<VUnicodeString, uint32_t>>& entries) {
    VProfileStore store(&factory, true);
    VProfileKey key(store.GetRootKey(), GlobalConfig::KeyName, false);
    size_t read = 0;
    ReadScratch scratch;
    for (const auto& [name, kind] : entries) read += ReadValueOfKind(key, name, kind, scratch);
    return read;
}

void Fill(VProfileStoreFactory& factory) {
    GlobalConfig config;
    VProfileStore store(&factory);
    VProfileKey key(store.GetRootKey(), GlobalConfig::KeyName, true);
    VReportMessageParams report;
    if (!config.Save(key, true, report))
        std::printf("  !! the global options could not be written\n");
}

// Load and save through the store, beside the two floors.
void Measure(const char* backEnd, VProfileStoreFactory& factory, int rounds,
             const std::function<void()>& loadFloor, const std::function<void()>& saveFloor,
             size_t values, size_t bytes) {
    GlobalConfig config;
    VReportMessageParams report;
    bool loaded = true;
    bool saved = true;
    const auto entries = ListValues(factory);
    size_t untyped = 0;
    const std::vector<double> times =
        BestTimes({
                      loadFloor,
                      [&] { loaded = config.LoadFromStore(&factory, report) && loaded; },
                      [&] { untyped = ReadUntyped(factory, entries); },
                      saveFloor,
                      [&] {
                          VProfileStore store(&factory);
                          VProfileKey key(store.GetRootKey(), GlobalConfig::KeyName, true);
                          saved = config.Save(key, true, report) && saved;
                      },
                  },
                  rounds);
    std::printf("\n%s: %zu values, %zu bytes\n  %-28s %10s %9s\n", backEnd, values, bytes, "case",
                "ms", "x floor");
    std::printf("  %-28s %10.3f %9.2f\n", "load: floor", times[0] * 1e3, 1.0);
    std::printf("  %-28s %10.3f %9.2f\n", "load: GlobalConfig", times[1] * 1e3,
                times[1] / times[0]);
    std::printf("  %-28s %10.3f %9.2f\n", "load: the store alone", times[2] * 1e3,
                times[2] / times[0]);
    std::printf("  %-28s %10.3f %9.2f\n", "save: floor", times[3] * 1e3, 1.0);
    std::printf("  %-28s %10.3f %9.2f\n", "save: GlobalConfig (force)", times[4] * 1e3,
                times[4] / times[3]);
    if (!loaded || !saved || untyped != values) std::printf("  !! a load or save failed\n");
}

void IniFile(int rounds) {
    const std::wstring folder = TempPath() + L"global_config_bench";
    CreateDirectoryW(folder.c_str(), nullptr);
    // No personal data folder: the global options have no personal values,
    // and the floor reads one file.
    VIniFileStoreFactory factory(VUnicodeString(folder.c_str()), VUnicodeString());
    Fill(factory);
    const std::wstring file = folder + L"\\Global.ini";
    const std::wstring copy = folder + L"\\floor-out.ini";
    const std::string bytes = ReadBytes(file);
    std::vector<char> buffer(bytes.size() + 4096);
    std::vector<wchar_t> text(bytes.size());
    const size_t values = GlobalConfig::OptionCount;
    Measure(
        "INI file", factory, rounds, [&] { ReadFloor(file, buffer, text); },
        [&] { WriteRaw(copy, bytes); }, values, bytes.size());
    DeleteFileW(file.c_str());
    DeleteFileW(copy.c_str());
    RemoveDirectoryW((folder + L"\\Global").c_str());
    RemoveDirectoryW(folder.c_str());
}

void Registry(int rounds) {
    const std::wstring root =
        L"Software\\TraywellBench\\global-" + std::to_wstring(GetCurrentProcessId());
    const std::wstring path = root + L"\\Global";
    const std::wstring copy = root + L"\\Floor";
    VRegistryStoreFactory factory(HKEY_CURRENT_USER, VUnicodeString(root.c_str()));
    Fill(factory);
    const std::vector<RawValue> values = ReadRawValues(HKEY_CURRENT_USER, path);
    size_t bytes = 0;
    for (const RawValue& value : values) bytes += value.data.size();
    size_t read = 0;
    Measure(
        "registry", factory, rounds, [&] { read = QueryAll(HKEY_CURRENT_USER, path, values); },
        [&] { SetAll(HKEY_CURRENT_USER, copy, values); }, values.size(), bytes);
    if (read != GlobalConfig::OptionCount) std::printf("  !! the floor read %zu values\n", read);
    RegDeleteTreeW(HKEY_CURRENT_USER, root.c_str());
    RegDeleteKeyW(HKEY_CURRENT_USER, L"Software\\TraywellBench");
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
    const int rounds = argc > 1 ? static_cast<int>(std::wcstol(argv[1], nullptr, 10)) : 30;
    std::printf(
        "global_config_bench: best of %d rounds; \"x floor\" is the time ratio to the floor\n",
        rounds);
    IniFile(rounds);
    Registry(rounds);
    return 0;
}
