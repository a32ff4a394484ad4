#include "TerminalConfig.h"

#include <iterator>

namespace {

using Owner = TerminalConfig;

constexpr VProfileData& (*Members[])(Owner&) = {TERMINAL_OPTIONS(PROFILE_TABLE_ROW)};

const TerminalConfig& Defaults() {
    static const TerminalConfig defaults;
    return defaults;
}

}  // namespace

TerminalConfig::TerminalConfig() : ProfileValueList(Name) {}

void TerminalConfig::Load(VProfileKey* key) {
    ProfileLoadKey from(key);
    Load(from);
}

void TerminalConfig::Load(ProfileLoadKey& from) {
    const TerminalConfig& defaults = Defaults();
    TERMINAL_OPTIONS(PROFILE_TABLE_LOAD)
}

size_t TerminalConfig::GetMemberCount() const { return std::size(Members); }

VProfileData& TerminalConfig::GetMember(size_t index) {
    if (index >= std::size(Members)) throw VContainerOutOfRange();
    return Members[index](*this);
}

bool TerminalConfig::Equals(const TerminalConfig& other) const {
    return true TERMINAL_OPTIONS(PROFILE_TABLE_SAME);
}

const VArray<VUnicodeString>& TerminalConfig::GetEmulationNames() {
    static const VArray<VUnicodeString> names = {
        L"VT100",      L"VT102",      L"VT220",      L"VT320",      L"ANSI",   L"SCO-ANSI",
        L"Xterm",      L"Linux",      L"WYSE50",     L"WYSE60",     L"TN3270", L"IBM-3278-2",
        L"IBM-3278-3", L"IBM-3278-4", L"IBM-3278-5", L"Hostwright", L"Dumb",   L"Custom"};
    return names;
}

VUnicodeString TerminalConfig::GetEmulationName() const {
    VUnicodeString stored = Emulation.Get();
    if (stored.EqualsNoCase(L"SCOANSI")) stored = L"SCO-ANSI";
    for (const VUnicodeString& name : GetEmulationNames())
        if (name.EqualsNoCase(stored)) return name;
    return Defaults().Emulation.Get();
}
