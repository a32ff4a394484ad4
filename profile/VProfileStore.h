// profile/ holds the store's contract: this public layer, the private layer
// that every back end implements (VProfilePrivate.h) and the error records
// (ProfileErrors.h). The back ends live in ini/ and registry/, shared memory
// in sharedmem/, and the files under the stores in files/.
//
// The public layer of the profile store: small concrete classes that each own
// one object of the private layer (VProfilePrivate.h) and forward to it, so
// that callers never know which back end keeps their settings.
//
// A back end may defer writing until a key object is destroyed (the file back
// end does): a value written through one key object is stored only after that
// object is gone, or after Flush.
#pragma once

#include <cstdint>
#include <memory>

#include "VProfilePrivate.h"

class VProfileKey;

class VProfileStore {
public:
    // A store of factory's back end, or of CurrentProfileStoreFactory() when
    // factory is null. Its root key is opened with the store's read-only flag.
    explicit VProfileStore(VProfileStoreFactory* factory = nullptr, bool readOnly = false);
    explicit VProfileStore(bool readOnly) : VProfileStore(nullptr, readOnly) {}
    ~VProfileStore();
    VProfileStore(const VProfileStore&) = delete;
    VProfileStore& operator=(const VProfileStore&) = delete;

    VProfileKey& GetRootKey() { return *root_; }
    bool IsReadOnly() const { return readOnly_; }

private:
    friend class VProfileKey;

    std::unique_ptr<VProfileKey> root_;
    std::unique_ptr<VProfilePrivateStore> store_;  // declared last: destroyed before the root key
    bool readOnly_;
};

class VProfileKey {
public:
    // The root key of store.
    explicit VProfileKey(VProfileStore& store);
    // The subkey name of parent, created when create is set. When it cannot be
    // opened, IsOpen() is false, every operation fails, and GetLastErrorParams
    // tells what the parent recorded.
    VProfileKey(VProfileKey& parent, const VUnicodeString& name, bool create,
                const VSecurityDescriptor* security = nullptr);
    explicit VProfileKey(std::unique_ptr<VProfilePrivateKey> key);
    VProfileKey(const VProfileKey&) = delete;
    VProfileKey& operator=(const VProfileKey&) = delete;

    bool IsOpen() const { return key_ != nullptr; }

    bool GetDword(const VUnicodeString& name, uint32_t& value);
    bool GetString(const VUnicodeString& name, VUnicodeString& text);
    // With no buffer, size receives the size needed.
    bool GetBinary(const VUnicodeString& name, void* buffer, uint32_t& size);
    bool GetMultiString(const VUnicodeString& name, VArray<VUnicodeString>& strings);
    bool GetSecurity(const VUnicodeString& name, VSecurityDescriptor& descriptor);
    bool SetDword(const VUnicodeString& name, uint32_t value);
    bool SetString(const VUnicodeString& name, const VUnicodeString& text);
    bool SetBinary(const VUnicodeString& name, const void* bytes, uint32_t length);
    bool SetMultiString(const VUnicodeString& name, const VArray<VUnicodeString>& strings);
    bool SetSecurity(const VUnicodeString& name, const VSecurityDescriptor& descriptor);
    bool DeleteValue(const VUnicodeString& name);
    bool DeleteKey(const VUnicodeString& name);
    bool KeyExists(const VUnicodeString& name);
    bool IsWritable();
    bool Reload();
    bool Flush();
    VReportMessageParams& GetLastErrorParams();

    // Set by every successful write or deletion through this key object; the
    // owner reads and clears it to learn whether it changed anything.
    bool WasWritten() const { return written_; }
    void ClearWritten() { written_ = false; }

    VProfilePrivateKey* GetPrivateKey() { return key_.get(); }

private:
    bool Written(bool succeeded);

    std::unique_ptr<VProfilePrivateKey> key_;
    VReportMessageParams openError_;  // the reason when key_ could not be opened
    bool written_ = false;
};

class VProfileKeyIterator {
public:
    // Lists key's values when values is set, else its subkeys. An iterator of
    // a key that is not open lists nothing.
    VProfileKeyIterator(VProfileKey& key, bool values);

    bool Next(VUnicodeString& name, uint32_t& kind) {
        return iterator_ && iterator_->Next(name, kind);
    }
    bool Next(VUnicodeString& name) { return iterator_ && iterator_->Next(name); }

private:
    std::unique_ptr<VProfilePrivateKeyIterator> iterator_;
};
