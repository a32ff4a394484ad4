// ini/ owns the INI-file back end: the values file format, its keys with
// their value tables and private files, and this store with its factory.
//
// VIniFileStore: the file-tree back end of the profile store. Its root key is
// the configuration folder, with the personal data folder as private root.
#pragma once

#include <memory>

#include "VProfilePrivate.h"
#include "VString.h"

class VIniFileStore : public VProfilePrivateStore {
public:
    // Absolute folder paths; privateRootFolder may be empty (no private files).
    VIniFileStore(VUnicodeString rootFolder, VUnicodeString privateRootFolder);

    // A VIniFileKey on the two roots. Creates no folder and reads no file.
    std::unique_ptr<VProfilePrivateKey> OpenRootKey(bool readOnly) override;

    const VUnicodeString& GetRootFolder() const { return rootFolder_; }
    const VUnicodeString& GetPrivateRootFolder() const { return privateRootFolder_; }

private:
    VUnicodeString rootFolder_;
    VUnicodeString privateRootFolder_;
};
