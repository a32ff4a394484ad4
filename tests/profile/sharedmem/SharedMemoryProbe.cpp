// A helper process for the shared-memory tests: opens a VSharedMemoryCache
// and does one thing with it.
//
//   shared_memory_probe open  <name> <size>
//       exits at once; only the creation's outcome counts.
//   shared_memory_probe hold  <name> <size> <ready event> <quit event>
//       sets the ready event once the cache is held and keeps it until the
//       quit event is set.
//   shared_memory_probe peek  <name> <size> <byte> <count>
//       checks that the data area starts with count bytes of value byte, and
//       writes the holder count it sees (32 bits) right after them.
//   shared_memory_probe count <name> <size> <go event> <times>
//       once the go event is set, adds one to the 32-bit counter at the start
//       of the data area times times, each under the cache's lock.
//
// Exit codes: 0 done; the thread's last error when the cache could not be
// opened; ProbeDataChanged when peek found other bytes; ProbeBadArguments;
// ProbeTimedOut when an event never came.
#include <windows.h>

#include <cstdint>
#include <cstring>
#include <cwchar>

#include "SharedMemoryProbe.h"
#include "VSharedMemoryCache.h"

namespace {

constexpr DWORD EventWait = 60000;

bool WaitForEvent(const wchar_t* name) {
    const KernelHandle event(OpenEventW(SYNCHRONIZE, FALSE, name));
    return event && WaitForSingleObject(event.Get(), EventWait) == WAIT_OBJECT_0;
}

bool SetNamedEvent(const wchar_t* name) {
    const KernelHandle event(OpenEventW(EVENT_MODIFY_STATE, FALSE, name));
    return event && SetEvent(event.Get());
}

int Hold(VSharedMemoryCache&, const wchar_t* ready, const wchar_t* quit) {
    if (!SetNamedEvent(ready)) return ProbeBadArguments;
    return WaitForEvent(quit) ? 0 : ProbeTimedOut;
}

int Peek(VSharedMemoryCache& cache, unsigned byte, size_t count) {
    auto* data = static_cast<uint8_t*>(cache.GetData());
    cache.Lock();
    bool same = true;
    for (size_t i = 0; i < count; ++i) same = same && data[i] == byte;
    const uint32_t holders = cache.GetHolderCount();
    std::memcpy(data + count, &holders, sizeof holders);
    cache.Unlock();
    return same ? 0 : ProbeDataChanged;
}

int Count(VSharedMemoryCache& cache, const wchar_t* go, unsigned long times) {
    if (!WaitForEvent(go)) return ProbeTimedOut;
    auto* counter = static_cast<volatile uint32_t*>(cache.GetData());
    for (unsigned long i = 0; i < times; ++i) {
        cache.Lock();
        const uint32_t seen = *counter;
        SwitchToThread();  // invites the others in: without the lock, updates would be lost
        *counter = seen + 1;
        cache.Unlock();
    }
    return 0;
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
    if (argc < 4) return ProbeBadArguments;
    const wchar_t* mode = argv[1];
    const size_t size = std::wcstoull(argv[3], nullptr, 0);
    const auto cache = VRefPtr<VSharedMemoryCache>::Adopt(new VSharedMemoryCache(argv[2], size));
    const DWORD created = GetLastError();
    if (created != ERROR_SUCCESS) return static_cast<int>(created);

    if (std::wcscmp(mode, L"open") == 0 && argc == 4) return 0;
    if (std::wcscmp(mode, L"hold") == 0 && argc == 6) return Hold(*cache, argv[4], argv[5]);
    if (std::wcscmp(mode, L"peek") == 0 && argc == 6)
        return Peek(*cache, std::wcstoul(argv[4], nullptr, 0), std::wcstoull(argv[5], nullptr, 0));
    if (std::wcscmp(mode, L"count") == 0 && argc == 6) return Count(*cache, argv[4], std::wcstoul(argv[5], nullptr, 0));
    return ProbeBadArguments;
}
