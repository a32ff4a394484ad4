#include "AboutDialog.h"

#include "TraywellResources.h"
#include "TraywellVersion.h"
#include "VersionInfo.h"

AboutDialog::AboutDialog() : VDialog(IDD_ABOUT) {}

bool AboutDialog::OnInitDialog() {
    VersionNumbers numbers;
    ReadModuleVersion(GetModuleHandleW(nullptr), numbers);
    VUnicodeString line;
    line.FormatPositional(L"Version %1   -   %2", FormatVersionText(numbers).c_str(),
                          TRAYWELL_RELEASE_LABEL);
    SetItemText(IDC_ABOUT_VERSION, line.c_str());
    return true;
}
