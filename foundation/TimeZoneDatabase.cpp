#include "TimeZoneDatabase.h"

#include <cwchar>
#include <iterator>

#include "ConfigMessages.h"
#include "Win32Handle.h"

namespace {

constexpr wchar_t DatabaseKey[] = L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Time Zones";
constexpr DWORD LongestKeyName = 256;

// The "TZI" value: the rules of a database entry.
#pragma pack(push, 4)
struct StoredRules {
    LONG bias;
    LONG standardBias;
    LONG daylightBias;
    SYSTEMTIME standardDate;
    SYSTEMTIME daylightDate;
};
#pragma pack(pop)
static_assert(sizeof(StoredRules) == 44);

bool OpenKey(const wchar_t* path, RegistryKeyHandle& key, LSTATUS& status) {
    HKEY opened = nullptr;
    status = RegOpenKeyExW(HKEY_LOCAL_MACHINE, path, 0, KEY_READ, &opened);
    key.Reset(status == ERROR_SUCCESS ? opened : nullptr);
    return status == ERROR_SUCCESS;
}

// A missing name leaves target empty, a long one is cut to fit, as the
// system's own record has them: the rules are what counts.
void ReadName(HKEY key, const wchar_t* value, WCHAR (&target)[32]) {
    wchar_t name[LongestKeyName];
    DWORD size = sizeof name;
    if (RegGetValueW(key, nullptr, value, RRF_RT_REG_SZ, nullptr, name, &size) != ERROR_SUCCESS)
        name[0] = 0;
    wcsncpy_s(target, std::size(target), name, _TRUNCATE);
}

}  // namespace

bool FindTimeZone(const VUnicodeString& name, VTimeZone& zone, VReportMessageParams& report) {
    if (name.IsEmpty()) {
        zone = VTimeZone();
        return true;
    }
    const auto fail = [&] {
        report.Set(CONFIG_TIME_ZONE_UNKNOWN, name);
        return false;
    };
    // A name holding "\" would reach into an entry's subkeys.
    if (name.Find(L'\\') != VUnicodeString::npos) return fail();
    RegistryKeyHandle key;
    LSTATUS status = ERROR_SUCCESS;
    if (!OpenKey((VUnicodeString(DatabaseKey) + L"\\" + name).c_str(), key, status)) return fail();
    StoredRules rules{};
    DWORD size = sizeof rules;
    if (RegGetValueW(key.Get(), nullptr, L"TZI", RRF_RT_REG_BINARY, nullptr, &rules, &size) !=
            ERROR_SUCCESS ||
        size != sizeof rules)
        return fail();

    TIME_ZONE_INFORMATION information{};
    information.Bias = rules.bias;
    information.StandardBias = rules.standardBias;
    information.DaylightBias = rules.daylightBias;
    information.StandardDate = rules.standardDate;
    information.DaylightDate = rules.daylightDate;
    ReadName(key.Get(), L"Std", information.StandardName);
    ReadName(key.Get(), L"Dlt", information.DaylightName);
    zone = VTimeZone(information);
    return true;
}

bool GetTimeZoneNames(VArray<VUnicodeString>& names, VReportMessageParams& report) {
    RegistryKeyHandle key;
    LSTATUS status = ERROR_SUCCESS;
    if (!OpenKey(DatabaseKey, key, status)) {
        report.SetMessageCode(static_cast<DWORD>(status));
        return false;
    }
    names.RemoveAll();
    for (DWORD index = 0;; ++index) {
        wchar_t name[LongestKeyName];
        DWORD length = LongestKeyName;
        status = RegEnumKeyExW(key.Get(), index, name, &length, nullptr, nullptr, nullptr, nullptr);
        if (status == ERROR_NO_MORE_ITEMS) return true;
        if (status != ERROR_SUCCESS) {
            report.SetMessageCode(static_cast<DWORD>(status));
            return false;
        }
        names.Add(VUnicodeString(name, length));
    }
}
