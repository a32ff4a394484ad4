// AboutDialog: the program's name, its version as the version resource holds
// it with the release label, and the copyright line.
#pragma once

#include "VDialog.h"

class AboutDialog : public VDialog {
public:
    AboutDialog();

protected:
    bool OnInitDialog() override;
};
