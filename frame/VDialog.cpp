#include "VDialog.h"

VDialog::VDialog(UINT templateId, HWND parent, HINSTANCE module)
    : templateId_(templateId),
      module_(module ? module : GetModuleHandleW(nullptr)),
      parent_(parent) {}

VDialog::VDialog(const VDialogTemplate& dialogTemplate, HWND parent)
    : module_(GetModuleHandleW(nullptr)), memoryTemplate_(&dialogTemplate), parent_(parent) {}

INT_PTR VDialog::DoModal() {
    const LPARAM self = reinterpret_cast<LPARAM>(this);
    const INT_PTR result = memoryTemplate_
                               ? DialogBoxIndirectParamW(module_, memoryTemplate_->Get(), parent_,
                                                         DialogProcedure, self)
                               : DialogBoxParamW(module_, MAKEINTRESOURCEW(templateId_), parent_,
                                                 DialogProcedure, self);
    window_ = nullptr;
    return result;
}

void VDialog::EndDialog(INT_PTR result) {
    if (window_) ::EndDialog(window_, result);
}

bool VDialog::OnInitDialog() { return true; }

void VDialog::OnOK() { EndDialog(IDOK); }

void VDialog::OnCancel() { EndDialog(IDCANCEL); }

bool VDialog::OnCommand(WORD id, WORD, HWND) {
    switch (id) {
        case IDOK:
            OnOK();
            return true;
        case IDCANCEL:
            OnCancel();
            return true;
        default:
            return false;
    }
}

bool VDialog::OnMessage(UINT, WPARAM, LPARAM, LRESULT&) { return false; }

INT_PTR CALLBACK VDialog::DialogProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    VDialog* dialog;
    if (message == WM_INITDIALOG) {
        dialog = reinterpret_cast<VDialog*>(lParam);
        SetWindowLongPtrW(window, DWLP_USER, lParam);
        dialog->window_ = window;
    } else {
        dialog = reinterpret_cast<VDialog*>(GetWindowLongPtrW(window, DWLP_USER));
    }
    // Messages that come before WM_INITDIALOG (WM_SETFONT) find no dialog yet.
    return dialog ? dialog->Dispatch(message, wParam, lParam) : FALSE;
}

INT_PTR VDialog::Dispatch(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_INITDIALOG:
            return OnInitDialog() ? TRUE : FALSE;
        case WM_COMMAND:
            return OnCommand(LOWORD(wParam), HIWORD(wParam), reinterpret_cast<HWND>(lParam))
                       ? TRUE
                       : FALSE;
        default: {
            LRESULT result = 0;
            if (!OnMessage(message, wParam, lParam, result)) return FALSE;
            SetWindowLongPtrW(window_, DWLP_MSGRESULT, result);
            return TRUE;
        }
    }
}
