// The program's version as its version resource holds it, and the text the
// About box shows for it.
#pragma once

#include <windows.h>

#include <cstdint>

#include "VString.h"

struct VersionNumbers {
    uint16_t major = 0;
    uint16_t minor = 0;
    uint16_t patch = 0;
    uint16_t build = 0;
};

// The file version of module's version resource. False when module has none
// or it cannot be read.
bool ReadModuleVersion(HMODULE module, VersionNumbers& version);

// "major.minor.patch (x64 build N)" in a 64-bit build, without "x64 " otherwise.
VUnicodeString FormatVersionText(const VersionNumbers& version);
