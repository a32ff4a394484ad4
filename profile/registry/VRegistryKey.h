// VRegistryKey: the one owner of an open registry key, with typed reads and
// writes, deletion, existence tests, key security and enumeration on it. The
// registry store's keys and the family's setting lookups are built on it.
//
// Failures: every operation returns false and leaves its reason in the key's
// report (GetLastErrorParams): CONFIG_VALUE_ABSENT with the value's name for a
// read of a value that is missing or stored with another registry type, the
// registry's result code for everything else. A success leaves code 0.
// A key opened without write access changes nothing, subkeys included: DeleteKey
// and SetSecurity fail on it with ERROR_ACCESS_DENIED. One thread at a time.
#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <vector>

#include <memory>

#include "VContainers.h"
#include "VReportMessageParams.h"
#include "VString.h"
#include "Win32Handle.h"
#include "WipedVector.h"

class VSecurityDescriptor;

// A value as the value iterator fetched it - name, registry type and data -
// for the read that follows it: a caller that lists a key's values reads each
// one next, and the enumeration has brought its data already.
struct VRegistryFetchedValue {
    VUnicodeString name;
    DWORD type = REG_NONE;
    WipedVector<BYTE> data;  // its size is the data's; values may be passwords
    bool held = false;       // false once used, or when the data did not come along
};

class VRegistryKey {
public:
    // No handle yet: every operation fails with ERROR_INVALID_HANDLE.
    VRegistryKey() = default;
    VRegistryKey(const VRegistryKey&) = delete;
    VRegistryKey& operator=(const VRegistryKey&) = delete;

    // RegCreateKeyExW: opens path under parent (a hive or an open key) with
    // access, creating it and its missing parents non-volatile when absent,
    // with security (null: the registry's default) on what is created. A new
    // key gets the access list of security explicitly as well (Wine drops the
    // creation attributes); when that fails, the key is not kept open.
    // Replaces any handle held before, also when it fails.
    bool Create(HKEY parent, const VUnicodeString& path, REGSAM access,
                const VSecurityDescriptor* security);
    // RegOpenKeyExW: opens path under parent with access, creating nothing.
    bool Open(HKEY parent, const VUnicodeString& path, REGSAM access);

    bool IsOpen() const noexcept { return handle_.IsValid(); }
    // The open key, owned by this object; null when opening failed.
    HKEY GetHandle() const noexcept { return handle_.Get(); }
    // The access asked for by the last Create or Open.
    REGSAM GetAccess() const noexcept { return access_; }
    // REG_CREATED_NEW_KEY or REG_OPENED_EXISTING_KEY after Create; 0 otherwise.
    DWORD GetDisposition() const noexcept { return disposition_; }
    VReportMessageParams& GetLastErrorParams() noexcept { return report_; }

    // Typed reads: one RegQueryValueExW for type and data (a second only for
    // data longer than the key's buffer, which then grows); a value of
    // another type than asked fails as absent and changes nothing of the
    // caller's. The read right after the value iterator fetched that value
    // takes it from there (UseFetched) without asking the registry.
    bool GetDword(const VUnicodeString& name, uint32_t& value);        // REG_DWORD
    bool GetString(const VUnicodeString& name, VUnicodeString& text);  // REG_SZ
    bool GetMultiString(const VUnicodeString& name,
                        VArray<VUnicodeString>& strings);  // REG_MULTI_SZ
    // REG_BINARY. With no buffer, size receives the size needed. With one, size
    // is its capacity on entry and the bytes written on return; too small a
    // buffer fails with ERROR_MORE_DATA and size set to the size needed.
    bool GetBinary(const VUnicodeString& name, void* buffer, size_t& size);

    bool SetDword(const VUnicodeString& name, uint32_t value);
    bool SetString(const VUnicodeString& name, const VUnicodeString& text);
    // A multi-string is stored as strings each ended by a zero, then one more
    // zero, so an empty string in the list could not be read back: a list
    // holding one (or a string with an embedded zero) fails with
    // ERROR_INVALID_PARAMETER and nothing is written.
    bool SetMultiString(const VUnicodeString& name, const VArray<VUnicodeString>& strings);
    bool SetBinary(const VUnicodeString& name, const void* bytes, size_t length);

    bool DeleteValue(const VUnicodeString& name);
    // Removes the subkey name with everything below it, children first, since
    // RegDeleteKeyW removes only a key without subkeys. An empty name (the key
    // itself) fails with ERROR_INVALID_PARAMETER.
    bool DeleteKey(const VUnicodeString& name);
    // Whether the subkey opens with read access (KEY_READ).
    bool KeyExists(const VUnicodeString& name);

    // Security of the subkey name (empty: this key), read with owner, group
    // and access list through RegGetKeySecurity.
    bool GetSecurity(const VUnicodeString& name, VSecurityDescriptor& descriptor);
    // Applies the access list of descriptor to the subkey name (empty: this
    // key), opened again with WRITE_DAC. Owner and group are left as they are;
    // a descriptor without an access list fails with ERROR_INVALID_PARAMETER.
    bool SetSecurity(const VUnicodeString& name, const VSecurityDescriptor& descriptor);

    // RegFlushKey: the key's changes are written to the registry's storage now.
    bool Flush();

    // The name of the subkey, or of the value (with its registry type), at
    // index. The name buffer starts at 32 characters and is doubled for as
    // long as the registry answers ERROR_MORE_DATA. False with
    // ERROR_NO_MORE_ITEMS past the last entry.
    bool EnumSubkey(DWORD index, VUnicodeString& name);
    // With fetched, the value's data is fetched into it in the same call where
    // it fits the buffer (fetched->held tells whether it did).
    bool EnumValue(DWORD index, VUnicodeString& name, DWORD& type,
                   VRegistryFetchedValue* fetched = nullptr);

    // Reads take a value from fetched, once, when it holds the one asked for
    // by exactly that name; a write or deletion through this key drops it.
    void UseFetched(std::shared_ptr<VRegistryFetchedValue> fetched) {
        fetched_ = std::move(fetched);
    }

private:
    // Stores status as the last result; true when it is ERROR_SUCCESS.
    bool Record(LSTATUS status);
    // The same for a read of name: a missing value is recorded as absent.
    bool RecordRead(LSTATUS status, const VUnicodeString& name);
    // The code a call on a key without handle fails with: the reason opening
    // failed, so that a read under a key that does not exist reads as absent.
    LSTATUS NoHandleStatus() const noexcept;
    // name's data of registry type type: in the fetched value, or read into
    // buffer_. False (as absent for another type) when there is none.
    bool ReadValue(const VUnicodeString& name, DWORD type, const BYTE*& data, size_t& size);
    bool SetValue(const VUnicodeString& name, DWORD type, const void* data, size_t length);
    void DropFetched() noexcept {
        if (fetched_) fetched_->held = false;
    }

    RegistryKeyHandle handle_;
    WipedVector<BYTE> buffer_;
    std::shared_ptr<VRegistryFetchedValue> fetched_;
    REGSAM access_ = 0;
    DWORD disposition_ = 0;
    LSTATUS openStatus_ = ERROR_INVALID_HANDLE;
    VReportMessageParams report_;
};
