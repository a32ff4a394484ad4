// The back ends of the shared suites: the registry under a sandbox, INI files in a temp folder.
#include <windows.h>

#include "RegistrySandbox.h"
#include "StoreBehaviour.h"
#include "TempFolder.h"
#include "VIniFileStoreFactory.h"
#include "VRegistryStoreFactory.h"

namespace {

class RegistryStorePlace final : public StorePlace {
public:
    // The store's root is created by the first writable store, not here.
    RegistryStorePlace() : factory_(HKEY_CURRENT_USER, sandbox_.PathOf(L"store")) {}

    std::unique_ptr<VProfileStore> Open(bool readOnly) override {
        return std::make_unique<VProfileStore>(&factory_, readOnly);
    }

private:
    RegistrySandbox sandbox_;
    VRegistryStoreFactory factory_;
};

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

}  // namespace

StoreBackEnd RegistryBackEnd() {
    return {"Registry", [] { return std::make_unique<RegistryStorePlace>(); }};
}

StoreBackEnd IniFileBackEnd() {
    return {"IniFile", [] { return std::make_unique<IniFilePlace>(); }};
}
