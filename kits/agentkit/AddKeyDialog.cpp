#include "AddKeyDialog.h"

#include <string>

AddKeyDialog::AddKeyDialog(const VUnicodeString& file, bool needsPassphrase,
                           const VUnicodeString& prompt, HWND parent)
    : VDialog(template_, parent),
      template_(MakeTemplate()),
      file_(file),
      prompt_(prompt),
      needsPassphrase_(needsPassphrase) {}

VDialogTemplate AddKeyDialog::MakeTemplate() {
    VDialogTemplate dialog(L"Add Key", 260, 112);
    dialog.AddControl(L"Static", L"", FileTextId, 7, 7, 246, 18, SS_LEFT | SS_PATHELLIPSIS);
    dialog.AddControl(L"Static", L"", PromptId, 7, 27, 246, 10, SS_LEFT);
    dialog.AddControl(L"Static", L"&Pass phrase:", 0, 7, 41, 70, 10, SS_LEFT);
    dialog.AddControl(L"Edit", L"", PassphraseId, 80, 39, 173, 13,
                      ES_PASSWORD | ES_AUTOHSCROLL | WS_BORDER | WS_TABSTOP);
    dialog.AddControl(L"Static", L"&Lifetime (minutes, 0 for none):", 0, 7, 59, 120, 10, SS_LEFT);
    dialog.AddControl(L"Edit", L"0", LifetimeId, 130, 57, 40, 13,
                      ES_NUMBER | WS_BORDER | WS_TABSTOP);
    dialog.AddControl(L"Button", L"&Ask me before each use of the key", ConfirmId, 7, 75, 246, 10,
                      BS_AUTOCHECKBOX | WS_TABSTOP);
    dialog.AddControl(L"Button", L"OK", IDOK, 149, 93, 50, 14, BS_DEFPUSHBUTTON | WS_TABSTOP);
    dialog.AddControl(L"Button", L"Cancel", IDCANCEL, 203, 93, 50, 14, BS_PUSHBUTTON | WS_TABSTOP);
    return dialog;
}

bool AddKeyDialog::OnInitDialog() {
    SetItemText(FileTextId, file_.c_str());
    SetItemText(PromptId, needsPassphrase_ ? (prompt_.IsEmpty()
                                                  ? L"The key file is protected with a pass phrase."
                                                  : prompt_.c_str())
                                           : L"The key file is not protected with a pass phrase.");
    EnableWindow(GetItem(PassphraseId), needsPassphrase_);
    SetItemText(LifetimeId, std::to_wstring(options_.lifetimeMinutes).c_str());
    CheckDlgButton(GetHwnd(), ConfirmId, options_.confirm ? BST_CHECKED : BST_UNCHECKED);
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
    options_.lifetimeMinutes = GetDlgItemInt(GetHwnd(), LifetimeId, &read, FALSE);
    if (!read) options_.lifetimeMinutes = 0;
    options_.confirm = IsDlgButtonChecked(GetHwnd(), ConfirmId) == BST_CHECKED;
    EndDialog(IDOK);
}

bool LoadKeyAsking(const VUnicodeString& path, bool askOptions, HWND parent,
                   AgentKeyOptions& options, LoadedKey& key, VReportMessageParams& report,
                   VDialog** openDialog) {
    AgentBytes content;
    if (!ReadKeyFileBytes(path.c_str(), content, report)) return false;
    const bool sealed = KeyFileNeedsPassphrase(content);
    VUnicodeString prompt;
    for (int tries = 1;; ++tries) {
        VUnicodeString passphrase(Str::Sensitive);
        if (sealed || askOptions) {
            AddKeyDialog dialog(path, sealed, prompt, parent);
            dialog.SetOptions(options);
            if (openDialog) *openDialog = &dialog;
            const INT_PTR answer = dialog.DoModal();
            if (openDialog) *openDialog = nullptr;
            if (answer != IDOK) {
                report.Clear();
                return false;
            }
            options = dialog.GetOptions();
            passphrase = dialog.GetPassphrase();
        }
        KeyFileError error;
        if (LoadKeyFile(path.c_str(), passphrase, key, report, &error)) return true;
        // A wrong or missing pass phrase may be typed again; anything else ends here.
        if ((error != KeyFileError::WrongPassphrase && error != KeyFileError::NeedsPassphrase) ||
            tries == MaximumPassphraseTries)
            return false;
        prompt = report.GetTextAsString();
    }
}
