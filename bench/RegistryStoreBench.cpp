// How fast the registry store reads and writes a key of 250 values, against
// the least the registry allows on the same values, measured in the same run:
//   floor   one RegQueryValueExW per value, by name, into a buffer large
//           enough (reading), and one RegSetValueExW per value (writing), on
//           a key opened for the loop.
// Reading is timed by name (the getter of each value's kind) and through the
// value iterator (each listed value read by the getter of its kind), both
// against the same floor.
//
//   bench_registry_store
#include <windows.h>

#include <cstdio>
#include <string>
#include <vector>

#include "BenchSupport.h"
#include "BenchValues.h"
#include "VRegistryProfileKey.h"

namespace {

constexpr wchar_t BenchRoot[] = L"Software\\Traywell Bench";
constexpr wchar_t BenchKey[] = L"Software\\Traywell Bench\\Registry";

// A value as RegSetValueExW takes it.
struct RawValue {
    std::wstring name;
    DWORD type;
    std::vector<BYTE> data;
};

std::vector<RawValue> RawValues(const std::vector<Value>& values) {
    std::vector<RawValue> raw;
    for (const Value& value : values) {
        RawValue entry{value.name, REG_NONE, {}};
        const auto put = [&](const void* bytes, size_t size) {
            const auto* first = static_cast<const BYTE*>(bytes);
            entry.data.insert(entry.data.end(), first, first + size);
        };
        switch (value.kind) {
            case ProfileDword:
                entry.type = REG_DWORD;
                put(&value.number, sizeof value.number);
                break;
            case ProfileString:
                entry.type = REG_SZ;
                put(value.text.c_str(), (value.text.size() + 1) * sizeof(wchar_t));
                break;
            case ProfileBinary:
                entry.type = REG_BINARY;
                put(value.bytes.data(), value.bytes.size());
                break;
            default:
                entry.type = REG_MULTI_SZ;
                for (const std::wstring& string : value.strings)
                    put(string.c_str(), (string.size() + 1) * sizeof(wchar_t));
                put(L"", sizeof(wchar_t));
        }
        raw.push_back(std::move(entry));
    }
    return raw;
}

size_t ReadFloor(const std::vector<RawValue>& values) {
    HKEY key = nullptr;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, BenchKey, 0, KEY_QUERY_VALUE, &key) != ERROR_SUCCESS)
        return 0;
    size_t read = 0;
    BYTE buffer[4096];
    for (const RawValue& value : values) {
        DWORD type = REG_NONE;
        DWORD size = sizeof buffer;
        read += RegQueryValueExW(key, value.name.c_str(), nullptr, &type, buffer, &size) ==
                ERROR_SUCCESS;
    }
    RegCloseKey(key);
    return read;
}

void WriteFloor(const std::vector<RawValue>& values) {
    HKEY key = nullptr;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, BenchKey, 0, KEY_SET_VALUE, &key) != ERROR_SUCCESS) return;
    for (const RawValue& value : values)
        RegSetValueExW(key, value.name.c_str(), 0, value.type, value.data.data(),
                       static_cast<DWORD>(value.data.size()));
    RegCloseKey(key);
}

// Every listed value, read with the getter of its kind; the number read.
size_t ReadListed(VProfilePrivateKey& key) {
    size_t read = 0;
    ReadScratch scratch;
    const auto iterator = key.CreatePrivateKeyIterator(true);
    VUnicodeString name;
    uint32_t kind = 0;
    while (iterator->Next(name, kind)) read += ReadValueOfKind(key, name, kind, scratch);
    return read;
}

void Row(const char* what, double seconds, size_t values, double floor) {
    std::printf("  %-40s %10.3f %12.0f %9.2f\n", what, seconds * 1e3,
                static_cast<double>(values) / seconds, seconds / floor);
}

}  // namespace

int wmain() {
    constexpr size_t count = 250;
    const std::vector<Value> values = SessionLikeValues(count, count);
    const std::vector<RawValue> raw = RawValues(values);
    {
        VRegistryProfileKey key(HKEY_CURRENT_USER, BenchKey, false, true, nullptr);
        Store(key, values);
    }
    size_t read[4] = {};
    const std::vector<double> reading = BestTimes({
        [&] { read[0] = ReadFloor(raw); },
        [&] {
            VRegistryProfileKey key(HKEY_CURRENT_USER, BenchKey, true, false, nullptr);
            read[1] = LoadAll(key, values);
        },
        [&] {
            VRegistryProfileKey key(HKEY_CURRENT_USER, BenchKey, true, false, nullptr);
            read[2] = ReadListed(key);
        },
    });
    const std::vector<double> writing = BestTimes({
        [&] { WriteFloor(raw); },
        [&] {
            VRegistryProfileKey key(HKEY_CURRENT_USER, BenchKey, false, false, nullptr);
            Store(key, values);
        },
    });
    std::printf(
        "bench_registry_store: a key of %zu values under HKEY_CURRENT_USER, best of several "
        "rounds; "
        "\"x floor\" is a time ratio\n  %-40s %10s %12s %9s\n",
        count, "case", "ms", "values/s", "x floor");
    Row("read: floor (RegQueryValueExW by name)", reading[0], count, reading[0]);
    Row("read: VRegistryProfileKey by name", reading[1], count, reading[0]);
    Row("read: VRegistryProfileKey, value iterator", reading[2], count, reading[0]);
    Row("write: floor (RegSetValueExW)", writing[0], count, writing[0]);
    Row("write: VRegistryProfileKey", writing[1], count, writing[0]);
    for (size_t i = 0; i < 3; ++i)
        if (read[i] != count)
            std::printf("  !! reading %zu read %zu values of %zu\n", i, read[i], count);
    RegDeleteTreeW(HKEY_CURRENT_USER, BenchRoot);
    return 0;
}
