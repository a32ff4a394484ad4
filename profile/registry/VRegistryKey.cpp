#include "VRegistryKey.h"

#include <algorithm>
#include <cstring>
#include <cwchar>

#include "ProfileErrors.h"
#include "VSecurityDescriptor.h"

namespace {

// Names in the registry have at most 16383 characters; the last capacity only
// keeps a misbehaving registry from making the buffer grow for ever.
constexpr DWORD FirstNameCapacity = 32;
constexpr DWORD LastNameCapacity = 32768;
// Most values of the family's keys fit these at once: one call reads them.
constexpr size_t FirstValueCapacity = 512;
constexpr DWORD FetchedNameCapacity = 256;
constexpr size_t FetchedValueCapacity = 4096;

// Fills name through enumerate(buffer, capacity in, length out), with a buffer
// of 32 characters at first, doubled while the registry answers ERROR_MORE_DATA.
template <class Enumerate>
LSTATUS EnumerateName(VUnicodeString& name, Enumerate enumerate) {
    for (DWORD capacity = FirstNameCapacity;; capacity *= 2) {
        DWORD length = capacity;  // characters, the terminator included
        const LSTATUS status = enumerate(name.GetBuffer(capacity - 1), &length);
        name.ReleaseBuffer(status == ERROR_SUCCESS ? length : 0);
        if (status != ERROR_MORE_DATA || capacity >= LastNameCapacity) return status;
    }
}

LSTATUS EnumSubkeyName(HKEY key, DWORD index, VUnicodeString& name) {
    return EnumerateName(name, [&](wchar_t* buffer, DWORD* length) {
        return RegEnumKeyExW(key, index, buffer, length, nullptr, nullptr, nullptr, nullptr);
    });
}

LSTATUS OpenSubkey(HKEY parent, const VUnicodeString& name, REGSAM access, RegistryKeyHandle& key) {
    HKEY opened = nullptr;
    const LSTATUS status = RegOpenKeyExW(parent, name.c_str(), 0, access, &opened);
    if (status == ERROR_SUCCESS) key.Reset(opened);
    return status;
}

// Removes name under parent with everything below it, deepest keys first.
LSTATUS DeleteTree(HKEY parent, const VUnicodeString& name) {
    RegistryKeyHandle key;
    LSTATUS status = OpenSubkey(parent, name, KEY_ENUMERATE_SUB_KEYS | KEY_QUERY_VALUE, key);
    if (status != ERROR_SUCCESS) return status;
    VUnicodeString child;
    // Always the first subkey: each pass removes the one before.
    while ((status = EnumSubkeyName(key.Get(), 0, child)) == ERROR_SUCCESS) {
        status = DeleteTree(key.Get(), child);
        if (status != ERROR_SUCCESS) return status;
    }
    if (status != ERROR_NO_MORE_ITEMS) return status;
    key.Reset();
    return RegDeleteKeyW(parent, name.c_str());
}

// The access that lets a key change what it holds. Calls that reach a subkey
// through a relative open (deletion, security) check it themselves, because
// the registry grants such an open by the subkey's own access list, whatever
// rights the parent handle has.
bool HasWriteAccess(REGSAM access) { return (access & (KEY_SET_VALUE | KEY_CREATE_SUB_KEY)) != 0; }

bool HasAccessList(const VSecurityDescriptor* descriptor) {
    return descriptor && (descriptor->GetPresentParts() & DACL_SECURITY_INFORMATION) != 0;
}

// Gives the subkey name of key (empty: key itself) the access list of descriptor.
LSTATUS ApplyAccessList(HKEY key, const VUnicodeString& name,
                        const VSecurityDescriptor& descriptor) {
    RegistryKeyHandle target;
    const LSTATUS status = OpenSubkey(key, name, WRITE_DAC, target);
    if (status != ERROR_SUCCESS) return status;
    return RegSetKeySecurity(target.Get(), DACL_SECURITY_INFORMATION, descriptor.Get());
}

}  // namespace

bool VRegistryKey::Create(HKEY parent, const VUnicodeString& path, REGSAM access,
                          const VSecurityDescriptor* security) {
    SECURITY_ATTRIBUTES attributes = VSecurityDescriptor::SecurityAttributesFor(security);
    HKEY opened = nullptr;
    DWORD disposition = 0;
    const LSTATUS status =
        RegCreateKeyExW(parent, path.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE, access,
                        &attributes, &opened, &disposition);
    handle_.Reset(status == ERROR_SUCCESS ? opened : nullptr);
    access_ = access;
    disposition_ = status == ERROR_SUCCESS ? disposition : 0;
    openStatus_ = status;
    if (status == ERROR_SUCCESS && disposition == REG_CREATED_NEW_KEY && HasAccessList(security)) {
        // Wine's RegCreateKeyExW ignores the security attributes, so the new
        // key gets its access list once more; on Windows this changes nothing.
        const LSTATUS applied = ApplyAccessList(handle_.Get(), VUnicodeString(), *security);
        if (applied != ERROR_SUCCESS) {
            handle_.Reset();
            openStatus_ = applied;
            return Record(applied);
        }
    }
    return Record(status);
}

bool VRegistryKey::Open(HKEY parent, const VUnicodeString& path, REGSAM access) {
    HKEY opened = nullptr;
    const LSTATUS status = RegOpenKeyExW(parent, path.c_str(), 0, access, &opened);
    handle_.Reset(status == ERROR_SUCCESS ? opened : nullptr);
    access_ = access;
    disposition_ = 0;
    openStatus_ = status;
    return Record(status);
}

bool VRegistryKey::Record(LSTATUS status) {
    RecordSystemError(report_, static_cast<DWORD>(status));
    return status == ERROR_SUCCESS;
}

bool VRegistryKey::RecordRead(LSTATUS status, const VUnicodeString& name) {
    if (status != ERROR_FILE_NOT_FOUND) return Record(status);
    RecordValueAbsent(report_, name);
    return false;
}

LSTATUS VRegistryKey::NoHandleStatus() const noexcept {
    return openStatus_ != ERROR_SUCCESS ? openStatus_ : ERROR_INVALID_HANDLE;
}

bool VRegistryKey::ReadValue(const VUnicodeString& name, DWORD type, const BYTE*& data,
                             size_t& size) {
    if (fetched_ && fetched_->held && fetched_->name == name) {
        fetched_->held = false;
        if (fetched_->type != type) {
            RecordValueAbsent(report_, name);
            return false;
        }
        data = fetched_->data.data();
        size = fetched_->data.size();
        return Record(ERROR_SUCCESS);
    }
    if (!IsOpen()) return RecordRead(NoHandleStatus(), name);
    if (buffer_.size() < FirstValueCapacity) buffer_.resize(FirstValueCapacity);
    for (;;) {
        DWORD actual = REG_NONE;
        DWORD length = static_cast<DWORD>(buffer_.size());
        const LSTATUS status = RegQueryValueExW(handle_.Get(), name.c_str(), nullptr, &actual,
                                                buffer_.data(), &length);
        // Longer than the buffer (length is the size needed; another writer
        // may have made it longer still by the next call).
        if (status == ERROR_MORE_DATA && actual == type) {
            buffer_.resize(length);
            continue;
        }
        if (status != ERROR_SUCCESS && status != ERROR_MORE_DATA) return RecordRead(status, name);
        if (actual != type) {
            RecordValueAbsent(report_, name);
            return false;
        }
        data = buffer_.data();
        size = length;
        return Record(ERROR_SUCCESS);
    }
}

bool VRegistryKey::GetDword(const VUnicodeString& name, uint32_t& value) {
    const BYTE* data = nullptr;
    size_t size = 0;
    if (!ReadValue(name, REG_DWORD, data, size)) return false;
    if (size != sizeof value) return Record(ERROR_INVALID_DATA);
    std::memcpy(&value, data, sizeof value);
    return true;
}

bool VRegistryKey::GetString(const VUnicodeString& name, VUnicodeString& text) {
    const BYTE* data = nullptr;
    size_t size = 0;
    if (!ReadValue(name, REG_SZ, data, size)) return false;
    // The terminator is the writer's promise, not the registry's: stop at the
    // first zero or at the end of the data, whichever comes first.
    const auto* characters = reinterpret_cast<const wchar_t*>(data);
    text.Assign(characters, wcsnlen(characters, size / sizeof(wchar_t)));
    return true;
}

bool VRegistryKey::GetMultiString(const VUnicodeString& name, VArray<VUnicodeString>& strings) {
    const BYTE* data = nullptr;
    size_t size = 0;
    if (!ReadValue(name, REG_MULTI_SZ, data, size)) return false;
    const auto* next = reinterpret_cast<const wchar_t*>(data);
    const wchar_t* const end = next + size / sizeof(wchar_t);
    // The list ends at an empty string or, without its final zeros, at the
    // end of the data. The caller's strings keep their blocks where they can.
    size_t count = 0;
    while (next < end && *next != L'\0') {
        const size_t length = wcsnlen(next, static_cast<size_t>(end - next));
        if (count == strings.GetCount()) strings.Add(VUnicodeString());
        strings[count++].Assign(next, length);
        next += length + 1;
    }
    while (strings.GetCount() > count) strings.RemoveAt(strings.GetCount() - 1);
    return true;
}

bool VRegistryKey::GetBinary(const VUnicodeString& name, void* buffer, size_t& size) {
    const BYTE* data = nullptr;
    size_t length = 0;
    if (!ReadValue(name, REG_BINARY, data, length)) return false;
    if (buffer && size < length) {
        size = length;  // the size needed
        return Record(ERROR_MORE_DATA);
    }
    if (buffer && length > 0) std::memcpy(buffer, data, length);
    size = length;
    return true;
}

bool VRegistryKey::SetValue(const VUnicodeString& name, DWORD type, const void* data,
                            size_t length) {
    DropFetched();
    if (!IsOpen()) return Record(NoHandleStatus());
    if (length > MAXDWORD) return Record(ERROR_INVALID_PARAMETER);
    return Record(RegSetValueExW(handle_.Get(), name.c_str(), 0, type,
                                 static_cast<const BYTE*>(data), static_cast<DWORD>(length)));
}

bool VRegistryKey::SetDword(const VUnicodeString& name, uint32_t value) {
    return SetValue(name, REG_DWORD, &value, sizeof value);
}

bool VRegistryKey::SetString(const VUnicodeString& name, const VUnicodeString& text) {
    return SetValue(name, REG_SZ, text.c_str(), (text.GetLength() + 1) * sizeof(wchar_t));
}

bool VRegistryKey::SetMultiString(const VUnicodeString& name,
                                  const VArray<VUnicodeString>& strings) {
    WipedVector<wchar_t> data;
    for (const VUnicodeString& text : strings) {
        if (text.IsEmpty() || wcslen(text.c_str()) != text.GetLength())
            return Record(ERROR_INVALID_PARAMETER);
        data.insert(data.end(), text.c_str(), text.c_str() + text.GetLength() + 1);
    }
    data.push_back(L'\0');
    return SetValue(name, REG_MULTI_SZ, data.data(), data.size() * sizeof(wchar_t));
}

bool VRegistryKey::SetBinary(const VUnicodeString& name, const void* bytes, size_t length) {
    return SetValue(name, REG_BINARY, bytes, length);
}

bool VRegistryKey::DeleteValue(const VUnicodeString& name) {
    DropFetched();
    if (!IsOpen()) return Record(NoHandleStatus());
    return Record(RegDeleteValueW(handle_.Get(), name.c_str()));
}

bool VRegistryKey::DeleteKey(const VUnicodeString& name) {
    if (!IsOpen()) return Record(NoHandleStatus());
    if (!HasWriteAccess(access_)) return Record(ERROR_ACCESS_DENIED);
    if (name.IsEmpty()) return Record(ERROR_INVALID_PARAMETER);
    return Record(DeleteTree(handle_.Get(), name));
}

bool VRegistryKey::KeyExists(const VUnicodeString& name) {
    if (!IsOpen()) return Record(NoHandleStatus());
    RegistryKeyHandle subkey;
    return Record(OpenSubkey(handle_.Get(), name, KEY_READ, subkey));
}

bool VRegistryKey::GetSecurity(const VUnicodeString& name, VSecurityDescriptor& descriptor) {
    if (!IsOpen()) return Record(NoHandleStatus());
    RegistryKeyHandle key;
    LSTATUS status = OpenSubkey(handle_.Get(), name, READ_CONTROL, key);
    if (status != ERROR_SUCCESS) return Record(status);
    const SECURITY_INFORMATION parts =
        OWNER_SECURITY_INFORMATION | GROUP_SECURITY_INFORMATION | DACL_SECURITY_INFORMATION;
    std::vector<BYTE> bytes;
    DWORD size = 0;
    // The first call only asks the size; loop in case the descriptor grows meanwhile.
    while ((status = RegGetKeySecurity(key.Get(), parts, bytes.empty() ? nullptr : bytes.data(),
                                       &size)) == ERROR_INSUFFICIENT_BUFFER) {
        bytes.resize(size);
    }
    if (status != ERROR_SUCCESS) return Record(status);
    if (!descriptor.AssignBytes(bytes.data(), size))
        return Record(static_cast<LSTATUS>(GetLastError()));
    return Record(ERROR_SUCCESS);
}

bool VRegistryKey::SetSecurity(const VUnicodeString& name, const VSecurityDescriptor& descriptor) {
    if (!IsOpen()) return Record(NoHandleStatus());
    if (!HasWriteAccess(access_)) return Record(ERROR_ACCESS_DENIED);
    if (!HasAccessList(&descriptor)) return Record(ERROR_INVALID_PARAMETER);
    return Record(ApplyAccessList(handle_.Get(), name, descriptor));
}

bool VRegistryKey::Flush() {
    if (!IsOpen()) return Record(NoHandleStatus());
    return Record(RegFlushKey(handle_.Get()));
}

bool VRegistryKey::EnumSubkey(DWORD index, VUnicodeString& name) {
    if (!IsOpen()) return Record(NoHandleStatus());
    return Record(EnumSubkeyName(handle_.Get(), index, name));
}

bool VRegistryKey::EnumValue(DWORD index, VUnicodeString& name, DWORD& type,
                             VRegistryFetchedValue* fetched) {
    if (!IsOpen()) return Record(NoHandleStatus());
    if (fetched) {
        // Name and data in one call while both fit their buffers; else the
        // name alone below, and the data is read when it is asked for.
        fetched->held = false;
        fetched->data.resize(std::max(fetched->data.capacity(), FetchedValueCapacity));
        DWORD length = FetchedNameCapacity;
        DWORD size = static_cast<DWORD>(fetched->data.size());
        const LSTATUS status = RegEnumValueW(handle_.Get(), index, name.GetBuffer(length - 1),
                                             &length, nullptr, &type, fetched->data.data(), &size);
        name.ReleaseBuffer(status == ERROR_SUCCESS ? length : 0);
        if (status == ERROR_SUCCESS) {
            fetched->name = name;
            fetched->type = type;
            fetched->data.resize(size);
            fetched->held = true;
            return Record(ERROR_SUCCESS);
        }
        if (status != ERROR_MORE_DATA) return Record(status);
    }
    return Record(EnumerateName(name, [&](wchar_t* buffer, DWORD* length) {
        return RegEnumValueW(handle_.Get(), index, buffer, length, nullptr, &type, nullptr,
                             nullptr);
    }));
}
