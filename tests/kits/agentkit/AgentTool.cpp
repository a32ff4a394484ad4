// A test helper that plays the agent's clients for the Linux-side tests:
//   agent_tool relay PIPE PORT           join each TCP connection on 127.0.0.1:PORT to PIPE
//                                        until stdin closes
//   agent_tool fingerprint FILE [PASS]   load a key file: "<bits> <fingerprint> (<TYPE>)"
//   agent_tool list PIPE                 list the agent's keys: "<fingerprint> <comment>"
//   agent_tool storelist STORE           the same, read from the key store STORE directly
// Exit code 0 on success; a failure prints the report's text.
#include <windows.h>
#include <winsock2.h>

#include <cstdio>
#include <string>
#include <thread>

#include "AgentKeyStore.h"
#include "AgentPipeClient.h"
#include "KeyFile.h"
#include "Utf8Text.h"

namespace {

// The script ends a relay by closing its stdin.
void WaitForStdinToClose() {
    char line[16];
    while (std::fgets(line, sizeof line, stdin)) {
    }
}

int Fail(VReportMessageParams& report) {
    std::fwprintf(stderr, L"%ls\n", report.GetText());
    return 1;
}

VUnicodeString Passphrase(int argc, wchar_t** argv, int index) {
    return VUnicodeString(index < argc ? argv[index] : L"", Str::Sensitive);
}

void Pump(SOCKET socket, HANDLE pipe) {
    char buffer[16384];
    for (;;) {
        const int got = recv(socket, buffer, sizeof buffer, 0);
        DWORD written;
        if (got <= 0 || !WriteFile(pipe, buffer, static_cast<DWORD>(got), &written, nullptr)) break;
    }
    CancelIoEx(pipe, nullptr);
}

void RelayOne(SOCKET socket, std::wstring pipeName) {
    AgentPipeClient client;
    VReportMessageParams report;
    if (client.Connect(pipeName.c_str(), 5000, report)) {
        std::thread upstream(Pump, socket, client.GetPipe());
        char buffer[16384];
        for (;;) {
            DWORD got = 0;
            if (!ReadFile(client.GetPipe(), buffer, sizeof buffer, &got, nullptr) || got == 0 ||
                send(socket, buffer, static_cast<int>(got), 0) != static_cast<int>(got))
                break;
        }
        shutdown(socket, SD_BOTH);
        upstream.join();
    }
    closesocket(socket);
}

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
    WaitForStdinToClose();
    return 0;
}

std::string Narrow(const AgentText& text) { return std::string(text.begin(), text.end()); }

int Fingerprint(const wchar_t* file, const VUnicodeString& passphrase) {
    LoadedKey key;
    VReportMessageParams report;
    if (!LoadKeyFile(file, passphrase, key, report)) return Fail(report);
    std::wprintf(L"%u ", key.key.GetBits());
    std::printf("%s", Narrow(KeyFingerprint(key.key.GetPublicBlob())).c_str());
    std::wprintf(L" (%ls)\n", key.key.GetTypeLabel());
    return 0;
}

void Print(const AgentBytes& publicBlob, const AgentText& comment) {
    std::printf("%s %s\n", Narrow(KeyFingerprint(publicBlob)).c_str(), Narrow(comment).c_str());
}

int List(const wchar_t* pipe) {
    AgentPipeClient client;
    VReportMessageParams report;
    std::vector<AgentIdentity> identities;
    if (!client.Connect(pipe, 5000, report)) return Fail(report);
    if (!client.List(identities)) return 1;
    for (const AgentIdentity& identity : identities) Print(identity.publicBlob, identity.comment);
    return 0;
}

int StoreList(const wchar_t* name) {
    AgentKeyStore store(name);
    VReportMessageParams report;
    if (!store.CheckOpen(report)) return Fail(report);
    for (const AgentKeyInfo& key : store.List()) Print(key.publicBlob, key.comment);
    return 0;
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
    const std::wstring command = argc > 1 ? argv[1] : L"";
    if (command == L"relay" && argc == 4) return Relay(argv[2], _wtoi(argv[3]));
    if (command == L"fingerprint" && argc >= 3)
        return Fingerprint(argv[2], Passphrase(argc, argv, 3));
    if (command == L"list" && argc == 3) return List(argv[2]);
    if (command == L"storelist" && argc == 3) return StoreList(argv[2]);
    std::fprintf(stderr, "usage: agent_tool relay|fingerprint|list|storelist ...\n");
    return 2;
}
