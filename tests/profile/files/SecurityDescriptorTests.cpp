// VSecurityDescriptor: the text form both ways, bytes from outside, and the
// per-user descriptor of the shared-memory objects.
#include <gtest/gtest.h>

#include <windows.h>

#include <sddl.h>  // after windows.h

#include <cstddef>
#include <cstring>
#include <string>
#include <vector>

#include "VSecurityDescriptor.h"
#include "Win32Handle.h"

namespace {

using Texts = VArray<VUnicodeString>;

VSecurityDescriptor FromSddl(const wchar_t* sddl) {
    PSECURITY_DESCRIPTOR raw = nullptr;
    EXPECT_TRUE(ConvertStringSecurityDescriptorToSecurityDescriptorW(sddl, SDDL_REVISION_1, &raw, nullptr)) << sddl;
    const LocalMemory owner(raw);
    VSecurityDescriptor descriptor;
    EXPECT_TRUE(descriptor.Assign(raw));
    return descriptor;
}

VSecurityDescriptor WithDacl(void* dacl) {
    SECURITY_DESCRIPTOR absolute;
    InitializeSecurityDescriptor(&absolute, SECURITY_DESCRIPTOR_REVISION);
    SetSecurityDescriptorDacl(&absolute, TRUE, static_cast<PACL>(dacl), FALSE);
    VSecurityDescriptor descriptor;
    EXPECT_TRUE(descriptor.Assign(&absolute));
    return descriptor;
}

std::vector<DWORD> CallbackEntryList() {
    std::vector<DWORD> acl(64);
    InitializeAcl(reinterpret_cast<PACL>(acl.data()), static_cast<DWORD>(acl.size() * 4), ACL_REVISION);
    BYTE everyone[SECURITY_MAX_SID_SIZE];
    DWORD sidSize = sizeof everyone;
    EXPECT_TRUE(CreateWellKnownSid(WinWorldSid, nullptr, everyone, &sidSize));
    std::vector<BYTE> ace(sizeof(ACE_HEADER) + sizeof(ACCESS_MASK) + sidSize);
    ACE_HEADER header = {ACCESS_ALLOWED_CALLBACK_ACE_TYPE, 0, static_cast<WORD>(ace.size())};
    const ACCESS_MASK mask = FILE_GENERIC_READ;
    std::memcpy(ace.data(), &header, sizeof header);
    std::memcpy(ace.data() + sizeof header, &mask, sizeof mask);
    std::memcpy(ace.data() + sizeof header + sizeof mask, everyone, sidSize);
    EXPECT_TRUE(AddAce(reinterpret_cast<PACL>(acl.data()), ACL_REVISION, MAXDWORD, ace.data(),
                       static_cast<DWORD>(ace.size())));
    return acl;
}

std::wstring ToSddl(const VSecurityDescriptor& descriptor, SECURITY_INFORMATION parts) {
    wchar_t* text = nullptr;
    EXPECT_TRUE(ConvertSecurityDescriptorToStringSecurityDescriptorW(descriptor.Get(), SDDL_REVISION_1, parts, &text,
                                                                      nullptr));
    const LocalMemory owner(text);
    return text ? text : L"";
}

TEST(SecurityDescriptorTest, TextFormRoundTripsInListOrder) {
    const wchar_t* domainSid = L"S-1-5-21-1004336348-1177238915-682003330-512";
    const VUnicodeString domainEntry = VUnicodeString(L"allow,0x80000000,") + domainSid;
    const struct {
        Texts entries;
        const wchar_t* sddl;  // null: not compared
        Texts canonical;
    } cases[] = {
        {Texts{L"allow,0x001f01ff,S-1-5-32-544", L"deny,0x00000001,S-1-1-0", domainEntry},
         L"D:(A;;FA;;;BA)(D;;CC;;;WD)(A;;GR;;;S-1-5-21-1004336348-1177238915-682003330-512)",
         Texts{L"allow,0x001f01ff,S-1-5-32-544", L"deny,0x00000001,S-1-1-0", domainEntry}},
        {Texts{L"ALLOW,0X1F01FF,BA", L" Deny , 0xa ,\tS-1-1-0 "}, nullptr,
         Texts{L"allow,0x001f01ff,S-1-5-32-544", L"deny,0x0000000a,S-1-1-0"}},
        {Texts(), L"D:", Texts()},  // denies everyone; not a missing list
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.canonical.GetCount() ? c.canonical[0].c_str() : L"no entries");
        VSecurityDescriptor descriptor;
        ASSERT_TRUE(descriptor.FromText(c.entries));
        EXPECT_EQ(static_cast<SECURITY_INFORMATION>(DACL_SECURITY_INFORMATION), descriptor.GetPresentParts());
        if (c.sddl) {
            EXPECT_EQ(c.sddl, ToSddl(descriptor, DACL_SECURITY_INFORMATION));
        }
        Texts back{L"stale"};
        ASSERT_TRUE(descriptor.ToText(back));
        EXPECT_EQ(c.canonical, back);
    }
}

TEST(SecurityDescriptorTest, BadEntriesAreRejectedAndChangeNothing) {
    VSecurityDescriptor descriptor;
    ASSERT_TRUE(descriptor.FromText(Texts{L"allow,0x1,S-1-1-0"}));
    const std::vector<BYTE> before(static_cast<BYTE*>(descriptor.Get()),
                                   static_cast<BYTE*>(descriptor.Get()) + descriptor.GetLength());
    const struct {
        const wchar_t* text;
        DWORD error;
    } cases[] = {
        {L"permit,0x1,S-1-1-0", ERROR_INVALID_DATA}, {L"allowed,0x1,S-1-1-0", ERROR_INVALID_DATA},
        {L"allow,1,S-1-1-0", ERROR_INVALID_DATA},    {L"allow,0x,S-1-1-0", ERROR_INVALID_DATA},
        {L"allow,0xg,S-1-1-0", ERROR_INVALID_DATA},  {L"allow,-0x1,S-1-1-0", ERROR_INVALID_DATA},
        {L"allow,0x1", ERROR_INVALID_DATA},          {L"allow,0x1,S-1-x", ERROR_INVALID_SID},
        {L"allow,0x1,", ERROR_INVALID_SID},          {L"allow,0x1,Everyone", ERROR_INVALID_SID},
        {L"allow,0x123456789,S-1-1-0", ERROR_INVALID_DATA},
        {L"allow,0x1,S-1-1-0,extra", ERROR_INVALID_SID},
    };
    for (const auto& bad : cases) {
        EXPECT_FALSE(descriptor.FromText(Texts{L"allow,0x2,S-1-1-0", bad.text})) << bad.text;
        EXPECT_EQ(bad.error, GetLastError()) << bad.text;
    }
    EXPECT_EQ(before, std::vector<BYTE>(static_cast<BYTE*>(descriptor.Get()),
                                        static_cast<BYTE*>(descriptor.Get()) + descriptor.GetLength()));
}

TEST(SecurityDescriptorTest, WhatTheTextCannotHoldIsRefusedNotDropped) {
    const struct {
        VSecurityDescriptor descriptor;
        const char* why;
    } cases[] = {
        {FromSddl(L"O:BA"), "no access list"},
        {FromSddl(L"D:(A;OICI;FA;;;BA)"), "inheritance flags"},
        {FromSddl(L"D:(A;IO;FA;;;BA)"), "inherit-only"},
        {WithDacl(nullptr), "a null access list, which allows everyone"},
        {WithDacl(CallbackEntryList().data()), "a callback entry"},
        {VSecurityDescriptor(), "no descriptor"},
    };
    Texts entries;
    for (const auto& refused : cases) {
        entries = Texts{L"untouched"};
        EXPECT_FALSE(refused.descriptor.ToText(entries)) << refused.why;
        EXPECT_EQ(static_cast<DWORD>(ERROR_NOT_SUPPORTED), GetLastError()) << refused.why;
        EXPECT_EQ(Texts{L"untouched"}, entries) << refused.why;
    }
    ASSERT_TRUE(FromSddl(L"D:(A;ID;FA;;;BA)").ToText(entries));
    EXPECT_EQ(Texts{L"allow,0x001f01ff,S-1-5-32-544"}, entries);
    ASSERT_TRUE(FromSddl(L"O:BAD:(D;;FA;;;WD)").ToText(entries));
    EXPECT_EQ(Texts{L"deny,0x001f01ff,S-1-1-0"}, entries);
}

TEST(SecurityDescriptorTest, BytesFromOutsideAreCheckedAgainstTheirLength) {
    const VSecurityDescriptor source = FromSddl(L"O:BAG:SYD:(A;;FA;;;BA)(D;;CC;;;WD)");
    EXPECT_EQ(static_cast<SECURITY_INFORMATION>(OWNER_SECURITY_INFORMATION | GROUP_SECURITY_INFORMATION |
                                                DACL_SECURITY_INFORMATION),
              source.GetPresentParts());
    const BYTE* bytes = static_cast<const BYTE*>(source.Get());
    std::vector<BYTE> copy(bytes, bytes + source.GetLength());

    VSecurityDescriptor descriptor;
    ASSERT_TRUE(descriptor.AssignBytes(copy.data(), copy.size()));
    EXPECT_EQ(ToSddl(source, OWNER_SECURITY_INFORMATION | DACL_SECURITY_INFORMATION),
              ToSddl(descriptor, OWNER_SECURITY_INFORMATION | DACL_SECURITY_INFORMATION));

    for (size_t cut = 0; cut < copy.size(); cut += 3) {
        EXPECT_FALSE(descriptor.AssignBytes(copy.data(), cut)) << "cut to " << cut;
        EXPECT_EQ(static_cast<DWORD>(ERROR_INVALID_SECURITY_DESCR), GetLastError());
    }
    SECURITY_DESCRIPTOR_RELATIVE header;
    std::memcpy(&header, copy.data(), sizeof header);
    std::vector<BYTE> lying = copy;
    lying[header.Dacl + 4] = 40;  // AceCount
    EXPECT_FALSE(descriptor.AssignBytes(lying.data(), lying.size()));
    lying = copy;
    const DWORD distant = static_cast<DWORD>(copy.size() + 100);
    std::memcpy(lying.data() + offsetof(SECURITY_DESCRIPTOR_RELATIVE, Owner), &distant, sizeof distant);
    EXPECT_FALSE(descriptor.AssignBytes(lying.data(), lying.size()));
    EXPECT_FALSE(descriptor.AssignBytes("not a descriptor at all", 23));
    EXPECT_FALSE(descriptor.AssignBytes(nullptr, 0));

    EXPECT_EQ(ToSddl(source, DACL_SECURITY_INFORMATION), ToSddl(descriptor, DACL_SECURITY_INFORMATION));
}

TEST(SecurityDescriptorTest, PerUserAccessGrantsTheTokenUserEverything) {
    VUnicodeString sid;
    ASSERT_TRUE(GetCurrentUserSidString(sid));

    VSecurityDescriptor descriptor;
    ASSERT_TRUE(descriptor.AssignCurrentUserAccess());
    EXPECT_EQ(static_cast<SECURITY_INFORMATION>(DACL_SECURITY_INFORMATION), descriptor.GetPresentParts());
    EXPECT_EQ(L"D:(A;OICI;GA;;;" + std::wstring(sid.c_str()) + L")", ToSddl(descriptor, DACL_SECURITY_INFORMATION));
}

}  // namespace
