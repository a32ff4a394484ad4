#include "VProfileSz.h"

#include "VVariant.h"

bool VProfileSz::GetVariantAs(VARIANT& variant, const VUnicodeString& value, VARTYPE vt,
                              VReportMessageParams& report) const {
    VVariant text;
    text.SetText(value);
    VVariant converted;
    if (!converted.ChangeTypeFrom(text.Get(), vt)) return NotConvertible(report);
    converted.MoveTo(variant);
    return true;
}

bool VProfileSz::WriteAs(IProfileDataSink& sink, const VUnicodeString& value, VARTYPE vt) const {
    return WriteVariantTo(sink, [&](VARIANT& variant, VReportMessageParams& report) {
        return GetVariantAs(variant, value, vt, report);
    });
}

bool VProfileSz::SetVariantAs(const VARIANT& variant, VUnicodeString& value, VARTYPE vt,
                              VReportMessageParams& report) {
    // Through vt first, so that only what vt can hold is accepted, then as text.
    VVariant typed;
    VUnicodeString text;
    if (!typed.ChangeTypeFrom(variant, vt) || !VVariant::TextOf(typed.Get(), text))
        return NotConvertible(report);
    value.Assign(text.c_str(), text.GetLength());
    return true;
}

bool VProfileSz::ReadAs(IProfileDataSource& source, VUnicodeString& value, VARTYPE vt,
                        VReportMessageParams& report) {
    return ReadVariantFrom(source, report,
                           [&](const VARIANT& variant, VReportMessageParams& failure) {
                               return SetVariantAs(variant, value, vt, failure);
                           });
}

bool VProfileSz::ReadValue(VProfileKey& key, const VUnicodeString& name, VUnicodeString& out) {
    VUnicodeString text;
    if (!key.GetString(name, text)) return false;
    out = text;
    return true;
}

bool VProfileSz::WriteValue(VProfileKey& key, const VUnicodeString& name,
                            const VUnicodeString& value) {
    return key.SetString(name, value);
}

bool VProfileSz::StoredFromDefaultText(const char* text, Stored& value) {
    value = VUnicodeString(VString(text));
    return true;
}
