// The private layer of the profile store: the contract that each back end
// (INI-style file tree, registry) implements. Nothing above profile/ sees it;
// callers use VProfileStore, VProfileKey and VProfileKeyIterator.
//
// Ownership: every object returned by CreateStore, OpenRootKey, OpenKey and
// CreatePrivateKeyIterator belongs to the caller.
//
// Failures: operations return false (or null) and record why in the key's
// error record (GetLastErrorParams). A read of a value that does not exist,
// or that exists with another kind than asked, records CONFIG_VALUE_ABSENT
// with the value's name as its insert, so that typed values can tell "not
// stored yet" from a real failure; every other failure records the operating
// system's error code as the message code.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "VContainers.h"
#include "VReportMessageParams.h"
#include "VString.h"

class VSecurityDescriptor;

// The kind code of a value, and of an iterator entry.
enum VProfileValueKind : uint32_t {
    ProfileDword = 0,            // unsigned 32-bit number
    ProfileString = 1,           // wide string
    ProfileBinary = 2,           // bytes with a 32-bit length
    ProfileMultiString = 3,      // ordered list of wide strings
    ProfileSubkey = 4,           // iterators only; any code of 4 and above names a subkey
    ProfileNoKind = 0xFFFFFFFF,  // iterators only: a value of a type no kind stands for
};

inline bool IsSubkeyKind(uint32_t kind) { return kind >= ProfileSubkey && kind != ProfileNoKind; }

class VProfilePrivateKeyIterator {
public:
    virtual ~VProfilePrivateKeyIterator() = default;
    // The next entry's name and kind; false when no entry is left.
    virtual bool Next(VUnicodeString& name, uint32_t& kind) = 0;
    virtual bool Next(VUnicodeString& name) = 0;
};

// One key of a store. Used by one thread at a time.
class VProfilePrivateKey {
public:
    virtual ~VProfilePrivateKey() = default;
    virtual bool GetSecurity(const VUnicodeString& name, VSecurityDescriptor& descriptor) = 0;
    virtual bool GetMultiString(const VUnicodeString& name, VArray<VUnicodeString>& strings) = 0;
    // With no buffer, size receives the size needed. With a buffer, size is its
    // capacity on entry and the bytes written on return; too small a buffer fails
    // with ERROR_MORE_DATA and the size needed.
    virtual bool GetBinary(const VUnicodeString& name, void* buffer, size_t& size) = 0;
    virtual bool GetString(const VUnicodeString& name, VUnicodeString& text) = 0;
    virtual bool GetDword(const VUnicodeString& name, uint32_t& value) = 0;
    virtual bool SetSecurity(const VUnicodeString& name, const VSecurityDescriptor& descriptor) = 0;
    virtual bool SetMultiString(const VUnicodeString& name,
                                const VArray<VUnicodeString>& strings) = 0;
    virtual bool SetBinary(const VUnicodeString& name, const void* bytes, size_t length) = 0;
    virtual bool SetString(const VUnicodeString& name, const VUnicodeString& text) = 0;
    virtual bool SetDword(const VUnicodeString& name, uint32_t value) = 0;
    virtual bool DeleteValue(const VUnicodeString& name) = 0;
    // Removes the subkey with everything below it.
    virtual bool DeleteKey(const VUnicodeString& name) = 0;
    virtual bool KeyExists(const VUnicodeString& name) = 0;
    virtual bool IsWritable() = 0;
    // Whether the key's contents vanish when the system restarts. Files never do.
    virtual bool IsVolatile() = 0;
    virtual VReportMessageParams& GetLastErrorParams() = 0;
    // Drops what is cached and reads the key again.
    virtual bool Reload() = 0;
    // Writes pending changes to the back end's storage now rather than later.
    virtual bool Flush() = 0;
    // The subkey, created (with its missing parents) when create is set and
    // security applied to what is created; null when it cannot be had.
    virtual std::unique_ptr<VProfilePrivateKey> OpenKey(const VUnicodeString& name, bool create,
                                                        const VSecurityDescriptor* security) = 0;
    // Lists the key's values when values is set, else its subkeys.
    virtual std::unique_ptr<VProfilePrivateKeyIterator> CreatePrivateKeyIterator(bool values) = 0;
};

class VProfilePrivateStore {
public:
    virtual ~VProfilePrivateStore() = default;
    virtual std::unique_ptr<VProfilePrivateKey> OpenRootKey(bool readOnly) = 0;
};

class VProfileStoreFactory {
public:
    virtual ~VProfileStoreFactory() = default;
    virtual std::unique_ptr<VProfilePrivateStore> CreateStore() = 0;
};

// The process-wide factories. The slots do not own them: start-up does, and
// keeps them alive until every store is gone. Safe to read from any thread.
void SetIniFileStoreFactory(VProfileStoreFactory* factory);
void SetRegistryStoreFactory(VProfileStoreFactory* factory);
// The INI-file factory when that slot is set, else the registry factory.
VProfileStoreFactory* CurrentProfileStoreFactory();
