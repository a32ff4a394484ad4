// The owned security descriptor, its text form and the per-user access list.
#include "VSecurityDescriptor.h"

#include <aclapi.h>
#include <sddl.h>

#include <algorithm>
#include <cstring>

#include "Win32Handle.h"

namespace {

constexpr wchar_t AllowWord[] = L"allow";
constexpr wchar_t DenyWord[] = L"deny";

bool Fail(DWORD error) {
    SetLastError(error);
    return false;
}

// Whether a part of size bytes at offset lies inside a buffer of length bytes.
bool Fits(size_t offset, size_t size, size_t length) {
    return offset <= length && size <= length - offset;
}

// Whether the SID at offset (of a self-relative descriptor of length bytes)
// lies inside it.
bool SidFits(const BYTE* bytes, size_t offset, size_t length) {
    constexpr size_t header = 8;  // revision, count, authority
    if (!Fits(offset, header, length)) return false;
    const size_t count = bytes[offset + 1];
    return Fits(offset, header + 4 * count, length) &&
           IsValidSid(const_cast<BYTE*>(bytes + offset));
}

// Whether the ACL at offset lies inside the descriptor, its entries inside the ACL.
bool AclFits(const BYTE* bytes, size_t offset, size_t length) {
    if (!Fits(offset, sizeof(ACL), length)) return false;
    ACL acl;
    std::memcpy(&acl, bytes + offset, sizeof acl);
    if (acl.AclSize < sizeof(ACL) || !Fits(offset, acl.AclSize, length)) return false;
    size_t entry = sizeof(ACL);
    for (WORD i = 0; i < acl.AceCount; ++i) {
        ACE_HEADER header;
        if (!Fits(entry, sizeof header, acl.AclSize)) return false;
        std::memcpy(&header, bytes + offset + entry, sizeof header);
        if (header.AceSize < sizeof header || !Fits(entry, header.AceSize, acl.AclSize))
            return false;
        entry += header.AceSize;
    }
    return IsValidAcl(reinterpret_cast<PACL>(const_cast<BYTE*>(bytes + offset)));
}

// Removes blanks and tabs at either end.
VUnicodeString Field(const wchar_t* begin, const wchar_t* end) {
    while (begin < end && (*begin == L' ' || *begin == L'\t')) ++begin;
    while (end > begin && (end[-1] == L' ' || end[-1] == L'\t')) --end;
    return VUnicodeString(begin, static_cast<size_t>(end - begin));
}

// "0x" and one to eight hexadecimal digits of either case.
bool ParseMask(const VUnicodeString& text, ACCESS_MASK& mask) {
    const size_t length = text.GetLength();
    if (length < 3 || length > 10 || text[0] != L'0' || (text[1] != L'x' && text[1] != L'X'))
        return false;
    mask = 0;
    for (size_t i = 2; i < length; ++i) {
        const wchar_t c = text[i];
        int digit;
        if (c >= L'0' && c <= L'9')
            digit = c - L'0';
        else if (c >= L'a' && c <= L'f')
            digit = c - L'a' + 10;
        else if (c >= L'A' && c <= L'F')
            digit = c - L'A' + 10;
        else
            return false;
        mask = (mask << 4) | static_cast<ACCESS_MASK>(digit);
    }
    return true;
}

struct ParsedEntry {
    bool allow;
    ACCESS_MASK mask;
    LocalMemory sid;
};

// One string of the text form; false with the error as last error.
bool ParseEntry(const VUnicodeString& text, ParsedEntry& entry) {
    const wchar_t* begin = text.c_str();
    const wchar_t* end = begin + text.GetLength();
    const wchar_t* firstComma = std::find(begin, end, L',');
    const wchar_t* secondComma = firstComma == end ? end : std::find(firstComma + 1, end, L',');
    if (secondComma == end) return Fail(ERROR_INVALID_DATA);

    const VUnicodeString kind = Field(begin, firstComma);
    if (kind.EqualsNoCase(AllowWord))
        entry.allow = true;
    else if (kind.EqualsNoCase(DenyWord))
        entry.allow = false;
    else
        return Fail(ERROR_INVALID_DATA);

    if (!ParseMask(Field(firstComma + 1, secondComma), entry.mask)) return Fail(ERROR_INVALID_DATA);

    // A third comma is no SID character, so the SID parser rejects it.
    const VUnicodeString sidText = Field(secondComma + 1, end);
    PSID sid = nullptr;
    // Some converters take an empty text for a SID; it names nobody.
    if (sidText.IsEmpty() || !ConvertStringSidToSidW(sidText.c_str(), &sid))
        return Fail(ERROR_INVALID_SID);
    entry.sid.Reset(sid);
    return true;
}

// A self-relative copy of an absolute descriptor with only dacl set.
bool AssignDacl(VSecurityDescriptor& target, PACL dacl) {
    SECURITY_DESCRIPTOR absolute;
    if (!InitializeSecurityDescriptor(&absolute, SECURITY_DESCRIPTOR_REVISION)) return false;
    if (!SetSecurityDescriptorDacl(&absolute, TRUE, dacl, FALSE)) return false;
    return target.Assign(&absolute);
}

}  // namespace

bool VSecurityDescriptor::Assign(PSECURITY_DESCRIPTOR descriptor) {
    if (!descriptor || !IsValidSecurityDescriptor(descriptor))
        return Fail(ERROR_INVALID_SECURITY_DESCR);
    SECURITY_DESCRIPTOR_CONTROL control = 0;
    DWORD revision = 0;
    if (!GetSecurityDescriptorControl(descriptor, &control, &revision)) return false;
    if (control & SE_SELF_RELATIVE) {
        const DWORD length = GetSecurityDescriptorLength(descriptor);
        const BYTE* bytes = static_cast<const BYTE*>(descriptor);
        bytes_.assign(bytes, bytes + length);
        return true;
    }
    DWORD length = 0;
    MakeSelfRelativeSD(descriptor, nullptr, &length);
    if (length == 0) return false;
    std::vector<BYTE> relative(length);
    if (!MakeSelfRelativeSD(descriptor, relative.data(), &length)) return false;
    bytes_ = std::move(relative);
    return true;
}

bool VSecurityDescriptor::AssignBytes(const void* data, size_t length) {
    // IsValidSecurityDescriptor trusts the offsets inside; bytes from a file
    // or a registry value are checked against their length first.
    const BYTE* bytes = static_cast<const BYTE*>(data);
    SECURITY_DESCRIPTOR_RELATIVE header;
    if (!bytes || length < sizeof header || length > MAXDWORD)
        return Fail(ERROR_INVALID_SECURITY_DESCR);
    std::memcpy(&header, bytes, sizeof header);
    const bool fits = (header.Control & SE_SELF_RELATIVE) &&
                      (header.Owner == 0 || SidFits(bytes, header.Owner, length)) &&
                      (header.Group == 0 || SidFits(bytes, header.Group, length)) &&
                      (!(header.Control & SE_SACL_PRESENT) || header.Sacl == 0 ||
                       AclFits(bytes, header.Sacl, length)) &&
                      (!(header.Control & SE_DACL_PRESENT) || header.Dacl == 0 ||
                       AclFits(bytes, header.Dacl, length));
    if (!fits) return Fail(ERROR_INVALID_SECURITY_DESCR);
    std::vector<BYTE> copy(bytes, bytes + length);
    if (!IsValidSecurityDescriptor(copy.data()) ||
        GetSecurityDescriptorLength(copy.data()) > length)
        return Fail(ERROR_INVALID_SECURITY_DESCR);
    bytes_ = std::move(copy);
    return true;
}

PSECURITY_DESCRIPTOR VSecurityDescriptor::Get() const noexcept {
    return bytes_.empty() ? nullptr : const_cast<BYTE*>(bytes_.data());
}

SECURITY_INFORMATION VSecurityDescriptor::GetPresentParts() const noexcept {
    if (IsEmpty()) return 0;
    SECURITY_INFORMATION parts = 0;
    PSID sid = nullptr;
    BOOL defaulted = FALSE;
    if (GetSecurityDescriptorOwner(Get(), &sid, &defaulted) && sid)
        parts |= OWNER_SECURITY_INFORMATION;
    if (GetSecurityDescriptorGroup(Get(), &sid, &defaulted) && sid)
        parts |= GROUP_SECURITY_INFORMATION;
    BOOL present = FALSE;
    PACL acl = nullptr;
    if (GetSecurityDescriptorDacl(Get(), &present, &acl, &defaulted) && present)
        parts |= DACL_SECURITY_INFORMATION;
    if (GetSecurityDescriptorSacl(Get(), &present, &acl, &defaulted) && present)
        parts |= SACL_SECURITY_INFORMATION;
    return parts;
}

SECURITY_ATTRIBUTES VSecurityDescriptor::GetSecurityAttributes() const noexcept {
    SECURITY_ATTRIBUTES attributes{};
    attributes.nLength = sizeof attributes;
    attributes.lpSecurityDescriptor = Get();
    attributes.bInheritHandle = FALSE;
    return attributes;
}

SECURITY_ATTRIBUTES VSecurityDescriptor::SecurityAttributesFor(
    const VSecurityDescriptor* descriptor) noexcept {
    return descriptor ? descriptor->GetSecurityAttributes()
                      : VSecurityDescriptor().GetSecurityAttributes();
}

bool VSecurityDescriptor::ToText(VArray<VUnicodeString>& entries) const {
    if (IsEmpty()) return Fail(ERROR_NOT_SUPPORTED);
    BOOL present = FALSE;
    BOOL defaulted = FALSE;
    PACL dacl = nullptr;
    if (!GetSecurityDescriptorDacl(Get(), &present, &dacl, &defaulted)) return false;
    if (!present || !dacl) return Fail(ERROR_NOT_SUPPORTED);

    VArray<VUnicodeString> texts;
    for (WORD index = 0; index < dacl->AceCount; ++index) {
        void* ace = nullptr;
        if (!GetAce(dacl, index, &ace)) return false;
        const ACE_HEADER* header = static_cast<const ACE_HEADER*>(ace);
        // Allowed and denied entries share one layout: header, mask, SID.
        const bool allow = header->AceType == ACCESS_ALLOWED_ACE_TYPE;
        if ((!allow && header->AceType != ACCESS_DENIED_ACE_TYPE) ||
            (header->AceFlags & ~INHERITED_ACE) != 0)
            return Fail(ERROR_NOT_SUPPORTED);
        const ACCESS_ALLOWED_ACE* entry = static_cast<const ACCESS_ALLOWED_ACE*>(ace);

        wchar_t* sidText = nullptr;
        if (!ConvertSidToStringSidW(const_cast<DWORD*>(&entry->SidStart), &sidText)) return false;
        const LocalMemory sidOwner(sidText);
        VUnicodeString mask;
        VUnicodeString text;
        if (!mask.FormatPositional(L"0x%1!08x!", static_cast<unsigned>(entry->Mask))) return false;
        if (!text.FormatPositional(L"%1,%2,%3", allow ? AllowWord : DenyWord, mask.c_str(),
                                   sidText))
            return false;
        texts.Add(std::move(text));
    }
    entries = std::move(texts);
    return true;
}

bool VSecurityDescriptor::FromText(const VArray<VUnicodeString>& entries) {
    std::vector<ParsedEntry> parsed(entries.GetCount());
    size_t aclSize = sizeof(ACL);
    for (size_t i = 0; i < parsed.size(); ++i) {
        if (!ParseEntry(entries[i], parsed[i])) return false;
        aclSize += sizeof(ACCESS_ALLOWED_ACE) - sizeof(DWORD) + GetLengthSid(parsed[i].sid.Get());
    }
    // An ACL's size is a 16-bit field, kept a multiple of 4.
    if (aclSize > 0xFFFC) return Fail(ERROR_INVALID_DATA);
    std::vector<DWORD> aclBuffer((aclSize + 3) / 4);
    PACL acl = reinterpret_cast<PACL>(aclBuffer.data());
    if (!InitializeAcl(acl, static_cast<DWORD>(aclBuffer.size() * 4), ACL_REVISION)) return false;
    for (const ParsedEntry& entry : parsed) {
        // Entries stay in the order given: the text is the list, not a wish list.
        const BOOL added = entry.allow
                               ? AddAccessAllowedAce(acl, ACL_REVISION, entry.mask, entry.sid.Get())
                               : AddAccessDeniedAce(acl, ACL_REVISION, entry.mask, entry.sid.Get());
        if (!added) return false;
    }
    return AssignDacl(*this, acl);
}

bool VSecurityDescriptor::AssignCurrentUserAccess() {
    EXPLICIT_ACCESS_W access{};
    BuildExplicitAccessWithNameW(&access, const_cast<wchar_t*>(L"CURRENT_USER"), GENERIC_ALL,
                                 SET_ACCESS, SUB_CONTAINERS_AND_OBJECTS_INHERIT);
    PACL acl = nullptr;
    const DWORD result = SetEntriesInAclW(1, &access, nullptr, &acl);
    if (result != ERROR_SUCCESS) return Fail(result);
    const LocalMemory aclOwner(acl);
    return AssignDacl(*this, acl);
}

bool GetCurrentUserSidString(VUnicodeString& sid) {
    HANDLE token = nullptr;
    if (!OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token)) return false;
    const KernelHandle tokenOwner(token);
    DWORD size = 0;
    GetTokenInformation(token, TokenUser, nullptr, 0, &size);
    if (size == 0) return false;
    std::vector<BYTE> buffer(size);
    if (!GetTokenInformation(token, TokenUser, buffer.data(), size, &size)) return false;
    wchar_t* text = nullptr;
    if (!ConvertSidToStringSidW(reinterpret_cast<TOKEN_USER*>(buffer.data())->User.Sid, &text))
        return false;
    const LocalMemory textOwner(text);
    sid = VUnicodeString(text);
    return true;
}
