// FirewallConfig: one named firewall (proxy) definition, kept in its own key
// below "Firewalls" (HKEY_CURRENT_USER\SOFTWARE\Quillon\Firewalls\<name>, or
// <configuration folder>\Firewalls\<name>.ini), which sessions name in their
// "Firewall Name". Its values are those of FIREWALL_OPTIONS below.
//
// When its type needs credentials and none is at hand, the firewall asks its
// caller for them (IFirewallUI); an answer the user did not ask to save is
// kept in this object's memory only, in a sensitive string.
//
// An older "Firewall Password" (protected with the user's logon, or the
// older fixed-key form) moves to "Firewall Password V2" when the definition
// is loaded: it is opened, sealed afresh (with the configuration pass phrase
// when one is in use), written, and the older value blanked, all at once.
//
// Used by one thread at a time (the UI thread when it may ask); reference-
// counted atomically.
#pragma once

#include <memory>

#include "FirewallTypeTable.h"
#include "IClonable.h"
#include "IFirewallUI.h"
#include "ProfileValueList.h"
#include "SessionValueKinds.h"

// clang-format off
#define FIREWALL_OPTIONS(X) \
    X(FirewallType, Text, L"Firewall Type", L"None", Plain) /* a name of FirewallTypes */ \
    X(FirewallAddress, Text, L"Firewall Address", L"", Plain) \
    X(FirewallPort, Number, L"Firewall Port", 1080, Plain) \
    X(ProxyPrompt, Text, L"Proxy Prompt", L"", Plain) \
    X(ProxyCommand, Text, L"Proxy Command", L"", Plain) \
    X(FirewallUser, Text, L"Firewall User", L"", Plain) \
    X(FirewallPassword, Secret, L"Firewall Password V2", {}, Generations(L"Firewall Password", nullptr))
// clang-format on

class FirewallConfig final : public VUnknown<IClonable>, public ProfileValueList {
public:
    static constexpr wchar_t FirewallsKeyName[] = L"Firewalls";

    // The firewall named name, read from its key (null: the defaults). Its
    // password is sealed and opened through provider (null: the user's logon).
    FirewallConfig(const VUnicodeString& name, VProfileKey* key,
                   IPassphraseProvider* provider = nullptr);
    // A copy shares the strings, the user interface and the parent.
    FirewallConfig(const FirewallConfig&) = default;
    FirewallConfig& operator=(const FirewallConfig&) = delete;

    IClonable* Clone() const override { return new FirewallConfig(*this); }

    // Reads every value again from key (null: the defaults), migrating an
    // older password as above.
    void Load(VProfileKey* key);

    // The key of the firewall named name below root's "Firewalls" key;
    // create makes it. Not open (IsOpen) when it cannot be.
    static std::unique_ptr<VProfileKey> OpenKey(VProfileKey& root, const VUnicodeString& name,
                                                bool create);

    // The type that "Firewall Type" names (0, "None", for an unknown name).
    uint32_t GetType() const { return FindFirewallType(FirewallType.Get()); }
    bool NeedsCredentials() const { return GetFirewallTypeRow(GetType()).needsCredentials != 0; }

    // Who is asked for credentials (null: nobody; one reference held), and
    // the window its dialogs belong to (null: none; not owned, must outlive
    // the asking).
    void SetUserInterface(IFirewallUI* ui) { ui_ = ui; }
    void SetParent(IParentable* parent) { parent_ = parent; }

    // The user name for a connection. When neither "Firewall User" nor the
    // remembered name holds one and the type needs credentials, the user is
    // asked: a name the user asked to save becomes "Firewall User" and the
    // definition is saved through the user interface (SaveFirewall); one
    // that cannot be saved, or that the user did not ask to save, is
    // remembered in memory. Otherwise the remembered name, else the stored
    // one. True with username set, also when a save failed (report then
    // tells why); false, with username and report untouched, when the user
    // cancelled or nobody can be asked.
    bool GetUsername(VUnicodeString& username, VReportMessageParams& report);
    // The same for the password and "Firewall Password V2"; password becomes
    // sensitive. A stored password that cannot be opened (sealed under
    // another pass phrase) counts as none.
    bool GetPassword(VUnicodeString& password, VReportMessageParams& report);

    bool Equals(const FirewallConfig& other) const;

    size_t GetMemberCount() const override;
    VProfileData& GetMember(size_t index) override;
    using ProfileValueList::GetMember;

    FIREWALL_OPTIONS(PROFILE_TABLE_MEMBER)

private:
    enum class Credential { Username, Password };

    // GetUsername and GetPassword.
    bool GetCredential(Credential which, VUnicodeString& value, VReportMessageParams& report);
    // Makes entered the stored credential and saves the definition; false,
    // with the stored value as it was, when that fails.
    bool StoreCredential(Credential which, const VUnicodeString& entered,
                         VReportMessageParams& report);

    // Entered at a prompt and not saved; sensitive.
    VUnicodeString username_{Str::Sensitive};
    VUnicodeString password_{Str::Sensitive};
    VRefPtr<IFirewallUI> ui_;
    IParentable* parent_ = nullptr;
};
