#include "VRegistryProfileKey.h"

namespace {

// What a writable key asks for (KEY_READ | KEY_WRITE, 0x2001F) and what a key
// that can only be read gets (0x9).
constexpr REGSAM WriteAccess = KEY_READ | KEY_WRITE;
constexpr REGSAM ReadAccess = KEY_QUERY_VALUE | KEY_ENUMERATE_SUB_KEYS;

}  // namespace

class VRegistryProfileKey::Iterator final : public VProfilePrivateKeyIterator {
public:
    // With fetched, values come with their data, for the key's next read.
    Iterator(HKEY key, std::shared_ptr<VRegistryFetchedValue> fetched)
        : fetched_(std::move(fetched)), values_(fetched_ != nullptr) {
        key_.Open(key, VUnicodeString(), ReadAccess);
    }

    bool Next(VUnicodeString& name, uint32_t& kind) override {
        if (values_) {
            DWORD type = REG_NONE;
            if (!key_.EnumValue(index_, name, type, fetched_.get())) return false;
            kind = KindOfType(type);
        } else {
            if (!key_.EnumSubkey(index_, name)) return false;
            kind = ProfileSubkey;
        }
        ++index_;
        return true;
    }

    bool Next(VUnicodeString& name) override {
        uint32_t kind = 0;
        return Next(name, kind);
    }

private:
    VRegistryKey key_;  // a handle of its own: iterating does not depend on the key object
    std::shared_ptr<VRegistryFetchedValue> fetched_;
    DWORD index_ = 0;
    bool values_;
};

VRegistryProfileKey::VRegistryProfileKey(HKEY parent, const VUnicodeString& path, bool readOnly,
                                         bool create, const VSecurityDescriptor* security)
    : readOnly_(readOnly) {
    if (!readOnly) {
        const bool opened = create ? key_.Create(parent, path, WriteAccess, security)
                                   : key_.Open(parent, path, WriteAccess);
        if (opened) return;
    }
    key_.Open(parent, path, ReadAccess);
}

uint32_t VRegistryProfileKey::KindOfType(DWORD type) noexcept {
    switch (type) {
        case REG_DWORD:
            return ProfileDword;
        case REG_SZ:
            return ProfileString;
        case REG_BINARY:
            return ProfileBinary;
        case REG_MULTI_SZ:
            return ProfileMultiString;
        default:
            return NoKind;
    }
}

bool VRegistryProfileKey::GetSecurity(const VUnicodeString& name, VSecurityDescriptor& descriptor) {
    return key_.GetSecurity(name, descriptor);
}

bool VRegistryProfileKey::GetMultiString(const VUnicodeString& name,
                                         VArray<VUnicodeString>& strings) {
    return key_.GetMultiString(name, strings);
}

bool VRegistryProfileKey::GetBinary(const VUnicodeString& name, void* buffer, size_t& size) {
    return key_.GetBinary(name, buffer, size);
}

bool VRegistryProfileKey::GetString(const VUnicodeString& name, VUnicodeString& text) {
    return key_.GetString(name, text);
}

bool VRegistryProfileKey::GetDword(const VUnicodeString& name, uint32_t& value) {
    return key_.GetDword(name, value);
}

bool VRegistryProfileKey::SetSecurity(const VUnicodeString& name,
                                      const VSecurityDescriptor& descriptor) {
    return key_.SetSecurity(name, descriptor);
}

bool VRegistryProfileKey::SetMultiString(const VUnicodeString& name,
                                         const VArray<VUnicodeString>& strings) {
    return key_.SetMultiString(name, strings);
}

bool VRegistryProfileKey::SetBinary(const VUnicodeString& name, const void* bytes, size_t length) {
    return key_.SetBinary(name, bytes, length);
}

bool VRegistryProfileKey::SetString(const VUnicodeString& name, const VUnicodeString& text) {
    return key_.SetString(name, text);
}

bool VRegistryProfileKey::SetDword(const VUnicodeString& name, uint32_t value) {
    return key_.SetDword(name, value);
}

bool VRegistryProfileKey::DeleteValue(const VUnicodeString& name) { return key_.DeleteValue(name); }

bool VRegistryProfileKey::DeleteKey(const VUnicodeString& name) { return key_.DeleteKey(name); }

bool VRegistryProfileKey::KeyExists(const VUnicodeString& name) { return key_.KeyExists(name); }

bool VRegistryProfileKey::IsWritable() {
    return key_.IsOpen() && (key_.GetAccess() & KEY_SET_VALUE) != 0;
}

bool VRegistryProfileKey::IsVolatile() { return false; }

VReportMessageParams& VRegistryProfileKey::GetLastErrorParams() {
    return key_.GetLastErrorParams();
}

bool VRegistryProfileKey::Reload() { return key_.IsOpen(); }

bool VRegistryProfileKey::Flush() { return key_.Flush(); }

std::unique_ptr<VProfilePrivateKey> VRegistryProfileKey::OpenKey(
    const VUnicodeString& name, bool create, const VSecurityDescriptor* security) {
    auto subkey =
        std::make_unique<VRegistryProfileKey>(key_.GetHandle(), name, readOnly_, create, security);
    if (subkey->IsOpen()) return subkey;
    GetLastErrorParams() = subkey->GetLastErrorParams();
    return nullptr;
}

std::unique_ptr<VProfilePrivateKeyIterator> VRegistryProfileKey::CreatePrivateKeyIterator(
    bool values) {
    std::shared_ptr<VRegistryFetchedValue> fetched;
    if (values) {
        fetched = std::make_shared<VRegistryFetchedValue>();
        key_.UseFetched(fetched);
    }
    return std::make_unique<Iterator>(key_.GetHandle(), std::move(fetched));
}
