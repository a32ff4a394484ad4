// VIniFileStoreFactory: makes INI-file stores on one configuration folder and
// one personal data folder. Start-up puts one in the process's INI-file slot
// (SetIniFileStoreFactory), after which every VProfileStore uses the files.
#pragma once

#include <memory>

#include "VProfilePrivate.h"
#include "VString.h"

class VIniFileStoreFactory : public VProfileStoreFactory {
public:
    // Absolute folder paths; privateRootFolder may be empty (no private files).
    VIniFileStoreFactory(VUnicodeString rootFolder, VUnicodeString privateRootFolder);

    // A new VIniFileStore on the two folders; the caller owns it. Safe to call
    // from any thread.
    std::unique_ptr<VProfilePrivateStore> CreateStore() override;

    const VUnicodeString& GetRootFolder() const { return rootFolder_; }
    const VUnicodeString& GetPrivateRootFolder() const { return privateRootFolder_; }

private:
    const VUnicodeString rootFolder_;
    const VUnicodeString privateRootFolder_;
};
