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
