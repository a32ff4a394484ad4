#include "VEncryptedString.h"

#include "CapiForm.h"
#include "PassphraseForm.h"
#include "VBlowfishString.h"

VEncryptedString::VEncryptedString(const VUnicodeString& protectedText,
                                   IPassphraseProvider* provider)
    : provider_(provider) {
    SetProtectedText(protectedText);
}

void VEncryptedString::SetProtectedText(const VUnicodeString& protectedText) {
    VUnicodeString::operator=(protectedText);
    sealedUnder_ = GetForm() == Form::Passphrase ? GetPassphrase() : VUnicodeString();
}

VEncryptedString::Form VEncryptedString::GetForm() const {
    if (IsEmpty()) return Form::Empty;
    if (StartsWith(CapiForm::Prefix)) return Form::Capi;
    if (StartsWith(PassphraseForm::Prefix)) return Form::Passphrase;
    return Form::Older;
}

VUnicodeString VEncryptedString::GetPassphrase() const {
    VUnicodeString passphrase(Str::Sensitive);
    if (provider_) provider_->GetPassphrase(passphrase);
    return passphrase;
}

bool VEncryptedString::SetPlainText(const VUnicodeString& plain, const VUnicodeString& name,
                                    VReportMessageParams& report, IRandomSource* random) {
    const VUnicodeString passphrase = GetPassphrase();
    VUnicodeString sealed;
    const bool done = passphrase.IsEmpty()
                          ? CapiForm::Encode(plain, sealed, name, report)
                          : PassphraseForm::Encode(plain, passphrase, sealed, name, report, random);
    if (!done) return false;
    VUnicodeString::operator=(sealed);
    sealedUnder_ = passphrase;
    return true;
}

bool VEncryptedString::Reseal(const VUnicodeString& name, VReportMessageParams& report,
                              IRandomSource* random) {
    const VUnicodeString now = GetPassphrase();
    VUnicodeString plain(Str::Sensitive);
    VReportMessageParams unopened;
    switch (GetForm()) {
        case Form::Capi:
            if (now.IsEmpty() || !CapiForm::Decode(*this, plain, name, unopened)) return false;
            break;
        case Form::Passphrase:
            if (!now.IsEmpty() && now == sealedUnder_) return false;
            if (sealedUnder_.IsEmpty() ||
                !PassphraseForm::Decode(*this, sealedUnder_, plain, name, unopened)) {
                // Taken in before its pass phrase was known: maybe the one in use.
                if (!now.IsEmpty() && PassphraseForm::Decode(*this, now, plain, name, unopened))
                    sealedUnder_ = now;
                return false;
            }
            break;
        default:
            return false;
    }
    return SetPlainText(plain, name, report, random);
}

bool VEncryptedString::GetPlainText(VUnicodeString& plain, const VUnicodeString& name,
                                    VReportMessageParams& report) const {
    VUnicodeString opened(Str::Sensitive);
    bool done = true;
    switch (GetForm()) {
        case Form::Empty:
            break;
        case Form::Capi:
            done = CapiForm::Decode(*this, opened, name, report);
            break;
        case Form::Passphrase:
            done = PassphraseForm::Decode(*this, GetPassphrase(), opened, name, report);
            break;
        case Form::Older:
            done = VBlowfishString::Decode(*this, opened, name, report);
            break;
    }
    if (done) plain.Swap(opened);
    return done;
}
