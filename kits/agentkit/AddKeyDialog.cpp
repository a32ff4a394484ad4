#include "AddKeyDialog.h"

#include <string>

AddKeyDialog::AddKeyDialog(const VUnicodeString& file, bool needsPassphrase, const VUnicodeString& prompt,
                           HWND parent)
    : VDialog(template_, parent), template_(MakeTemplate()), file_(file), prompt_(prompt),
      needsPassphrase_(needsPassphrase) {}

VDialogTemplate AddKeyDialog::MakeTemplate() {
    VDialogTemplate dialog(L"Add Key", 260, 112);
    dialog.AddControl(L"Static", L"", FileTextId, 7, 7, 246, 18, SS_LEFT | SS_PATHELLIPSIS);
    dialog.AddControl(L"Static", L"", PromptId, 7, 27, 246, 10, SS_LEFT);
    dialog.AddControl(L"Static", L"&Pass phrase:", 0, 7, 41, 70, 10, SS_LEFT);
    dialog.AddControl(L"Edit", L"", PassphraseId, 80, 39, 173, 13, ES_PASSWORD | ES_AUTOHSCROLL | WS_BORDER | WS_TABSTOP);
    dialog.AddControl(L"Static", L"&Lifetime (minutes, 0 for none):", 0, 7, 59, 120, 10, SS_LEFT);
    dialog.AddControl(L"Edit", L"0", LifetimeId, 130, 57, 40, 13, ES_NUMBER | WS_BORDER | WS_TABSTOP);
    dialog.AddControl(L"Button", L"&Ask me before each use of the key", ConfirmId, 7, 75, 246, 10,
                      BS_AUTOCHECKBOX | WS_TABSTOP);
    dialog.AddControl(L"Button", L"OK", IDOK, 149, 93, 50, 14, BS_DEFPUSHBUTTON | WS_TABSTOP);
    dialog.AddControl(L"Button", L"Cancel", IDCANCEL, 203, 93, 50, 14, BS_PUSHBUTTON | WS_TABSTOP);
    return dialog;
}

void AddKeyDialog::SetOptions(uint32_t lifetimeMinutes, bool confirm) {
    lifetimeMinutes_ = lifetimeMinutes;
    confirm_ = confirm;
}

bool AddKeyDialog::OnInitDialog() {
    SetItemText(FileTextId, file_.c_str());
    SetItemText(PromptId, needsPassphrase_ ? (prompt_.IsEmpty() ? L"The key file is protected with a pass phrase."
                                                                 : prompt_.c_str())
                                           : L"The key file is not protected with a pass phrase.");
    EnableWindow(GetItem(PassphraseId), needsPassphrase_);
    SetItemText(LifetimeId, std::to_wstring(lifetimeMinutes_).c_str());
    CheckDlgButton(GetHwnd(), ConfirmId, confirm_ ? BST_CHECKED : BST_UNCHECKED);
    SetFocus(GetItem(needsPassphrase_ ? PassphraseId : IDOK));
    return false;
}

void AddKeyDialog::OnOK() {
    // The pass phrase goes straight into a sensitive string, and the field is emptied.
    const HWND field = GetItem(PassphraseId);
    const int length = GetWindowTextLengthW(field);
    wchar_t* buffer = passphrase_.GetBuffer(static_cast<size_t>(length));
    GetWindowTextW(field, buffer, length + 1);
    passphrase_.ReleaseBuffer(static_cast<size_t>(length));
    SetWindowTextW(field, L"");
    BOOL read = FALSE;
    lifetimeMinutes_ = GetDlgItemInt(GetHwnd(), LifetimeId, &read, FALSE);
    if (!read) lifetimeMinutes_ = 0;
    confirm_ = IsDlgButtonChecked(GetHwnd(), ConfirmId) == BST_CHECKED;
    EndDialog(IDOK);
}
