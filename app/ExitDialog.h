// ExitDialog: asks the user to confirm Exit, which closes every client window
// the menu lists. OK confirms; Cancel keeps Traywell running.
#pragma once

#include "VDialog.h"

class ExitDialog : public VDialog {
public:
    ExitDialog();

protected:
    bool OnInitDialog() override;
};
