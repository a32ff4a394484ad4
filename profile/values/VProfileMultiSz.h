// The storage kind of a list of texts kept in a multi-string value of a
// profile key. Its values are exchanged as one-dimensional SAFEARRAYs of
// BSTR (VT_ARRAY | VT_BSTR); an incoming array of variants is accepted when
// each element converts to text. The text exchange of slots 8, 9, 12 and 13
// is not supported.
//
// VProfileMultiSz holds no value itself: VProfile2<VStringArray, VProfileMultiSz>
// holds the current and saved list and implements Load.
#pragma once

#include "VProfileData.h"
#include "VProfileValueTraits.h"

class VProfileMultiSz : public VProfileData {
public:
    using Stored = VStringArray;
    static constexpr VARTYPE VariantType = VT_ARRAY | VT_BSTR;
    // A list has no text form to take as a default.
    static constexpr bool TakesDefaultText = false;

    using VProfileData::VProfileData;

    // Slot 21: reads the multi-string value name of key into out. False,
    // with out unchanged and the reason in the key's record, when it cannot.
    virtual bool ReadValue(VProfileKey& key, const VUnicodeString& name, VStringArray& out);
    // Slot 22: writes value as the multi-string value name of key.
    virtual bool WriteValue(VProfileKey& key, const VUnicodeString& name,
                            const VStringArray& value);
    // Slot 23: ReadValue(key, GetName(), current).
    virtual bool Load(VProfileKey& key) = 0;

protected:
    bool StoredToVariant(const Stored& value, VARIANT& variant, VReportMessageParams& report) const;
    bool StoredFromVariant(const VARIANT& variant, Stored& value,
                           VReportMessageParams& report) const;
    static Stored BlankStored() { return Stored(); }
    static bool IsBlank(const Stored& value) { return value.IsEmpty(); }
};
