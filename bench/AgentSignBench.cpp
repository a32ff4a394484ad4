// Signatures per second through the agent's pipe (our client, the pipe
// server, the shared key store, the key looked up for each use) beside the
// same signature made in process from a key already in memory, the floor.
// Where the time goes, per signature: the store's part (the key looked up
// and opened, in process), a round trip through the agent's pipe that
// touches no key (a message the agent refuses at once), and the platform's
// own round trip: a few bytes echoed by a thread through a plain named pipe
// with blocking reads and writes.
//
//   agent_sign_bench [signatures per round]   keys: the test keys of tests/kits/agentkit/keys
#include <windows.h>

#include <cstdio>
#include <string>
#include <thread>

#include "AgentPipeClient.h"
#include "AgentPipeServer.h"
#include "AgentProtocol.h"
#include "BenchSupport.h"
#include "KeyFile.h"

namespace {

struct AllowAll : IAgentConfirm {
    bool ConfirmUse(const AgentKeyInfo&, const VUnicodeString&) override { return true; }
};

// No agent message has this type: the server answers failure without the store.
constexpr uint8_t UnknownMessage = 0xF0;
constexpr DWORD EchoBytes = 5;

// Echoes what comes through a plain pipe until the client goes.
void Echo(HANDLE pipe) {
    ConnectNamedPipe(pipe, nullptr);
    uint8_t bytes[EchoBytes];
    DWORD moved;
    while (ReadFile(pipe, bytes, EchoBytes, &moved, nullptr) && moved > 0 &&
           WriteFile(pipe, bytes, moved, &moved, nullptr)) {
    }
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
    const int count = argc > 1 ? _wtoi(argv[1]) : 200;
    const std::wstring suffix = std::to_wstring(GetCurrentProcessId());
    AgentKeyStore store((L"{agent-bench}" + suffix).c_str());
    AllowAll allow;
    AgentProtocol protocol(store, allow);
    const std::wstring pipe = L"\\\\.\\pipe\\agent-bench-" + suffix;
    AgentPipeServer server(protocol, store, pipe.c_str());
    AgentPipeClient client;
    VReportMessageParams report;
    if (!server.Start(report) || !client.Connect(pipe.c_str(), 5000, report)) {
        std::fwprintf(stderr, L"%ls\n", report.GetText());
        return 1;
    }
    const std::wstring echoName = pipe + L"-echo";
    const FileHandle echoServer(CreateNamedPipeW(echoName.c_str(), PIPE_ACCESS_DUPLEX,
                                                 PIPE_TYPE_BYTE, 1, 4096, 4096, 0, nullptr));
    std::thread echo(Echo, echoServer.Get());
    FileHandle echoClient(CreateFileW(echoName.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                      OPEN_EXISTING, 0, nullptr));
    const uint8_t data[] = "a session identifier of thirty-two bytes and the request";
    std::printf(
        "signatures per second; microseconds per signature of the store, of a round trip\n"
        "that touches no key, and of the platform's bare pipe round trip\n");
    std::printf("%-10s %12s %12s %8s %9s %9s %9s\n", "key", "in process", "pipe", "overhead",
                "store us", "trip us", "bare us");
    for (const char* name : {"ed25519", "ecdsa256", "ecdsa384", "ecdsa521", "rsa"}) {
        const std::wstring path =
            std::wstring(AGENT_BENCH_KEYS_DIR) + L"\\" + std::wstring(name, name + strlen(name));
        LoadedKey key;
        if (!LoadKeyFile(path.c_str(), VUnicodeString(), key, report) ||
            !client.Add(key.key, key.comment, 0, false)) {
            std::fprintf(stderr, "%s: cannot load or add\n", name);
            return 1;
        }
        const AgentBytes blob = key.key.GetPublicBlob();
        const uint32_t flags = SignRsaSha512;
        AgentBytes signature, reply;
        const int perRound = std::string(name) == "rsa" ? count / 10 + 1 : count;
        const std::vector<double> best =
            BestTimes({[&] {
                           for (int index = 0; index < perRound; ++index)
                               key.key.Sign(data, sizeof data, flags, signature);
                       },
                       [&] {
                           for (int index = 0; index < perRound; ++index)
                               client.Sign(blob, data, sizeof data, flags, signature);
                       },
                       [&] {
                           for (int index = 0; index < perRound; ++index) {
                               AgentKey opened;
                               AgentKeyInfo info;
                               store.GetKey(blob, opened, info);
                           }
                       },
                       [&] {
                           for (int index = 0; index < perRound; ++index)
                               client.Exchange(AgentBytes{UnknownMessage}, reply);
                       },
                       [&] {
                           uint8_t bytes[EchoBytes] = {};
                           DWORD moved;
                           for (int index = 0; index < perRound; ++index) {
                               WriteFile(echoClient.Get(), bytes, EchoBytes, &moved, nullptr);
                               ReadFile(echoClient.Get(), bytes, EchoBytes, &moved, nullptr);
                           }
                       }},
                      5);
        const double floor = best[0] / perRound;
        std::printf("%-10s %12.0f %12.0f %7.0f%% %9.1f %9.1f %9.1f\n", name, 1 / floor,
                    perRound / best[1], 100.0 * (best[1] / best[0] - 1.0), 1e6 * best[2] / perRound,
                    1e6 * best[3] / perRound, 1e6 * best[4] / perRound);
    }
    echoClient.Reset();  // the echo thread ends
    echo.join();
    return 0;
}
