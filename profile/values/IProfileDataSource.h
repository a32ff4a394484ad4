// Where a typed value reads its value back from a serialised form (VProfileData
// slots 1, 13 and 15): one named value at a time, as an OLE VARIANT.
// VProfileKeySource reads them from a profile key.
#pragma once

#include <windows.h>

#include <oleauto.h>  // after windows.h, which it needs

#include "VReportMessageParams.h"
#include "VString.h"

class IProfileDataSource {
public:
    virtual ~IProfileDataSource() = default;
    // Fills value (an initialised variant, cleared first) with the value kept
    // under name. False when there is none, with CONFIG_VALUE_ABSENT and the
    // name in GetLastErrorParams, or on another failure with its reason there.
    virtual bool Read(const VUnicodeString& name, VARIANT& value) = 0;
    virtual VReportMessageParams& GetLastErrorParams() = 0;
};
