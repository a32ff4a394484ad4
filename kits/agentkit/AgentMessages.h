// The agent's reports: codes of AgentkitMessages.mc, whose texts live in
// AgentkitMessages.dll beside the program. Any thread.
#pragma once

#include "AgentkitMessages.h"
#include "VReportMessageParams.h"

// Sets code and its arguments into report, with the agent's texts as the
// report's module (when the module can be loaded).
template <class... Arguments>
void SetAgentReport(VReportMessageParams& report, DWORD code, const Arguments&... arguments);

// The module of the agent's texts; null when it cannot be loaded.
HMODULE AgentMessagesModule();

// A system error code as reports show it: "0x" and eight hexadecimal digits.
VUnicodeString ErrorCodeText(DWORD code);

template <class... Arguments>
void SetAgentReport(VReportMessageParams& report, DWORD code, const Arguments&... arguments) {
    if (HMODULE module = AgentMessagesModule()) report.SetModule(module);
    report.Set(code, arguments...);
}
