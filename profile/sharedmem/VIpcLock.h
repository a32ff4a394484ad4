// VIpcLock: a cross-process mutex, named or unnamed. Any thread may use it;
// ownership belongs to the thread that locked it.
#pragma once

#include <windows.h>

#include "ISynchObject.h"
#include "VReportMessageParams.h"
#include "VUnknown.h"
#include "Win32Handle.h"

class VIpcLock final : public VUnknown<ISynchObject> {
public:
    // Creates the mutex name (null: an unnamed one) with security (null:
    // default), not initially owned; a mutex of that name that exists already
    // is opened. The error record keeps the last error of that call: 0,
    // ERROR_ALREADY_EXISTS for an opened one, or why it failed (then IsValid()
    // is false). Allocate with new; the last Release destroys it.
    explicit VIpcLock(const wchar_t* name = nullptr, SECURITY_ATTRIBUTES* security = nullptr);

    bool IsValid() const noexcept;
    // A lock whose last owner ended without unlocking it is owned all the same.
    bool Lock() override;
    bool Unlock() override;
    VReportMessageParams& GetLastErrorParams() noexcept { return report_; }

private:
    ~VIpcLock() override = default;  // closing keeps the thread's last error

    VReportMessageParams
        report_;  // before the mutex: nothing may run between its creation and the record
    KernelHandle mutex_;
};
