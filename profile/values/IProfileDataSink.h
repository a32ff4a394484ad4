// Where a typed value hands its value when it is serialised (VProfileData
// slots 9 and 11): one named value at a time, as an OLE VARIANT in the form
// the value chooses. VProfileKeySink writes them into a profile key.
#pragma once

#include <windows.h>

#include <oleauto.h>  // after windows.h, which it needs

#include "VReportMessageParams.h"
#include "VString.h"

class IProfileDataSink {
public:
    virtual ~IProfileDataSink() = default;
    // Takes value under name; the variant stays the caller's. False, with the
    // reason in GetLastErrorParams, when the sink cannot keep it.
    virtual bool Write(const VUnicodeString& name, const VARIANT& value) = 0;
    virtual VReportMessageParams& GetLastErrorParams() = 0;
};
