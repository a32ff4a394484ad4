// AddKeyDialog: asked after a key file is chosen in Manage Agent Keys: the
// file's pass phrase (only for a sealed file), how long the agent keeps the
// key, and whether it asks before each use. Private to Agentkit. UI thread.
#pragma once

#include <algorithm>
#include <cstdint>

#include "VDialog.h"
#include "VDialogTemplate.h"
#include "VString.h"

class AddKeyDialog : public VDialog {
public:
    static constexpr int FileTextId = 1101;
    static constexpr int PassphraseId = 1102;
    static constexpr int LifetimeId = 1103;
    static constexpr int ConfirmId = 1104;
    static constexpr int PromptId = 1105;

    // file is shown; needsPassphrase enables the pass-phrase field; prompt
    // (may be empty) says why it is asked again (a wrong pass phrase).
    AddKeyDialog(const VUnicodeString& file, bool needsPassphrase, const VUnicodeString& prompt, HWND parent);

    // After DoModal returned IDOK: the pass phrase (a sensitive string), the
    // lifetime in seconds (0: none) and the confirmation choice.
    const VUnicodeString& GetPassphrase() const { return passphrase_; }
    uint32_t GetLifetimeSeconds() const { return std::min<uint32_t>(lifetimeMinutes_, UINT32_MAX / 60) * 60; }
    bool GetConfirm() const { return confirm_; }

    // Kept between uses of the window, so that a series of keys gets the same options.
    void SetOptions(uint32_t lifetimeMinutes, bool confirm);

protected:
    bool OnInitDialog() override;
    void OnOK() override;

private:
    static VDialogTemplate MakeTemplate();

    VDialogTemplate template_;
    VUnicodeString file_, prompt_;
    bool needsPassphrase_;
    VUnicodeString passphrase_{Str::Sensitive};
    uint32_t lifetimeMinutes_ = 0;
    bool confirm_ = false;
};
