// The storage kind of a value kept as text in a string value of a profile
// key, and the base of the kinds that keep their value as text (time as text,
// protected text). Its values are exchanged as VT_BSTR variants.
//
// VProfileSz holds no value itself: VProfile2<T, VProfileSz> (or a kind
// derived from it) holds the current and saved T and implements Load.
#pragma once

#include "VProfileData.h"

class VProfileSz : public VProfileData {
public:
    // What the key keeps for a value of this kind.
    using Stored = VUnicodeString;
    // The variant type in which values of the text kinds are exchanged.
    static constexpr VARTYPE VariantType = VT_BSTR;
    // SetFromText takes its text as the default of a value the source lacks.
    static constexpr bool TakesDefaultText = true;

    using VProfileData::VProfileData;

    // Slot 8: value as a BSTR, then converted to vt with VariantChangeType.
    bool GetVariantAs(VARIANT& variant, const VUnicodeString& value, VARTYPE vt,
                      VReportMessageParams& report) const override;
    // Slot 9: GetVariantAs, then the sink's Write; failures land in the sink's record.
    bool WriteAs(IProfileDataSink& sink, const VUnicodeString& value, VARTYPE vt) const override;
    // Slot 12: variant converted to vt, then to text, into value. value is
    // unchanged on failure (CONFIG_VALUE_NOT_CONVERTIBLE).
    bool SetVariantAs(const VARIANT& variant, VUnicodeString& value, VARTYPE vt,
                      VReportMessageParams& report) override;
    // Slot 13: the source's Read, then SetVariantAs. When the source fails,
    // its report is copied to report (CONFIG_VALUE_ABSENT for a missing value).
    bool ReadAs(IProfileDataSource& source, VUnicodeString& value, VARTYPE vt,
                VReportMessageParams& report) override;

    // Slot 21: reads the string value name of key into out. False, with
    // out unchanged and the reason in the key's record (CONFIG_VALUE_ABSENT
    // when there is no such string), when it cannot.
    virtual bool ReadValue(VProfileKey& key, const VUnicodeString& name, VUnicodeString& out);
    // Slot 22: writes value as the string value name of key.
    virtual bool WriteValue(VProfileKey& key, const VUnicodeString& name,
                            const VUnicodeString& value);
    // Slot 23: ReadValue(key, GetName(), current); false when the key is not
    // open or holds no such value (the current value is then left as it was).
    virtual bool Load(VProfileKey& key) = 0;

protected:
    // The stored form as this kind's variant type and back: slots 8 and 12
    // with VT_BSTR. VProfile2 builds slots 10, 11, 14 and 15 on them.
    bool StoredToVariant(const Stored& value, VARIANT& variant,
                         VReportMessageParams& report) const {
        return GetVariantAs(variant, value, VariantType, report);
    }
    bool StoredFromVariant(const VARIANT& variant, Stored& value, VReportMessageParams& report) {
        return SetVariantAs(variant, value, VariantType, report);
    }
    // The stored form of the default text (ANSI code page) that SetFromText
    // takes when its source does not hold the value.
    static bool StoredFromDefaultText(const char* text, Stored& value);
    // The blank form that replaces a value found under a former name.
    static Stored BlankStored() { return Stored(); }
    static bool IsBlank(const Stored& value) { return value.IsEmpty(); }
};
