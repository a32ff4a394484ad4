// VProfileCapiString: a typed text value kept in a string value in the
// "CAPI:" form, readable only by the same user on the same computer. In
// memory it holds the plain text, in sensitive strings; whatever leaves it
// (the store, variants, serialisation sinks) carries the sealed form.
#pragma once

#include "VProfile2.h"
#include "VProfileSz.h"

class VProfileCapiString : public VProfile2<VUnicodeString, VProfileSz> {
public:
    explicit VProfileCapiString(const VUnicodeString& name,
                                const VUnicodeString& defaultText = VUnicodeString());

    // Slot 21: reads the stored text and opens it into out. A damaged text
    // (odd or bad digits, a blob the system refuses) reads as empty: out is
    // emptied and the result is true, so a load takes the empty text (not the
    // default), while the key's record gets CONFIG_PROTECTED_TEXT_DAMAGED with
    // the value's name. The stored text stays untouched until the value is
    // set anew. False only when the key holds no such string.
    bool ReadValue(VProfileKey& key, const VUnicodeString& name, VUnicodeString& out) override;
    // Slot 22: seals value and writes it. When the system refuses to seal,
    // nothing is written and the key's record gets CONFIG_PROTECT_FAILED.
    bool WriteValue(VProfileKey& key, const VUnicodeString& name,
                    const VUnicodeString& value) override;

    // Slots 10 and 14 (and so 11 and 15, which go through them) exchange
    // the sealed text as a BSTR, opening what comes in; they fail as slots
    // 22 and 21 do, and a failed SetVariant leaves the value unchanged.
    bool GetVariant(VARIANT& variant, VReportMessageParams& report) const override;
    bool SetVariant(const VARIANT& variant, VReportMessageParams& report) override;
};
