#include "PrivateValueNames.h"

namespace {

constexpr const wchar_t* Names[PrivateValueNameCount] = {
    L"Username",
    L"Password",
    L"Password V2",
    L"Login Script V2",
    L"Login Script V3",
    L"Session Password Saved",
    L"Local Shell Command Pre-connect",
    L"Local Shell Command Pre-connect V2",
    L"Account",
    L"Account V2",
    L"Monitor Username",
    L"Monitor Password",
    L"Monitor Password V2",
    L"Normal Font v2",
    L"Narrow Font v2",
    L"Use Narrow Font",
    L"SCP Shell Password",
    L"SCP Shell Password V2",
    L"PGP Upload Command",
    L"PGP Upload Command V2",
    L"PGP Download Command",
    L"PGP Download Command V2",
};

}  // namespace

const VArray<VUnicodeString>& GetPrivateValueNames() {
    static const VArray<VUnicodeString> names = [] {
        VArray<VUnicodeString> built;
        for (const wchar_t* name : Names) built.Add(VUnicodeString(name));
        return built;
    }();
    return names;
}
