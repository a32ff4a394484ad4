// Confkit's credential prompts for a firewall, and VFirewallUI, the
// IFirewallUI that shows them and saves what the user keeps through the
// host program's session database (ISessionDatabase.h).
#pragma once

#include "IFirewallUI.h"

// Modal dialogs with a text field (masked for the password), a "Save" check
// box, OK and Cancel, owned by parent's window (parent may be null). On OK,
// true: text holds what was typed (sensitive) and save the check box. On
// Cancel, false: text and save are left as they were. What was typed is
// wiped from the dialog's memory before it closes. UI thread.
bool LaunchFirewallUsernameDialog(IString& text, bool& save, IParentable* parent);
bool LaunchFirewallPasswordDialog(IString& text, bool& save, IParentable* parent);

class VFirewallUI final : public VUnknown<IFirewallUI> {
public:
    // Allocate with new.
    VFirewallUI() = default;

    bool PromptUsername(IString& text, bool& save, IParentable* parent) override {
        return LaunchFirewallUsernameDialog(text, save, parent);
    }
    bool PromptPassword(IString& text, bool& save, IParentable* parent) override {
        return LaunchFirewallPasswordDialog(text, save, parent);
    }
    // Through GetSessionDatabase; without a database, false with
    // CONFIG_SESSION_DATABASE_MISSING and the firewall's name.
    bool SaveFirewall(FirewallConfig& firewall, VReportMessageParams& report) override;

private:
    ~VFirewallUI() override = default;
};
