// Names of kernel objects for one test run: the process id and a counter keep
// runs and tests apart, so no test meets a block or lock left by another.
#pragma once

#include <windows.h>

#include <atomic>

#include "VString.h"

inline VUnicodeString UniqueObjectName(const wchar_t* what) {
    static std::atomic<unsigned> counter{0};
    VUnicodeString name;
    name.FormatPrintf(128, L"TraywellTest-%ls-%lu-%u", what, GetCurrentProcessId(), counter.fetch_add(1));
    return name;
}
