#include "ConfigPassphraseStartup.h"

#include "ConfigMessages.h"
#include "ConfigPassphrase.h"

namespace {

// Whether check, the pass phrase sealed under itself, opens with given to given.
bool Opens(const VEncryptedString& check, const VUnicodeString& given) {
    const VRefPtr<IPassphraseProvider> candidate =
        VRefPtr<IPassphraseProvider>::Adopt(new VFixedPassphraseProvider(given));
    const VEncryptedString sealed(check.GetProtectedText(), candidate.Get());
    VUnicodeString plain(Str::Sensitive);
    VReportMessageParams unread;  // a wrong pass phrase is the answer, not a fault
    return sealed.GetPlainText(plain, VUnicodeString(), unread) && plain == given;
}

}  // namespace

bool StartConfigPassphrase(const GlobalConfig& config, const VUnicodeString& given,
                           VReportMessageParams& report) {
    const VEncryptedString& check = config.ConfigPassphrase.Get();
    if (check.GetForm() == VEncryptedString::Form::Passphrase) {
        if (given.IsEmpty()) {
            report.Set(CONFIG_PASSPHRASE_REQUIRED);
            return false;
        }
        if (!Opens(check, given)) {
            report.Set(CONFIG_PASSPHRASE_MISMATCH);
            return false;
        }
    }
    SetConfigPassphrase(given);
    return true;
}
