// Both back ends, every step through a key opened afresh in a new store.
#pragma once

#include <memory>

#include "ConnectProtocols.h"
#include "StoreBehaviour.h"

class SessionStore : public StoreBehaviour {
protected:
    VProfileKey& Key(const wchar_t* path, bool readOnly = false) {
        key_.reset();
        store_ = Open(readOnly);
        key_ = std::make_unique<VProfileKey>(store_->GetRootKey(), path, !readOnly);
        return *key_;
    }

    VUnicodeString StoredText(const wchar_t* path, const wchar_t* name) {
        VUnicodeString text(L"(none)");
        Key(path, true).GetString(name, text);
        return text;
    }
    uint32_t StoredNumber(const wchar_t* path, const wchar_t* name) {
        uint32_t number = 0xDEAD;
        Key(path, true).GetDword(name, number);
        return number;
    }

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
