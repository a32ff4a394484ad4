#include "FirewallConfig.h"

#include <iterator>

#include "VStringI.h"

namespace {

using Owner = FirewallConfig;

constexpr VProfileData& (*Members[])(Owner&) = {FIREWALL_OPTIONS(PROFILE_TABLE_ROW)};

const FirewallConfig& Defaults() {
    static const FirewallConfig defaults(VUnicodeString(), nullptr);
    return defaults;
}

}  // namespace

FirewallConfig::FirewallConfig(const VUnicodeString& name, VProfileKey* key,
                               IPassphraseProvider* provider)
    : ProfileValueList(name) {
    FirewallPassword.SetPassphraseProvider(provider);
    // The defaults object holds the defaults already.
    if (key) Load(key);
}

void FirewallConfig::Load(VProfileKey* key) {
    ProfileLoadKey from(key);
    const FirewallConfig& defaults = Defaults();
    FIREWALL_OPTIONS(PROFILE_TABLE_LOAD)
    // An older password moves now, so that no other program reads it again.
    if (FirewallPassword.IsModified() && FirewallPassword.Save(from.Get(), false))
        from.Get().Flush();
}

std::unique_ptr<VProfileKey> FirewallConfig::OpenKey(VProfileKey& root, const VUnicodeString& name,
                                                     bool create) {
    return ProfileLoadKey::OpenBelow(root, FirewallsKeyName, name, create);
}

bool FirewallConfig::GetUsername(VUnicodeString& username, VReportMessageParams& report) {
    return GetCredential(Credential::Username, username, report);
}

bool FirewallConfig::GetPassword(VUnicodeString& password, VReportMessageParams& report) {
    password.MakeSensitive();
    return GetCredential(Credential::Password, password, report);
}

bool FirewallConfig::GetCredential(Credential which, VUnicodeString& value,
                                   VReportMessageParams& report) {
    const bool isPassword = which == Credential::Password;
    VUnicodeString stored(Str::Sensitive);
    VReportMessageParams unreadable;
    if (isPassword)
        FirewallPassword.GetPlainText(stored, unreadable);
    else
        stored = FirewallUser.Get();
    VUnicodeString& remembered = isPassword ? password_ : username_;
    if (!stored.IsEmpty() || !remembered.IsEmpty() || !NeedsCredentials()) {
        value = remembered.IsEmpty() ? stored : remembered;
        return true;
    }
    if (!ui_) return false;
    VUnicodeStringI entered(Str::Sensitive);
    bool save = false;
    const bool confirmed = isPassword ? ui_->PromptPassword(entered, save, parent_)
                                      : ui_->PromptUsername(entered, save, parent_);
    if (!confirmed) return false;
    value = entered;
    if (!save || !StoreCredential(which, entered, report)) remembered = entered;
    return true;
}

bool FirewallConfig::StoreCredential(Credential which, const VUnicodeString& entered,
                                     VReportMessageParams& report) {
    if (which == Credential::Password) {
        if (!FirewallPassword.SetPlainText(entered, report)) return false;
    } else {
        FirewallUser.Set(entered);
    }
    if (ui_->SaveFirewall(*this, report)) return true;
    FirewallUser.Revert();
    FirewallPassword.Revert();
    return false;
}

bool FirewallConfig::Equals(const FirewallConfig& other) const {
    return true FIREWALL_OPTIONS(PROFILE_TABLE_SAME);
}

size_t FirewallConfig::GetMemberCount() const { return std::size(Members); }

VProfileData& FirewallConfig::GetMember(size_t index) {
    if (index >= std::size(Members)) throw VContainerOutOfRange();
    return Members[index](*this);
}
