// registry/ owns the registry back end and the family's fixed places in the
// registry (RegistrySettings.h).
//
// VRegistryStore: the registry back end's store, rooted at a hive and a path.
#pragma once

#include <windows.h>

#include <memory>

#include "VProfilePrivate.h"

class VRegistryStore final : public VProfilePrivateStore {
public:
    // hive is a predefined key (HKEY_CURRENT_USER ...), which is never closed.
    VRegistryStore(HKEY hive, const VUnicodeString& path) : hive_(hive), path_(path) {}

    // A VRegistryProfileKey on hive and path: created when missing unless
    // readOnly. Never null: a root key that cannot be opened has no handle
    // and fails every operation (see VRegistryProfileKey).
    std::unique_ptr<VProfilePrivateKey> OpenRootKey(bool readOnly) override;

private:
    HKEY hive_;
    VUnicodeString path_;
};
