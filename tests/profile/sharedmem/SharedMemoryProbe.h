// Exit codes of the shared-memory probe (SharedMemoryProbe.cpp) beyond the
// system error codes it passes on. They carry the customer bit, so no system
// error code can be taken for one of them.
#pragma once

constexpr int ProbeDataChanged = 0x20000001;
constexpr int ProbeBadArguments = 0x20000002;
constexpr int ProbeTimedOut = 0x20000003;
