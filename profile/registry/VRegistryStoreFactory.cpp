#include "VRegistryStoreFactory.h"

#include "RegistrySettings.h"
#include "VRegistryStore.h"

VRegistryStoreFactory::VRegistryStoreFactory(HKEY hive, const VUnicodeString& path)
    : hive_(hive ? hive : FindFamilyRegistryBase().hive), path_(path) {}

std::unique_ptr<VProfilePrivateStore> VRegistryStoreFactory::CreateStore() {
    return std::make_unique<VRegistryStore>(hive_, path_);
}
