// Asks for a firewall credential through Confkit's prompts, for the test that answers them:
//   firewall_prompt_host FOLDER FIREWALL user|password OUTPUT [PASSPHRASE]
// OUTPUT gets "confirmed=0|1", "text=...", "sensitive=0|1", "report=<code>" lines.
#include <windows.h>

#include <cstdio>
#include <cwchar>

#include "ConfigPassphrase.h"
#include "FirewallPrompts.h"
#include "ISessionDatabase.h"
#include "VIniFileStoreFactory.h"

namespace {

VIniFileStoreFactory* g_factory = nullptr;

class HostSessionDatabase final : public VUnknown<ISessionDatabase> {
public:
    bool SaveFirewall(FirewallConfig& firewall, VReportMessageParams& report) override {
        VProfileStore store(g_factory);
        const auto key = FirewallConfig::OpenKey(store.GetRootKey(), firewall.GetName(), true);
        if (key->IsOpen() && firewall.Save(*key, false) && key->Flush()) return true;
        report = key->GetLastErrorParams();
        return false;
    }
};

}  // namespace

extern "C" __declspec(dllexport) ISessionDatabase* GetSessionDatabaseImpl() {
    static HostSessionDatabase* const database = new HostSessionDatabase;  // kept to the end
    return database;
}

int wmain(int argc, wchar_t** argv) {
    if (argc < 5) return 2;
    VIniFileStoreFactory factory(argv[1], VUnicodeString());
    g_factory = &factory;
    if (argc > 5) SetConfigPassphrase(argv[5]);
    FirewallConfig firewall(argv[2], nullptr, GetConfigPassphraseProvider());
    {
        VProfileStore store(&factory);
        firewall.Load(FirewallConfig::OpenKey(store.GetRootKey(), argv[2], false).get());
    }
    const auto ui = VRefPtr<IFirewallUI>::Adopt(new VFirewallUI);
    firewall.SetUserInterface(ui.Get());
    VUnicodeString text(L"(none)");
    VReportMessageParams report;
    const bool confirmed = std::wcscmp(argv[3], L"password") == 0
                               ? firewall.GetPassword(text, report)
                               : firewall.GetUsername(text, report);
    FILE* output = _wfopen(argv[4], L"wb");
    if (!output) return 3;
    std::fprintf(output, "confirmed=%d\ntext=%s\nsensitive=%d\nreport=%lu\n", confirmed ? 1 : 0,
                 VString(text).c_str(), text.IsSensitive() ? 1 : 0, report.GetMessageCode());
    return std::fclose(output) == 0 ? 0 : 3;
}
