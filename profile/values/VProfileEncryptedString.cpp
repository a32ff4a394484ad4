#include "VProfileEncryptedString.h"

VProfileEncryptedString::VProfileEncryptedString(const VUnicodeString& name,
                                                 IPassphraseProvider* provider)
    : VProfile2(name, VEncryptedString(VUnicodeString(), provider)) {}

bool VProfileEncryptedString::SetPlainText(const VUnicodeString& text,
                                           VReportMessageParams& report) {
    VEncryptedString value = Get();
    if (!value.SetPlainText(text, GetName(), report)) return false;
    Set(value);
    return true;
}

bool VProfileEncryptedString::Save(VProfileKey& key, bool force) {
    VEncryptedString current = Get();
    if (current.Reseal(GetName(), key.GetLastErrorParams())) Set(current);
    return VProfile2::Save(key, force);
}

bool VProfileEncryptedString::LoadWithFormerName(VProfileKey& key, const VUnicodeString& formerName,
                                                 const VEncryptedString& defaultValue) {
    if (VProfile2::LoadWithFormerName(key, formerName, defaultValue)) return true;
    SetModified(true);
    return false;
}

bool VProfileEncryptedString::LoadWithDefault(VProfileKey& key, const VUnicodeString& name,
                                              const VUnicodeString& defaultProtectedText) {
    SetName(name);
    return LoadOrDefault(key, defaultProtectedText);
}

bool VProfileEncryptedString::LoadOrDefault(VProfileKey& key,
                                            const VUnicodeString& defaultProtectedText) {
    if (LoadEncrypted(key)) return true;
    VEncryptedString value = Get();
    value.SetProtectedText(defaultProtectedText);
    Set(value);
    SetModified(true);
    return false;
}

bool VProfileEncryptedString::LoadEncrypted(VProfileKey& key) { return Load(key); }

void VProfileEncryptedString::SetPassphraseProvider(IPassphraseProvider* provider) {
    VEncryptedString saved = GetSaved();
    saved.SetPassphraseProvider(provider);
    VEncryptedString current = Get();
    current.SetPassphraseProvider(provider);
    // Reset sets both; the current value then gets its own text back.
    Reset(saved);
    Set(current);
}
