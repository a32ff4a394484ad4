#include "ConfigPassphrase.h"

#include <mutex>

namespace {

// The process's pass phrase. Copies handed out share its sensitive block, so
// a later change never alters a pass phrase that a caller is using.
struct PassphraseSlot {
    std::mutex lock;
    VUnicodeString passphrase{Str::Sensitive};
};

PassphraseSlot& Slot() {
    static PassphraseSlot slot;
    return slot;
}

class ConfigPassphraseProvider : public VUnknown<IPassphraseProvider> {
public:
    bool GetPassphrase(VUnicodeString& passphrase) override {
        passphrase = GetConfigPassphrase();
        return !passphrase.IsEmpty();
    }
};

}  // namespace

void SetConfigPassphrase(const VUnicodeString& passphrase) {
    VUnicodeString copy(Str::Sensitive);
    copy = passphrase;
    PassphraseSlot& slot = Slot();
    std::lock_guard<std::mutex> guard(slot.lock);
    slot.passphrase.Swap(copy);
}

VUnicodeString GetConfigPassphrase() {
    PassphraseSlot& slot = Slot();
    std::lock_guard<std::mutex> guard(slot.lock);
    return slot.passphrase;
}

bool IsConfigPassphraseDisabled() { return GetConfigPassphrase().IsEmpty(); }

IPassphraseProvider* GetConfigPassphraseProvider() {
    // Never released: values may hold it until the process ends.
    static ConfigPassphraseProvider* const provider = new ConfigPassphraseProvider();
    return provider;
}

bool UpdateProfileEncryptedString(VProfileEncryptedString& value, const VUnicodeString& plainText) {
    VEncryptedString sealed = value.Get();
    sealed.SetPassphraseProvider(GetConfigPassphraseProvider());
    VReportMessageParams report;
    if (!sealed.SetPlainText(plainText, value.GetName(), report)) return false;
    value.SetPassphraseProvider(GetConfigPassphraseProvider());
    value.Set(sealed);
    return true;
}

VUnicodeString GetProfileEncryptedPlaintextString(const VProfileEncryptedString& value) {
    VEncryptedString text = value.Get();
    if (!text.GetPassphraseProvider()) text.SetPassphraseProvider(GetConfigPassphraseProvider());
    VUnicodeString plain(Str::Sensitive);
    VReportMessageParams report;
    // A text that cannot be opened leaves plain empty, which is the answer then.
    text.GetPlainText(plain, value.GetName(), report);
    return plain;
}
