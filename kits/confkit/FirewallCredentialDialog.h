// FirewallCredentialDialog: the dialog behind the two firewall prompts (see
// FirewallPrompts.h). Private to Confkit.
#pragma once

#include "VDialog.h"
#include "VDialogTemplate.h"
#include "VString.h"

class FirewallCredentialDialog : public VDialog {
public:
    enum class Kind { Username, Password };

    static constexpr int PromptId = 1001;
    static constexpr int TextId = 1002;
    static constexpr int SaveId = 1003;

    FirewallCredentialDialog(Kind kind, HWND parent);

    // After DoModal returned IDOK: what was typed (sensitive), and the "Save" box.
    const VUnicodeString& GetText() const { return text_; }
    bool GetSave() const { return save_; }

protected:
    bool OnInitDialog() override;
    void OnOK() override;
    void OnCancel() override;

private:
    static VDialogTemplate MakeTemplate(Kind kind);
    // Overwrites the text field's text before the field goes, so that the
    // memory it frees holds no trace of what was typed.
    void WipeField();

    VDialogTemplate template_;
    VUnicodeString text_{Str::Sensitive};
    bool save_ = false;
};
