#include "VProfileStore.h"

#include <atomic>

namespace {

std::atomic<VProfileStoreFactory*> g_iniFileFactory{nullptr};
std::atomic<VProfileStoreFactory*> g_registryFactory{nullptr};

}  // namespace

void SetIniFileStoreFactory(VProfileStoreFactory* factory) { g_iniFileFactory.store(factory); }
void SetRegistryStoreFactory(VProfileStoreFactory* factory) { g_registryFactory.store(factory); }

VProfileStoreFactory* CurrentProfileStoreFactory() {
    if (VProfileStoreFactory* iniFile = g_iniFileFactory.load()) return iniFile;
    return g_registryFactory.load();
}

VProfileStore::VProfileStore(VProfileStoreFactory* factory, bool readOnly) : readOnly_(readOnly) {
    if (!factory) factory = CurrentProfileStoreFactory();
    if (factory) store_ = factory->CreateStore();
    root_ = std::make_unique<VProfileKey>(*this);
}

VProfileStore::~VProfileStore() = default;

VProfileKey::VProfileKey(VProfileStore& store)
    : key_(store.store_ ? store.store_->OpenRootKey(store.IsReadOnly()) : nullptr) {}

VProfileKey::VProfileKey(VProfileKey& parent, const VUnicodeString& name, bool create,
                         const VSecurityDescriptor* security)
    : key_(parent.key_ ? parent.key_->OpenKey(name, create, security) : nullptr) {
    if (!key_) openError_ = parent.GetLastErrorParams();
}

VProfileKey::VProfileKey(std::unique_ptr<VProfilePrivateKey> key) : key_(std::move(key)) {}

bool VProfileKey::Written(bool succeeded) {
    written_ = written_ || succeeded;
    return succeeded;
}

bool VProfileKey::GetDword(const VUnicodeString& name, uint32_t& value) {
    return key_ && key_->GetDword(name, value);
}

bool VProfileKey::GetString(const VUnicodeString& name, VUnicodeString& text) {
    return key_ && key_->GetString(name, text);
}

bool VProfileKey::GetBinary(const VUnicodeString& name, void* buffer, uint32_t& size) {
    size_t fullSize = size;
    const bool read = key_ && key_->GetBinary(name, buffer, fullSize);
    size = static_cast<uint32_t>(fullSize);
    return read;
}

bool VProfileKey::GetMultiString(const VUnicodeString& name, VArray<VUnicodeString>& strings) {
    return key_ && key_->GetMultiString(name, strings);
}

bool VProfileKey::GetSecurity(const VUnicodeString& name, VSecurityDescriptor& descriptor) {
    return key_ && key_->GetSecurity(name, descriptor);
}

bool VProfileKey::SetDword(const VUnicodeString& name, uint32_t value) {
    return Written(key_ && key_->SetDword(name, value));
}

bool VProfileKey::SetString(const VUnicodeString& name, const VUnicodeString& text) {
    return Written(key_ && key_->SetString(name, text));
}

bool VProfileKey::SetBinary(const VUnicodeString& name, const void* bytes, uint32_t length) {
    return Written(key_ && key_->SetBinary(name, bytes, length));
}

bool VProfileKey::SetMultiString(const VUnicodeString& name,
                                 const VArray<VUnicodeString>& strings) {
    return Written(key_ && key_->SetMultiString(name, strings));
}

bool VProfileKey::SetSecurity(const VUnicodeString& name, const VSecurityDescriptor& descriptor) {
    return Written(key_ && key_->SetSecurity(name, descriptor));
}

bool VProfileKey::DeleteValue(const VUnicodeString& name) {
    return Written(key_ && key_->DeleteValue(name));
}

bool VProfileKey::DeleteKey(const VUnicodeString& name) {
    return Written(key_ && key_->DeleteKey(name));
}

bool VProfileKey::KeyExists(const VUnicodeString& name) { return key_ && key_->KeyExists(name); }

bool VProfileKey::IsWritable() { return key_ && key_->IsWritable(); }

bool VProfileKey::Reload() { return key_ && key_->Reload(); }

bool VProfileKey::Flush() { return key_ && key_->Flush(); }

VReportMessageParams& VProfileKey::GetLastErrorParams() {
    return key_ ? key_->GetLastErrorParams() : openError_;
}

VProfileKeyIterator::VProfileKeyIterator(VProfileKey& key, bool values)
    : iterator_(key.GetPrivateKey() ? key.GetPrivateKey()->CreatePrivateKeyIterator(values)
                                    : nullptr) {}
