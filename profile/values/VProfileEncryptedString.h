// VProfileEncryptedString: a typed value holding a protected text, kept in a
// string value of a profile key. Current and saved value are VEncryptedStrings
// and each holds a reference to the pass-phrase provider.
//
// The value holds the text in its protected form: SetPlainText seals at once
// (so a failure shows when the text is set, not at Save), Save writes the
// sealed text, and loading takes the stored text as it is. Opening it
// (GetPlainText) is a separate step that may fail without touching the value,
// so a text that cannot be opened now (no pass phrase given yet) is kept.
// When the pass phrase has changed since the text was sealed or loaded, Save
// seals it anew under the one in use (VEncryptedString::Reseal) and writes it.
#pragma once

#include "VEncryptedString.h"
#include "VProfile2.h"
#include "VProfileSz.h"

class VProfileEncryptedString : public VProfile2<VEncryptedString, VProfileSz> {
public:
    // An empty value named name, sealed and opened through provider (which
    // may be null: no pass phrase, so texts are protected with the logon).
    explicit VProfileEncryptedString(const VUnicodeString& name,
                                     IPassphraseProvider* provider = nullptr);

    // Slot 24: seals text and makes it the current value. On failure the
    // value is unchanged and report tells why (see VEncryptedString).
    virtual bool SetPlainText(const VUnicodeString& text, VReportMessageParams& report);
    // Slot 25: sets the name, then LoadOrDefault.
    virtual bool LoadWithDefault(VProfileKey& key, const VUnicodeString& name,
                                 const VUnicodeString& defaultProtectedText);
    // Slot 26: LoadEncrypted; when that finds nothing, the current value
    // becomes defaultProtectedText (a stored form, usually empty) and is
    // marked modified, so that the next Save writes it; false then.
    virtual bool LoadOrDefault(VProfileKey& key, const VUnicodeString& defaultProtectedText);
    // Slot 27: takes the stored text under the name as the current and saved
    // value, not modified; false when the key holds no such value.
    virtual bool LoadEncrypted(VProfileKey& key);
    // Slot 28: the current and the saved value take a reference to provider
    // (which may be null) and drop their former one.
    virtual void SetPassphraseProvider(IPassphraseProvider* provider);

    // Slot 2: as for every value, after sealing the text anew when the pass
    // phrase changed (then the text is written even when not forced).
    bool Save(VProfileKey& key, bool force) override;

    // As for every value; when neither name holds the value, the default is
    // marked modified, as LoadOrDefault marks it, so that the next Save
    // writes it.
    bool LoadWithFormerName(VProfileKey& key, const VUnicodeString& formerName,
                            const VEncryptedString& defaultValue);
    using VProfile2::Load;

    IPassphraseProvider* GetPassphraseProvider() const { return Get().GetPassphraseProvider(); }
    // Opens the current value into plain (which becomes sensitive); on
    // failure plain is unchanged and report tells why.
    bool GetPlainText(VUnicodeString& plain, VReportMessageParams& report) const {
        return Get().GetPlainText(plain, GetName(), report);
    }
};
