// Signatures per second through the agent's pipe (our client, the pipe
// server, the shared key store, the key opened for each use) beside the same
// signature made in process from a key already in memory, the floor.
//
//   agent_sign_bench [signatures per round]   keys: the test keys of tests/kits/agentkit/keys
#include <windows.h>

#include <cstdio>
#include <string>

#include "AgentPipeClient.h"
#include "AgentPipeServer.h"
#include "AgentProtocol.h"
#include "BenchSupport.h"
#include "KeyFile.h"

namespace {

struct AllowAll : IAgentConfirm {
    bool ConfirmUse(const AgentKeyInfo&, const VUnicodeString&) override { return true; }
};

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
    const uint8_t data[] = "a session identifier of thirty-two bytes and the request";
    std::printf("%-10s %12s %12s %8s\n", "key", "in process/s", "pipe/s", "overhead");
    for (const char* name : {"ed25519", "ecdsa256", "ecdsa384", "ecdsa521", "rsa"}) {
        const std::wstring path = std::wstring(AGENT_BENCH_KEYS_DIR) + L"\\" + std::wstring(name, name + strlen(name));
        LoadedKey key;
        if (!LoadKeyFile(path.c_str(), VUnicodeString(), key, report) ||
            !client.Add(key.key, key.comment, 0, false)) {
            std::fprintf(stderr, "%s: cannot load or add\n", name);
            return 1;
        }
        const AgentBytes blob = key.key.GetPublicBlob();
        const uint32_t flags = SignRsaSha512;
        AgentBytes signature;
        const int perRound = std::string(name) == "rsa" ? count / 10 + 1 : count;
        const std::vector<double> best = BestTimes(
            {[&] {
                 for (int index = 0; index < perRound; ++index) key.key.Sign(data, sizeof data, flags, signature);
             },
             [&] {
                 for (int index = 0; index < perRound; ++index) client.Sign(blob, data, sizeof data, flags, signature);
             }},
            5);
        std::printf("%-10s %12.0f %12.0f %7.0f%%\n", name, perRound / best[0], perRound / best[1],
                    100.0 * (best[1] / best[0] - 1.0));
    }
    return 0;
}
