#include "RegistrySettings.h"

#include <initializer_list>
#include <iterator>

#include "VRegistryKey.h"

namespace {

constexpr wchar_t FamilyPath[] = L"SOFTWARE\\Quillon";
constexpr wchar_t OlderFamilyPath[] = L"SOFTWARE\\Quillon Works";
constexpr wchar_t PolicyPath[] = L"Software\\Policies\\Quillon";
constexpr wchar_t TerminalClient[] = L"Termwright";

bool ReadValue(VRegistryKey& key, const VUnicodeString& name, uint32_t& value) {
    return key.GetDword(name, value);
}
bool ReadValue(VRegistryKey& key, const VUnicodeString& name, VUnicodeString& text) {
    return key.GetString(name, text);
}

// The value from the first place that has it with the type of T.
template <class T>
bool ReadFirst(std::initializer_list<RegistryPlace> places, const VUnicodeString& name, T& value) {
    for (const RegistryPlace& place : places) {
        VRegistryKey key;
        T read{};
        if (key.Open(place.hive, place.path, KEY_READ) && ReadValue(key, name, read)) {
            value = read;
            return true;
        }
    }
    return false;
}

template <class T>
bool ReadPolicy(const VUnicodeString& name, T& value) {
    return ReadFirst({{HKEY_LOCAL_MACHINE, PolicyPath},
                      {HKEY_CURRENT_USER, PolicyPath},
                      {HKEY_LOCAL_MACHINE, VUnicodeString(FamilyPath) + L"\\Global"}},
                     name, value);
}

VUnicodeString WithSubkey(VUnicodeString path, const VUnicodeString& keyName) {
    if (!keyName.IsEmpty()) {
        path += L"\\";
        path += keyName;
    }
    return path;
}

bool IsTerminalClient(const VUnicodeString& application) {
    constexpr size_t length = std::size(TerminalClient) - 1;
    return application.GetLength() >= length &&
           application.Left(length).EqualsNoCase(TerminalClient);
}

template <class T>
T ReadApplicationSetting(const VUnicodeString& name, const VUnicodeString& application,
                         const VUnicodeString& keyName, T value) {
    if (ReadPolicy(name, value)) return value;
    const RegistryPlace own{HKEY_LOCAL_MACHINE,
                            WithSubkey(VUnicodeString(FamilyPath) + L"\\" + application, keyName)};
    if (ReadFirst({own}, name, value)) return value;
    if (IsTerminalClient(application)) {
        const VUnicodeString older =
            VUnicodeString(OlderFamilyPath) + L"\\" + application + L" 3.0";
        ReadFirst({{HKEY_LOCAL_MACHINE, WithSubkey(older, keyName)}}, name, value);
    }
    return value;
}

}  // namespace

RegistryPlace FindFamilyRegistryBase() {
    for (const RegistryPlace& place : {RegistryPlace{HKEY_CURRENT_USER, FamilyPath},
                                       RegistryPlace{HKEY_LOCAL_MACHINE, FamilyPath},
                                       RegistryPlace{HKEY_CURRENT_USER, OlderFamilyPath},
                                       RegistryPlace{HKEY_LOCAL_MACHINE, OlderFamilyPath}}) {
        VRegistryKey key;  // closed again at once: only whether it opens counts
        if (key.Open(place.hive, place.path, KEY_READ)) return place;
    }
    return {HKEY_CURRENT_USER, FamilyPath};
}

bool GetPolicyDword(const VUnicodeString& valueName, uint32_t& value) {
    return ReadPolicy(valueName, value);
}

bool GetPolicyString(const VUnicodeString& valueName, VUnicodeString& text) {
    return ReadPolicy(valueName, text);
}

uint32_t GetApplicationSettingDword(const VUnicodeString& valueName,
                                    const VUnicodeString& application,
                                    const VUnicodeString& keyName, uint32_t defaultValue) {
    return ReadApplicationSetting(valueName, application, keyName, defaultValue);
}

VUnicodeString GetApplicationSettingString(const VUnicodeString& valueName,
                                           const VUnicodeString& application,
                                           const VUnicodeString& keyName,
                                           const VUnicodeString& defaultValue) {
    return ReadApplicationSetting(valueName, application, keyName, defaultValue);
}
