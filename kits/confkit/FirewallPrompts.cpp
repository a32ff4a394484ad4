#include "FirewallPrompts.h"

#include "ConfigMessages.h"
#include "FirewallCredentialDialog.h"
#include "ISessionDatabase.h"

namespace {

bool Launch(FirewallCredentialDialog::Kind kind, IString& text, bool& save, IParentable* parent) {
    FirewallCredentialDialog dialog(kind, parent ? parent->GetParentWindow() : nullptr);
    if (dialog.DoModal() != IDOK) return false;
    const VUnicodeString& typed = dialog.GetText();
    text.SetWide(typed.c_str(), typed.GetLength(), Str::Sensitive);
    save = dialog.GetSave();
    return true;
}

}  // namespace

bool LaunchFirewallUsernameDialog(IString& text, bool& save, IParentable* parent) {
    return Launch(FirewallCredentialDialog::Kind::Username, text, save, parent);
}

bool LaunchFirewallPasswordDialog(IString& text, bool& save, IParentable* parent) {
    return Launch(FirewallCredentialDialog::Kind::Password, text, save, parent);
}

bool VFirewallUI::SaveFirewall(FirewallConfig& firewall, VReportMessageParams& report) {
    ISessionDatabase* database = GetSessionDatabase();
    if (!database) {
        report.Set(CONFIG_SESSION_DATABASE_MISSING, firewall.GetName());
        return false;
    }
    return database->SaveFirewall(firewall, report);
}
