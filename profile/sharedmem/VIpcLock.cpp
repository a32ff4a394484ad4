#include "VIpcLock.h"

#include "ProfileErrors.h"

VIpcLock::VIpcLock(const wchar_t* name, SECURITY_ATTRIBUTES* security)
    : mutex_(CreateMutexW(security, FALSE, name)) {
    RecordLastSystemError(report_);
}

bool VIpcLock::IsValid() const noexcept {
    return mutex_.Get() != nullptr && mutex_.Get() != INVALID_HANDLE_VALUE;
}

bool VIpcLock::Lock() {
    if (!IsValid()) return false;
    const DWORD result = WaitForSingleObject(mutex_.Get(), INFINITE);
    return result == WAIT_OBJECT_0 || result == WAIT_ABANDONED;
}

bool VIpcLock::Unlock() { return IsValid() && ReleaseMutex(mutex_.Get()); }
