// VEncryptedString: a protected text as it is stored, with the pass-phrase
// provider that seals and opens it. The text is one of
//
//   ""          the empty text
//   "CAPI:..."  protected with the user's Windows logon (CapiForm)
//   "02:..."    enciphered under the configuration pass phrase (PassphraseForm)
//   digits      the older fixed-key form, read only (VBlowfishString)
//
// The plain text exists only while a caller asks for it, in a sensitive
// string. A text that cannot be opened (no pass phrase yet, another user's
// blob) stays as it is, so nothing is lost by loading and saving it again.
//
// A text remembers the pass phrase it was sealed under (the one in use when
// it was sealed or set), so that it can be sealed anew when the pass phrase
// changes (Reseal): the provider answers only the pass phrase now in use.
#pragma once

#include "IPassphraseProvider.h"
#include "IRandomSource.h"
#include "VProfileValueTraits.h"
#include "VReportMessageParams.h"
#include "VString.h"

class VEncryptedString : public VUnicodeString {
public:
    enum class Form { Empty, Capi, Passphrase, Older };

    VEncryptedString() = default;
    // protectedText in any of the stored forms; provider may be null.
    explicit VEncryptedString(const VUnicodeString& protectedText,
                              IPassphraseProvider* provider = nullptr);

    const VUnicodeString& GetProtectedText() const { return *this; }
    // Replaces the protected text, taken to be sealed under the provider's
    // pass phrase now in use; the provider stays.
    void SetProtectedText(const VUnicodeString& protectedText);
    Form GetForm() const;

    // Null when there is none, which is taken as "no pass phrase in use".
    IPassphraseProvider* GetPassphraseProvider() const { return provider_.Get(); }
    // Takes a reference to provider (which may be null) and drops the former one.
    void SetPassphraseProvider(IPassphraseProvider* provider) { provider_ = provider; }

    // Seals plain: in the "02:" form when the provider has a pass phrase, else
    // in the "CAPI:" form (an empty plain then gives the empty text). The
    // padding comes from random, or from the default source when it is null.
    // On failure the text is unchanged and report tells why, naming name.
    bool SetPlainText(const VUnicodeString& plain, const VUnicodeString& name,
                      VReportMessageParams& report, IRandomSource* random = nullptr);

    // Opens the text into plain, which becomes sensitive. On failure plain is
    // unchanged and report tells why, naming name: CONFIG_PASSPHRASE_UNUSABLE
    // or CONFIG_PROTECTED_TEXT_UNREADABLE for "02:", CONFIG_PROTECTED_TEXT_DAMAGED
    // for "CAPI:", CONFIG_PROTECTED_TEXT_INVALID for the older form.
    bool GetPlainText(VUnicodeString& plain, const VUnicodeString& name,
                      VReportMessageParams& report) const;

    // Seals the text as SetPlainText would seal it now, when it is sealed
    // otherwise: under another pass phrase than the one in use, under one
    // while none is in use, or with the logon while one is. The text is
    // opened with the pass phrase it was sealed under (or the one in use).
    // True when the text changed; false, with the text unchanged, when it
    // needs nothing, cannot be opened (it is kept as it is) or cannot be
    // sealed (report tells why).
    bool Reseal(const VUnicodeString& name, VReportMessageParams& report,
                IRandomSource* random = nullptr);

private:
    // The provider's pass phrase in a sensitive string; empty when none.
    VUnicodeString GetPassphrase() const;

    VRefPtr<IPassphraseProvider> provider_;
    VUnicodeString sealedUnder_{Str::Sensitive};  // empty for the logon and the older form
};

// Kept in a string value as its protected text; two values are equal when
// their protected texts are.
template <>
struct VProfileValueTraits<VEncryptedString> {
    using Stored = VUnicodeString;
    static bool ToStored(const VEncryptedString& value, Stored& out) {
        out = value.GetProtectedText();
        return true;
    }
    static bool FromStored(const Stored& in, VEncryptedString& value) {
        value.SetProtectedText(in);
        return true;
    }
    static bool Equal(const VEncryptedString& a, const VEncryptedString& b) {
        return a.GetProtectedText() == b.GetProtectedText();
    }
};
