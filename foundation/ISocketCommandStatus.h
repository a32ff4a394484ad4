// Hears how the command run before a connection goes: its start and its end.
#pragma once

#include "VReportMessageParams.h"

class ISocketCommandStatus : public virtual IUnknown {
public:
    // A report whose level says how much it matters (1: information). Called
    // on the thread that starts the command and on the command's worker
    // thread; must not throw.
    virtual void OnCommandStatus(VReportMessageParams& report) = 0;

protected:
    virtual ~ISocketCommandStatus() = default;
};
