// The shared store behaviour on the registry back end, under a sandbox key.
#include "RegistrySandbox.h"
#include "StoreBehaviour.h"
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

INSTANTIATE_TEST_SUITE_P(Registry, StoreBehaviour,
                         ::testing::Values(StoreBackEnd{"Registry", [] { return std::make_unique<RegistryStorePlace>(); }}),
                         BackEndName);

}  // namespace
