#include "PrivateValueNames.h"

#include <string_view>
#include <unordered_map>

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

// Every value read from a file is looked up here, so the lookup is a hash
// probe rather than 22 comparisons.
const std::unordered_map<std::wstring_view, int>& NameIndex() {
    static const std::unordered_map<std::wstring_view, int> index = [] {
        std::unordered_map<std::wstring_view, int> built;
        for (size_t i = 0; i < PrivateValueNameCount; ++i) built.emplace(Names[i], static_cast<int>(i));
        return built;
    }();
    return index;
}

}  // namespace

const VArray<VUnicodeString>& GetPrivateValueNames() {
    static const VArray<VUnicodeString> names = [] {
        VArray<VUnicodeString> built;
        for (const wchar_t* name : Names) built.Add(VUnicodeString(name));
        return built;
    }();
    return names;
}

int FindPrivateValueName(const wchar_t* name, size_t length) {
    const auto& index = NameIndex();
    const auto found = index.find(std::wstring_view(name, length));
    return found == index.end() ? -1 : found->second;
}
