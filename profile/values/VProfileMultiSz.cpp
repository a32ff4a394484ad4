#include "VProfileMultiSz.h"

bool VProfileMultiSz::ReadValue(VProfileKey& key, const VUnicodeString& name, VStringArray& out) {
    VStringArray strings;
    if (!key.GetMultiString(name, strings)) return false;
    out = strings;
    return true;
}

bool VProfileMultiSz::WriteValue(VProfileKey& key, const VUnicodeString& name,
                                 const VStringArray& value) {
    return key.SetMultiString(name, value);
}

bool VProfileMultiSz::StoredToVariant(const Stored& value, VARIANT& variant,
                                      VReportMessageParams&) const {
    VVariant list;
    list.SetTexts(value);
    list.MoveTo(variant);
    return true;
}

bool VProfileMultiSz::StoredFromVariant(const VARIANT& variant, Stored& value,
                                        VReportMessageParams& report) const {
    return VVariant::TextsOf(variant, value) || NotConvertible(report);
}
