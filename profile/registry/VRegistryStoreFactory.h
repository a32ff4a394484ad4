// VRegistryStoreFactory: makes stores of the registry back end. Start-up puts
// one, for the family's hive and "SOFTWARE\Quillon", in the registry slot of
// CurrentProfileStoreFactory.
#pragma once

#include <windows.h>

#include <memory>

#include "VProfilePrivate.h"

class VRegistryStoreFactory final : public VProfileStoreFactory {
public:
    // Stores rooted at hive (a predefined key) and path. A null hive stands for
    // the family's hive: the one FindFamilyRegistryBase() names now.
    VRegistryStoreFactory(HKEY hive, const VUnicodeString& path);

    HKEY GetHive() const noexcept { return hive_; }
    const VUnicodeString& GetPath() const noexcept { return path_; }

    // A new VRegistryStore with this factory's hive and path; the caller owns it.
    std::unique_ptr<VProfilePrivateStore> CreateStore() override;

private:
    HKEY hive_;
    VUnicodeString path_;
};
