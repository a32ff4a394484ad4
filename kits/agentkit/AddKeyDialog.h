// AddKeyDialog: asked when a key file is added (in Manage Agent Keys, or by
// traywell.exe /AddKey): the file's pass phrase (only for a sealed file), how
// long the agent keeps the key, and whether it asks before each use; and
// LoadKeyAsking, which loads a key file through it. UI thread.
#pragma once

#include <algorithm>
#include <cstdint>

#include "KeyFile.h"
#include "VDialog.h"
#include "VDialogTemplate.h"
#include "VString.h"

// What the user chose for a key besides its file.
struct AgentKeyOptions {
    uint32_t lifetimeMinutes = 0;  // 0: kept until removed
    bool confirm = false;          // ask before each use

    uint32_t LifetimeSeconds() const {
        return std::min<uint32_t>(lifetimeMinutes, UINT32_MAX / 60) * 60;
    }
};

class AddKeyDialog : public VDialog {
public:
    static constexpr int FileTextId = 1101;
    static constexpr int PassphraseId = 1102;
    static constexpr int LifetimeId = 1103;
    static constexpr int ConfirmId = 1104;
    static constexpr int PromptId = 1105;

    // file is shown; needsPassphrase enables the pass-phrase field; prompt
    // (may be empty) says why it is asked again (a wrong pass phrase).
    AddKeyDialog(const VUnicodeString& file, bool needsPassphrase, const VUnicodeString& prompt,
                 HWND parent);

    // After DoModal returned IDOK: the pass phrase (a sensitive string).
    const VUnicodeString& GetPassphrase() const { return passphrase_; }
    // The options shown first; after DoModal returned IDOK, those chosen.
    const AgentKeyOptions& GetOptions() const { return options_; }
    void SetOptions(const AgentKeyOptions& options) { options_ = options; }

protected:
    bool OnInitDialog() override;
    void OnOK() override;

private:
    static VDialogTemplate MakeTemplate();

    VDialogTemplate template_;
    VUnicodeString file_, prompt_;
    bool needsPassphrase_;
    VUnicodeString passphrase_{Str::Sensitive};
    AgentKeyOptions options_;
};

// A wrong pass phrase is asked for again, as ssh asks, this many times in all.
inline constexpr int MaximumPassphraseTries = 3;

// Loads the key file at path. The Add Key window (owned by parent, may be
// null) asks for the pass phrase when the file is sealed, and shows the
// options, starting from options, which receive the user's choice; it comes
// only for a sealed file unless askOptions. While it is up, *openDialog
// (when openDialog is not null) points to it. False with report when the
// file cannot be read or loaded (after the last wrong pass phrase, too);
// false with report cleared (code 0) when the user cancels.
bool LoadKeyAsking(const VUnicodeString& path, bool askOptions, HWND parent,
                   AgentKeyOptions& options, LoadedKey& key, VReportMessageParams& report,
                   VDialog** openDialog = nullptr);
