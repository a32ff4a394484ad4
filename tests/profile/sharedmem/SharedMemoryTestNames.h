// Shared helpers of the shared-memory tests. Kernel object names for one test
// run: the process id and a counter keep runs and tests apart, so no test
// meets a block or lock left by another.
#pragma once

#include <windows.h>

#include <atomic>

#include "VSharedMemoryCache.h"
#include "VString.h"

inline VUnicodeString UniqueObjectName(const wchar_t* what) {
    static std::atomic<unsigned> counter{0};
    VUnicodeString name;
    name.FormatPrintf(128, L"TraywellTest-%ls-%lu-%u", what, GetCurrentProcessId(), counter.fetch_add(1));
    return name;
}

// The cache, and the thread's last error right after its creation.
inline VRefPtr<VSharedMemoryCache> OpenCache(const VUnicodeString& name, size_t size, DWORD& outcome) {
    SetLastError(0xDEAD);  // so that a creation that forgot to set it shows
    auto cache = VRefPtr<VSharedMemoryCache>::Adopt(new VSharedMemoryCache(name, size));
    outcome = GetLastError();
    return cache;
}
