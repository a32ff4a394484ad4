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

std::optional<uint32_t> IniTestStore::StoredNumber(const wchar_t* name) {
    uint32_t number = 0;
    if (!OpenKey()->GetDword(name, number)) return std::nullopt;
    return number;
}

std::optional<VUnicodeString> IniTestStore::StoredText(const wchar_t* name) {
    VUnicodeString text;
    if (!OpenKey()->GetString(name, text)) return std::nullopt;
    return text;
}
