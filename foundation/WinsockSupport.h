// Winsock for the whole process: started once, and an owner for its sockets.
#pragma once

#include <winsock2.h>

#include "VReportMessageParams.h"
#include "Win32Handle.h"

// Starts Winsock on first use; it then stays for the life of the process.
// False, with the error in report, when it cannot be started. Any thread.
bool StartWinsock(VReportMessageParams& report);

struct SocketTraits {
    using Type = SOCKET;
    static Type Invalid() noexcept { return INVALID_SOCKET; }
    static void Close(Type socket) noexcept { closesocket(socket); }
};

using SocketHandle = VUniqueHandle<SocketTraits>;
