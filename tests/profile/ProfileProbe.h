// Exit codes of profile_probe (ProfileProbe.cpp) beside 0, done, and the
// system error codes it passes on. They carry the customer bit, so no system
// error code can be taken for one of them.
#pragma once

constexpr int ProbeRefused = 0x20000001;  // a check failed or a lock was refused
constexpr int ProbeFailed = 0x20000002;   // a call failed
constexpr int ProbeBadArguments = 0x20000003;
constexpr int ProbeTimedOut = 0x20000004;  // an event never came
