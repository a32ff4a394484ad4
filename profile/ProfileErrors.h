// How the back ends fill a key's error record, in one place each.
#pragma once

#include <windows.h>

#include "ConfigMessages.h"
#include "VReportMessageParams.h"

// An operating-system (or registry) error code becomes the message code.
inline void RecordSystemError(VReportMessageParams& report, DWORD error) {
    report.SetMessageCode(error);
}

inline void RecordLastSystemError(VReportMessageParams& report) {
    RecordSystemError(report, GetLastError());
}

// A value that is not stored, or not stored with the kind asked for.
inline void RecordValueAbsent(VReportMessageParams& report, const VUnicodeString& name) {
    report.Set(CONFIG_VALUE_ABSENT, name);
}
