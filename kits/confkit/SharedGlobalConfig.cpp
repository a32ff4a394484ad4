#include "SharedGlobalConfig.h"

#include <stdexcept>

#include "ConfigPassphrase.h"

namespace {

struct SharedConfig {
    GlobalConfig config{GlobalProduct::Terminal, GetConfigPassphraseProvider()};
    VReportMessageParams loadReport;
    bool loaded = config.LoadFromStore(nullptr, loadReport);
};

// Loaded once, on first use: a static's initialisation is safe from any thread.
SharedConfig& Shared() {
    static SharedConfig shared;
    return shared;
}

}  // namespace

bool GetGlobalConfig(GlobalConfig*& config, int index) {
    VReportMessageParams report;
    return GetGlobalConfig(config, index, report);
}

bool GetGlobalConfig(GlobalConfig*& config, int index, VReportMessageParams& report) {
    if (index != -1)
        throw std::invalid_argument("GetGlobalConfig: -1 is the only global options object");
    SharedConfig& shared = Shared();
    config = &shared.config;
    if (!shared.loaded) report = shared.loadReport;
    return shared.loaded;
}
