#include "ExitDialog.h"

#include "TraywellMessages.h"
#include "TraywellResources.h"
#include "VMessageBox.h"

ExitDialog::ExitDialog() : VDialog(IDD_EXIT) {}

bool ExitDialog::OnInitDialog() {
    SetCaption(VMessageBoxTitle);
    VReportMessageParams text(TRAY_EXIT_CLOSES_WINDOWS);
    text.AddArgument(VMessageBoxTitle);
    SetItemText(IDC_EXIT_TEXT, text.GetText());
    return true;
}
