#include "VProfileCapiString.h"

#include "CapiForm.h"

namespace {

VUnicodeString SensitiveCopy(const VUnicodeString& text) {
    VUnicodeString copy(Str::Sensitive);
    copy = text;
    return copy;
}

}  // namespace

// Sensitivity is sticky, so every text later assigned to the value stays sensitive.
VProfileCapiString::VProfileCapiString(const VUnicodeString& name,
                                       const VUnicodeString& defaultText)
    : VProfile2(name, SensitiveCopy(defaultText)) {}

bool VProfileCapiString::ReadValue(VProfileKey& key, const VUnicodeString& name,
                                   VUnicodeString& out) {
    VUnicodeString stored;
    if (!VProfileSz::ReadValue(key, name, stored)) return false;
    VUnicodeString plain(Str::Sensitive);
    // A text that cannot be opened leaves plain empty, which is then the value.
    CapiForm::Decode(stored, plain, name, key.GetLastErrorParams());
    out = plain;
    return true;
}

bool VProfileCapiString::WriteValue(VProfileKey& key, const VUnicodeString& name,
                                    const VUnicodeString& value) {
    VUnicodeString sealed;
    if (!CapiForm::Encode(value, sealed, name, key.GetLastErrorParams())) return false;
    return VProfileSz::WriteValue(key, name, sealed);
}

bool VProfileCapiString::GetVariant(VARIANT& variant, VReportMessageParams& report) const {
    VUnicodeString sealed;
    return CapiForm::Encode(Get(), sealed, GetName(), report) &&
           StoredToVariant(sealed, variant, report);
}

bool VProfileCapiString::SetVariant(const VARIANT& variant, VReportMessageParams& report) {
    VUnicodeString sealed;
    VUnicodeString plain(Str::Sensitive);
    if (!StoredFromVariant(variant, sealed, report) ||
        !CapiForm::Decode(sealed, plain, GetName(), report))
        return false;
    Set(plain);
    return true;
}
