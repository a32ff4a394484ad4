// The fixture of the session, folder and firewall tests: both back ends of
// the store, with every step through a key opened afresh in a new store, so
// that what a step wrote has reached the registry or the files.
#pragma once

#include <memory>

#include "ConnectProtocols.h"
#include "StoreBehaviour.h"

class SessionStore : public StoreBehaviour {
protected:
    // The key at path below the store's root (created unless readOnly). The
    // key opened before goes first, so what it wrote is stored.
    VProfileKey& Key(const wchar_t* path, bool readOnly = false) {
        key_.reset();
        store_ = Open(readOnly);
        key_ = std::make_unique<VProfileKey>(store_->GetRootKey(), path, !readOnly);
        return *key_;
    }

    // The text a fresh key at path holds under name; "(none)" when none.
    VUnicodeString StoredText(const wchar_t* path, const wchar_t* name) {
        VUnicodeString text(L"(none)");
        Key(path, true).GetString(name, text);
        return text;
    }

    // The file back end reads "Is Session" as set whenever a key has a values file.
    bool IsIniFile() const { return GetParam().name == "IniFile"; }

    void TearDown() override {
        key_.reset();
        store_.reset();
        StoreBehaviour::TearDown();
    }

    const ConnectProtocolTable& protocols_ = GetConnectProtocolTable();
    std::unique_ptr<VProfileStore> store_;
    std::unique_ptr<VProfileKey> key_;
};
