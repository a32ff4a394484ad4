#include "VIniFileStoreFactory.h"

#include "VIniFileStore.h"

VIniFileStoreFactory::VIniFileStoreFactory(VUnicodeString rootFolder,
                                           VUnicodeString privateRootFolder)
    : rootFolder_(std::move(rootFolder)), privateRootFolder_(std::move(privateRootFolder)) {}

std::unique_ptr<VProfilePrivateStore> VIniFileStoreFactory::CreateStore() {
    return std::make_unique<VIniFileStore>(rootFolder_, privateRootFolder_);
}
