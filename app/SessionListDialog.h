// SessionListDialog: lists the sessions of one client program; "Restore"
// brings the selected ones forward and keeps the dialog open, "Close" ends it.
#pragma once

#include "VContainers.h"
#include "VDialog.h"
#include "VString.h"
#include "WindowData.h"

class SessionListDialog : public VDialog {
public:
    // appName is the client's name ("Termwright", "Filewright"); windows is
    // read, not owned, and must outlive the dialog.
    SessionListDialog(const wchar_t* appName, const VArray<WindowData>& windows);

protected:
    bool OnInitDialog() override;
    // Selects each chosen session, every one tried even after a failure, and
    // tells the user once when any window has gone. Does not end the dialog.
    void OnOK() override;

private:
    VUnicodeString appName_;
    const VArray<WindowData>& windows_;
};
