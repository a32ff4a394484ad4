// A test helper for the Linux-side tests of the agent:
//   agent_tool relay PIPE PORT           join each TCP connection on 127.0.0.1:PORT to PIPE
//                                        until stdin closes
//   agent_tool fingerprint FILE [PASS]   load a key file: "<bits> <fingerprint> (<TYPE>)"
// Exit code 0 on success; a failure prints the report's text.
#include <windows.h>
#include <winsock2.h>

#include <cstdio>
#include <string>
#include <thread>

#include "AgentPipeClient.h"
#include "KeyFile.h"

namespace {

void Pump(SOCKET socket, HANDLE pipe) {
    char buffer[16384];
    DWORD written;
    for (int got; (got = recv(socket, buffer, sizeof buffer, 0)) > 0 &&
                  WriteFile(pipe, buffer, static_cast<DWORD>(got), &written, nullptr);) {
    }
    CancelIoEx(pipe, nullptr);
}

void RelayOne(SOCKET socket, std::wstring pipeName) {
    AgentPipeClient client;
    VReportMessageParams report;
    if (client.Connect(pipeName.c_str(), 5000, report)) {
        std::thread upstream(Pump, socket, client.GetPipe());
        char buffer[16384];
        for (DWORD got = 0;
             ReadFile(client.GetPipe(), buffer, sizeof buffer, &got, nullptr) && got &&
             send(socket, buffer, static_cast<int>(got), 0) == static_cast<int>(got);) {
        }
        shutdown(socket, SD_BOTH);
        upstream.join();
    }
    closesocket(socket);
}

// The script ends a relay by closing its stdin.
int Relay(const wchar_t* pipe, int port) {
    WSADATA data;
    WSAStartup(MAKEWORD(2, 2), &data);
    const SOCKET listener = socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<u_short>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (bind(listener, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 ||
        listen(listener, 16) != 0) {
        std::fprintf(stderr, "cannot listen on port %d: %d\n", port, WSAGetLastError());
        return 1;
    }
    std::printf("relaying\n");
    std::fflush(stdout);
    std::thread([pipe, listener] {
        for (SOCKET accepted; (accepted = accept(listener, nullptr, nullptr)) != INVALID_SOCKET;)
            std::thread(RelayOne, accepted, std::wstring(pipe)).detach();
    }).detach();
    for (char line[16]; std::fgets(line, sizeof line, stdin);) {
    }
    return 0;
}

int Fingerprint(const wchar_t* file, const wchar_t* passphrase) {
    LoadedKey key;
    VReportMessageParams report;
    if (!LoadKeyFile(file, VUnicodeString(passphrase, Str::Sensitive), key, report)) {
        std::fwprintf(stderr, L"%ls\n", report.GetText());
        return 1;
    }
    std::printf("%u %s (%ls)\n", key.key.GetBits(), KeyFingerprint(key.key.GetPublicBlob()).c_str(),
                key.key.GetTypeLabel());
    return 0;
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
    const std::wstring command = argc > 1 ? argv[1] : L"";
    if (command == L"relay" && argc == 4) return Relay(argv[2], _wtoi(argv[3]));
    if (command == L"fingerprint" && argc >= 3)
        return Fingerprint(argv[2], argc > 3 ? argv[3] : L"");
    std::fprintf(stderr, "usage: agent_tool relay|fingerprint ...\n");
    return 2;
}
