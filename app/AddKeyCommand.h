// AddKeyCommand: "traywell.exe /AddKey <key file> [/AddKey <key file>...]
// [/Lifetime <minutes>] [/Confirm]" adds key files to the SSH agent through
// its pipe, so that a login script can load keys: a second start hands them
// to the copy that runs and ends; a first start adds them once its own agent
// serves. The options apply to every key. UI thread.
#pragma once

#include "AddKeyDialog.h"
#include "VContainers.h"
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
    bool IsRequested() const { return !files_.IsEmpty(); }

    // Adds the keys, in the order given, to the agent of the session's pipe,
    // asking for the pass phrase of a sealed file (its window is *openDialog
    // meanwhile, when openDialog is not null). A key that cannot be added is
    // told in a message box (none when the user cancels its pass phrase),
    // and the next is tried. Whether every key was added.
    bool Run(VDialog** openDialog) const;

private:
    VArray<VUnicodeString> files_;
    AgentKeyOptions options_;
};
