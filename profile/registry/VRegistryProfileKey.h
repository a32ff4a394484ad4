// VRegistryProfileKey: the registry back end's key of the profile store. Each
// slot of VProfilePrivateKey goes to the same operation of a VRegistryKey;
// this class adds the open-for-write-else-read rule, the read-only flag and
// the iterator over the key's subkeys or values.
#pragma once

#include <windows.h>

#include <cstdint>
#include <memory>

#include "VProfilePrivate.h"
#include "VRegistryKey.h"

class VRegistryProfileKey final : public VProfilePrivateKey {
public:
    // The kind code with which the value iterator lists a value whose registry
    // type has no kind of its own (REG_EXPAND_SZ, REG_QWORD, ...): -1 as 32 bits.
    static constexpr uint32_t NoKind = ProfileNoKind;

    // Opens path under parent (a hive or an open key). Unless readOnly, the key
    // is opened with read and write access, and created (with its missing
    // parents, non-volatile, with security) when create is set. When that
    // fails, or when readOnly, it is opened with query-value and
    // enumerate-subkeys access only and nothing is created: a key that cannot
    // be written can still be read, and a read-only store never creates keys.
    // When that fails as well the key has no handle: IsOpen() is false, every
    // operation fails, and the report holds the registry's answer (reads under
    // a key that does not exist record CONFIG_VALUE_ABSENT).
    VRegistryProfileKey(HKEY parent, const VUnicodeString& path, bool readOnly, bool create,
                        const VSecurityDescriptor* security);

    bool IsOpen() const noexcept { return key_.IsOpen(); }
    // The kind code of a registry type: dword, string, binary, multi-string or NoKind.
    static uint32_t KindOfType(DWORD type) noexcept;

    bool GetSecurity(const VUnicodeString& name, VSecurityDescriptor& descriptor) override;
    bool GetMultiString(const VUnicodeString& name, VArray<VUnicodeString>& strings) override;
    bool GetBinary(const VUnicodeString& name, void* buffer, size_t& size) override;
    bool GetString(const VUnicodeString& name, VUnicodeString& text) override;
    bool GetDword(const VUnicodeString& name, uint32_t& value) override;
    bool SetSecurity(const VUnicodeString& name, const VSecurityDescriptor& descriptor) override;
    bool SetMultiString(const VUnicodeString& name, const VArray<VUnicodeString>& strings) override;
    bool SetBinary(const VUnicodeString& name, const void* bytes, size_t length) override;
    bool SetString(const VUnicodeString& name, const VUnicodeString& text) override;
    bool SetDword(const VUnicodeString& name, uint32_t value) override;
    bool DeleteValue(const VUnicodeString& name) override;
    bool DeleteKey(const VUnicodeString& name) override;
    bool KeyExists(const VUnicodeString& name) override;
    // Whether the key was opened with write access.
    bool IsWritable() override;
    // The store creates every key non-volatile, and the family's keys are never
    // made volatile by anyone else, so the answer is always false.
    bool IsVolatile() override;
    VReportMessageParams& GetLastErrorParams() override;
    // The registry is read afresh by every call, so there is nothing to drop:
    // true when the key is open.
    bool Reload() override;
    // RegFlushKey.
    bool Flush() override;
    // The subkey, opened by the rules above with this key's read-only flag (so
    // a key that fell back to reading may still have writable subkeys);
    // null, with the reason in this key's report, when it cannot be opened.
    std::unique_ptr<VProfilePrivateKey> OpenKey(const VUnicodeString& name, bool create,
                                                const VSecurityDescriptor* security) override;
    // Lists the values (each with its kind code, NoKind for types without one)
    // or the subkeys (kind ProfileSubkey). The iterator holds a handle of its
    // own on the key, so it may outlive this object. A value iterator fetches
    // each value's data with its name, and this key's read of that value
    // right after takes it from there.
    std::unique_ptr<VProfilePrivateKeyIterator> CreatePrivateKeyIterator(bool values) override;

private:
    class Iterator;

    VRegistryKey key_;
    bool readOnly_;
};
