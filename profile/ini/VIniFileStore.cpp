#include "VIniFileStore.h"

#include "VIniFileKey.h"

VIniFileStore::VIniFileStore(VUnicodeString rootFolder, VUnicodeString privateRootFolder)
    : rootFolder_(std::move(rootFolder)), privateRootFolder_(std::move(privateRootFolder)) {}

std::unique_ptr<VProfilePrivateKey> VIniFileStore::OpenRootKey(bool readOnly) {
    return std::make_unique<VIniFileKey>(rootFolder_, privateRootFolder_, readOnly, nullptr);
}
