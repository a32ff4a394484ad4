// A real INI-file store in a temporary folder. A key's values reach the file when the key object
// goes, so tests open a key, act, let it go, and open it again.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "TempFolder.h"
#include "VIniFileStoreFactory.h"
#include "VProfileStore.h"

class IniTestStore {
public:
    static constexpr wchar_t KeyName[] = L"Options";

    IniTestStore();

    // The options key, opened afresh; created unless readOnly.
    std::unique_ptr<VProfileKey> OpenKey(bool readOnly = false);
    // The options key's values file as bytes; empty when there is none.
    std::string ValuesFile() const;
    // What a freshly opened options key holds under name; none when no value of that kind.
    std::optional<uint32_t> StoredNumber(const wchar_t* name);
    std::optional<VUnicodeString> StoredText(const wchar_t* name);

private:
    TempFolder folder_;
    VIniFileStoreFactory factory_;
};
