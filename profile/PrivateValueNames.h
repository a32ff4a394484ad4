// The value names whose values a key keeps in its private values file (in the
// personal data folder) rather than beside its other values: pass phrases,
// user names, commands and the fonts that belong to one user.
#pragma once

#include <cstddef>

#include "VContainers.h"
#include "VString.h"

inline constexpr size_t PrivateValueNameCount = 22;

// The names in their fixed order, built once per process. Thread-safe.
const VArray<VUnicodeString>& GetPrivateValueNames();

// The position of name in that list, compared exactly (case-sensitive, whole
// length); -1 when it is not a private value name. Thread-safe.
int FindPrivateValueName(const wchar_t* name, size_t length);
inline int FindPrivateValueName(const VUnicodeString& name) {
    return FindPrivateValueName(name.c_str(), name.GetLength());
}
inline bool IsPrivateValueName(const VUnicodeString& name) { return FindPrivateValueName(name) >= 0; }
