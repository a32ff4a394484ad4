// The shared store behaviour on the INI-file back end, with a configuration
// folder and a personal data folder of its own under the temporary folder.
#include <windows.h>

#include "StoreBehaviour.h"
#include "TempFolder.h"
#include "VIniFileStoreFactory.h"

namespace {

class IniFilePlace final : public StorePlace {
public:
    IniFilePlace() : factory_(folder_ / L"root", folder_ / L"private") {
        CreateDirectoryW((folder_ / L"root").c_str(), nullptr);
        CreateDirectoryW((folder_ / L"private").c_str(), nullptr);
    }

    std::unique_ptr<VProfileStore> Open(bool readOnly) override {
        return std::make_unique<VProfileStore>(&factory_, readOnly);
    }

private:
    TempFolder folder_;
    VIniFileStoreFactory factory_;
};

INSTANTIATE_TEST_SUITE_P(IniFile, StoreBehaviour,
                         ::testing::Values(StoreBackEnd{"IniFile", [] { return std::make_unique<IniFilePlace>(); }}),
                         BackEndName);

}  // namespace
