// VSecurityDescriptor: an owned security descriptor that the profile stores
// attach to the files, folders, registry keys and shared-memory objects they
// create, with its text form (kept as a multi-string value by the file store)
// and the per-user access list of the shared-memory objects.
//
// Failures: every operation that can fail returns false and leaves the
// operating system's error code as the thread's last error; the object is
// then unchanged. A value object: copies are independent. One thread at a time.
#pragma once

#include <windows.h>

#include <cstddef>
#include <vector>

#include "VContainers.h"
#include "VString.h"

class VSecurityDescriptor {
public:
    // Empty: no descriptor, so creation calls apply the default security.
    VSecurityDescriptor() = default;

    bool IsEmpty() const noexcept { return bytes_.empty(); }
    void Clear() noexcept { bytes_.clear(); }

    // Copies any valid descriptor, absolute or self-relative; it is held in
    // self-relative form. False (ERROR_INVALID_SECURITY_DESCR) when the
    // operating system does not take it as valid.
    bool Assign(PSECURITY_DESCRIPTOR descriptor);
    // Copies a self-relative descriptor kept as bytes (a binary value,
    // RegGetKeySecurity's answer). Every part it points at must lie inside
    // the length and the whole must pass IsValidSecurityDescriptor; else false
    // with ERROR_INVALID_SECURITY_DESCR.
    bool AssignBytes(const void* bytes, size_t length);

    // The held descriptor (self-relative), or null when empty. It stays valid
    // until this object changes or goes; callers must not write through it
    // (the Win32 parameters that take it are not const-qualified).
    PSECURITY_DESCRIPTOR Get() const noexcept;
    // Its length in bytes (0 when empty); Get() and GetLength() are its bytes.
    DWORD GetLength() const noexcept { return static_cast<DWORD>(bytes_.size()); }
    // Which parts the descriptor carries (owner, group, DACL, SACL), as the
    // SECURITY_INFORMATION bits a set call (RegSetKeySecurity) needs; 0 when empty.
    SECURITY_INFORMATION GetPresentParts() const noexcept;

    // Attributes for a creation call: never inheritable, with this descriptor
    // (default security when empty). They point into this object, so they are
    // valid as long as it lives unchanged.
    SECURITY_ATTRIBUTES GetSecurityAttributes() const noexcept;
    // The same for an optional descriptor: default security when null.
    static SECURITY_ATTRIBUTES SecurityAttributesFor(
        const VSecurityDescriptor* descriptor) noexcept;

    // The text form: one string per entry of the discretionary access list,
    // in list order, made with the pattern "%1,%2,%3": the kind ("allow" or
    // "deny"), the access mask as "0x" and eight lower-case hexadecimal
    // digits, and the trustee's SID string, e.g.
    //     allow,0x001f01ff,S-1-5-21-1004336348-1177238915-682003330-512
    //
    // Only the access list is kept: the owner, group and system list are not
    // part of the form (creation calls take them from the caller's token).
    // Nothing else is dropped silently: ToText fails with ERROR_NOT_SUPPORTED
    // for a descriptor that has no access list or a null one (an empty list of
    // strings stands for an access list with no entries, which denies
    // everyone), and for an entry that is not a plain allow or deny entry or
    // that carries inheritance flags (the mark of an inherited entry alone is
    // dropped: the entry becomes explicit). An empty descriptor fails likewise.
    bool ToText(VArray<VUnicodeString>& entries) const;
    // Builds a self-relative descriptor holding only that access list. The
    // kind is read without regard to case; blanks around a field are allowed;
    // the mask is "0x" with one to eight hexadecimal digits of either case;
    // the SID is any text ConvertStringSidToSidW accepts ("S-1-..." or an
    // alias such as "BA"). A string that breaks these rules fails the whole
    // call with ERROR_INVALID_DATA (ERROR_INVALID_SID for a bad SID).
    bool FromText(const VArray<VUnicodeString>& entries);

    // The descriptor of the per-user shared-memory objects: an access list of
    // one entry for the trustee "CURRENT_USER" with GENERIC_ALL, set mode,
    // inherited by objects and containers; the trustee resolves to the SID of
    // the user that the process token names. No owner or group (the creator's
    // defaults apply).
    bool AssignCurrentUserAccess();

private:
    // Kept as std::vector<BYTE>: operator new aligns it for the descriptor's
    // 32-bit offsets.
    std::vector<BYTE> bytes_;
};

// The string form ("S-1-5-21-...") of the SID of the user that the process
// token names. False with the system's error as last error.
bool GetCurrentUserSidString(VUnicodeString& sid);
