#include "WinsockSupport.h"

bool StartWinsock(VReportMessageParams& report) {
    // Never cleaned up: sockets may be in use until the process ends.
    static const int failure = [] {
        WSADATA data;
        return WSAStartup(MAKEWORD(2, 2), &data);
    }();
    if (failure != 0) report.SetMessageCode(static_cast<DWORD>(failure));
    return failure == 0;
}
