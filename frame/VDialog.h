// VDialog: the modal dialog base. A dialog is made from a template (a resource
// of a module, or a VDialogTemplate in memory), shown with DoModal, and
// answers its messages through the virtual handlers below. UI thread only.
#pragma once

#include <windows.h>

#include "VDialogTemplate.h"

class VDialog {
public:
    // A dialog from template resource templateId of module (null: the program's
    // own executable), owned by parent (may be null).
    explicit VDialog(UINT templateId, HWND parent = nullptr, HINSTANCE module = nullptr);
    // A dialog from a template in memory; the template is not copied and must
    // outlive DoModal.
    explicit VDialog(const VDialogTemplate& dialogTemplate, HWND parent = nullptr);
    virtual ~VDialog() = default;
    VDialog(const VDialog&) = delete;
    VDialog& operator=(const VDialog&) = delete;

    // Shows the dialog and runs its modal loop until EndDialog. Returns the value
    // given to EndDialog, or -1 when the dialog cannot be made (no such template,
    // a control class not registered); GetLastError tells why then.
    INT_PTR DoModal();

    // The dialog's window while it is shown; null before and after.
    HWND GetHwnd() const { return window_; }

    // Ends the modal loop; DoModal returns result.
    void EndDialog(INT_PTR result);

protected:
    // After the controls exist. True lets the system put the focus on the first
    // control; a handler that sets the focus itself returns false. Default: true.
    virtual bool OnInitDialog();
    // The OK button (or Enter). Default: EndDialog(IDOK).
    virtual void OnOK();
    // The Cancel button, Escape or the close box. Default: EndDialog(IDCANCEL).
    virtual void OnCancel();
    // WM_COMMAND from a control or menu. True when handled. Default: IDOK to
    // OnOK, IDCANCEL to OnCancel.
    virtual bool OnCommand(WORD id, WORD notifyCode, HWND control);
    // Any other message. True when handled, with result as the dialog
    // procedure's answer (SetWindowLongPtr DWLP_MSGRESULT is done here). Default: false.
    virtual bool OnMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result);

    HWND GetItem(int id) const { return GetDlgItem(window_, id); }
    void SetItemText(int id, const wchar_t* text) const { SetDlgItemTextW(window_, id, text); }
    void SetCaption(const wchar_t* text) const { SetWindowTextW(window_, text); }

private:
    static INT_PTR CALLBACK DialogProcedure(HWND window, UINT message, WPARAM wParam,
                                            LPARAM lParam);
    INT_PTR Dispatch(UINT message, WPARAM wParam, LPARAM lParam);

    UINT templateId_ = 0;
    HINSTANCE module_ = nullptr;
    const VDialogTemplate* memoryTemplate_ = nullptr;
    HWND parent_;
    HWND window_ = nullptr;
};
