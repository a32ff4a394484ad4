#include "VEncryptedString.h"

#include "CapiForm.h"
#include "PassphraseForm.h"
#include "VBlowfishString.h"

VEncryptedString::VEncryptedString(const VUnicodeString& protectedText,
                                   IPassphraseProvider* provider)
    : VUnicodeString(protectedText), provider_(provider) {}

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
    if (done) SetProtectedText(sealed);
    return done;
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
