// The interfaces through which a firewall definition asks for credentials:
// IParentable names the window its dialogs belong to, and IFirewallUI is its
// caller's side (Confkit's prompts and the host program's session database).
#pragma once

#include <windows.h>

#include "IString.h"
#include "VReportMessageParams.h"
#include "VUnknown.h"

class FirewallConfig;

class IParentable {
public:
    // The window that dialogs shown for this object belong to; null for none.
    virtual HWND GetParentWindow() const = 0;

protected:
    ~IParentable() = default;
};

class IFirewallUI : public IUnknown {
public:
    // Ask the user for the firewall's user name or password. True when the
    // user confirmed: text then holds what was entered (sensitive) and save
    // whether it is to be kept. False when the user cancelled: text is left
    // as it was. parent may be null. UI thread.
    virtual bool PromptUsername(IString& text, bool& save, IParentable* parent) = 0;
    virtual bool PromptPassword(IString& text, bool& save, IParentable* parent) = 0;
    // Writes firewall's stored values back where the program keeps its
    // firewall definitions. False, with report telling why, when it cannot.
    virtual bool SaveFirewall(FirewallConfig& firewall, VReportMessageParams& report) = 0;

protected:
    virtual ~IFirewallUI() = default;
};
