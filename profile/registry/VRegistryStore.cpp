#include "VRegistryStore.h"

#include "VRegistryProfileKey.h"

std::unique_ptr<VProfilePrivateKey> VRegistryStore::OpenRootKey(bool readOnly) {
    return std::make_unique<VRegistryProfileKey>(hive_, path_, readOnly, !readOnly, nullptr);
}
