#include "SessionSecret.h"

#include "VProfileEncodedString.h"

namespace {

// value with its text in a sensitive string.
VEncryptedString Sensitive(const VEncryptedString& value) {
    VEncryptedString sensitive(VUnicodeString(Str::Sensitive), value.GetPassphraseProvider());
    sensitive.SetProtectedText(value.GetProtectedText());
    return sensitive;
}

bool ReadNonBlank(VProfileKey& key, const wchar_t* name, VUnicodeString& text) {
    return name && key.GetString(name, text) && !text.IsEmpty();
}

}  // namespace

SessionSecret::SessionSecret(const VUnicodeString& name, const VEncryptedString& value)
    : VProfileEncryptedString(name, value.GetPassphraseProvider()) {
    Reset(Sensitive(value));
}

bool SessionSecret::Load(VProfileKey& key, const VEncryptedString& defaultValue) {
    olderToBlank_.RemoveAll();
    if (LoadEncrypted(key)) return true;
    VEncryptedString value = Get();
    value.SetProtectedText(defaultValue.GetProtectedText());
    Reset(value);
    SetModified(false);
    return false;
}

bool SessionSecret::LoadGenerations(VProfileKey& key, const SecretGenerations& older,
                                    const VEncryptedString& defaultValue) {
    if (Load(key, defaultValue)) return true;
    VUnicodeString text(Str::Sensitive);
    VReportMessageParams ignored;
    if (ReadNonBlank(key, older.olderProtected, text)) {
        VEncryptedString value = Get();
        value.SetProtectedText(text);
        // Opened, it is sealed afresh in today's form; a text that cannot be
        // opened now (another pass phrase) is carried over as it stands.
        VUnicodeString plain(Str::Sensitive);
        if (value.GetPlainText(plain, GetName(), ignored))
            value.SetPlainText(plain, GetName(), ignored);
        Set(value);
    } else if (ReadNonBlank(key, older.olderPlain, text)) {
        if (older.plainEncoded) text = VProfileEncodedSz::Decode(text);
        // A text that cannot be sealed stays where it is, unblanked.
        if (!SetPlainText(text, ignored)) return false;
    } else {
        return false;
    }
    SetModified(true);
    for (const wchar_t* name : {older.olderProtected, older.olderPlain})
        if (ReadNonBlank(key, name, text)) olderToBlank_.Add(name);
    return true;
}

bool SessionSecret::Save(VProfileKey& key, bool force) {
    if (!VProfileEncryptedString::Save(key, force)) return false;
    for (const VUnicodeString& name : olderToBlank_)
        if (!key.SetString(name, VUnicodeString())) return false;
    olderToBlank_.RemoveAll();
    return true;
}
