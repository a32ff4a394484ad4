#include "IniTestStore.h"

#include "VIniFileKey.h"

IniTestStore::IniTestStore() : factory_(folder_ / L"Config", folder_ / L"Private") {}

std::unique_ptr<VProfileKey> IniTestStore::OpenKey(bool readOnly) {
    // The key owns its private key, not the store, so the store may go first.
    VProfileStore store(&factory_, readOnly);
    return std::make_unique<VProfileKey>(store.GetRootKey(), KeyName, !readOnly);
}

std::string IniTestStore::ValuesFile() const {
    return ReadWholeFile(VIniFileKey::ValuesFilePath(factory_.GetRootFolder() + L"\\" + KeyName));
}
