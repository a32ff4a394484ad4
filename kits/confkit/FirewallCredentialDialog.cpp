#include "FirewallCredentialDialog.h"

#include <string>

namespace {

// Longer user names and passwords than any firewall takes.
constexpr WPARAM TextLimit = 1024;

}  // namespace

FirewallCredentialDialog::FirewallCredentialDialog(Kind kind, HWND parent)
    : VDialog(template_, parent), template_(MakeTemplate(kind)) {}

VDialogTemplate FirewallCredentialDialog::MakeTemplate(Kind kind) {
    const bool password = kind == Kind::Password;
    VDialogTemplate dialog(password ? L"Firewall Password" : L"Firewall User Name", 220, 80);
    dialog.AddControl(L"Static",
                      password ? L"Enter the password for the firewall:"
                               : L"Enter the user name for the firewall:",
                      PromptId, 7, 7, 206, 10, SS_LEFT);
    dialog.AddControl(L"Edit", L"", TextId, 7, 20, 206, 12,
                      ES_AUTOHSCROLL | WS_BORDER | WS_TABSTOP | (password ? ES_PASSWORD : 0));
    dialog.AddControl(L"Button", L"Save", SaveId, 7, 38, 100, 10, BS_AUTOCHECKBOX | WS_TABSTOP);
    dialog.AddControl(L"Button", L"OK", IDOK, 109, 59, 50, 14, BS_DEFPUSHBUTTON | WS_TABSTOP);
    dialog.AddControl(L"Button", L"Cancel", IDCANCEL, 163, 59, 50, 14, BS_PUSHBUTTON | WS_TABSTOP);
    return dialog;
}

bool FirewallCredentialDialog::OnInitDialog() {
    SendMessageW(GetItem(TextId), EM_LIMITTEXT, TextLimit, 0);
    SetFocus(GetItem(TextId));
    // Asked for while connecting, the prompt comes to the front.
    SetForegroundWindow(GetHwnd());
    return false;
}

void FirewallCredentialDialog::OnOK() {
    const HWND field = GetItem(TextId);
    const int length = GetWindowTextLengthW(field);
    wchar_t* buffer = text_.GetBuffer(static_cast<size_t>(length));
    const int copied = GetWindowTextW(field, buffer, length + 1);
    text_.ReleaseBuffer(static_cast<size_t>(copied));
    save_ = IsDlgButtonChecked(GetHwnd(), SaveId) == BST_CHECKED;
    WipeField();
    EndDialog(IDOK);
}

void FirewallCredentialDialog::OnCancel() {
    WipeField();
    EndDialog(IDCANCEL);
}

void FirewallCredentialDialog::WipeField() {
    const HWND field = GetItem(TextId);
    const int length = GetWindowTextLengthW(field);
    // The same length fits the field's buffer, which is overwritten in place.
    SetWindowTextW(field, std::wstring(static_cast<size_t>(length), L' ').c_str());
    SetWindowTextW(field, L"");
}
