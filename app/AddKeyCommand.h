// AddKeyCommand: "traywell.exe /AddKey <key file> [/Lifetime <minutes>]
// [/Confirm]" adds a key file to the SSH agent through its pipe, so that a
// login script can load keys: a second start hands the key to the copy that
// runs and ends; a first start adds it once its own agent serves. UI thread.
#pragma once

#include "AddKeyDialog.h"
#include "VReportMessageParams.h"
#include "VString.h"

class VDialog;

class AddKeyCommand {
public:
    // Reads the options from the whole command line; "/Lifetime" and
    // "/Confirm" count only beside "/AddKey". False with report
    // (TRAY_ADD_KEY_USAGE) when "/AddKey" or "/Lifetime" lacks its value or
    // the lifetime is not a whole number of minutes; nothing is requested then.
    bool Read(const VUnicodeString& commandLine, VReportMessageParams& report);
    bool IsRequested() const { return !file_.IsEmpty(); }

    // Adds the key to the agent of the session's pipe, asking for the pass
    // phrase of a sealed file (its window is *openDialog meanwhile, when
    // openDialog is not null). On failure a message box tells the user why
    // (none when the user cancels the pass phrase). Whether the key was added.
    bool Run(VDialog** openDialog) const;

private:
    VUnicodeString file_;
    AgentKeyOptions options_;
};
