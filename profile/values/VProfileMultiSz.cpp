#include "VProfileMultiSz.h"

bool VProfileMultiSz::ReadValue(VProfileKey& key, const VUnicodeString& name, VStringArray& out) {
    VStringArray strings;
    if (!key.GetMultiString(name, strings)) return false;
    out = strings;
    return true;
}

bool VProfileMultiSz::WriteValue(VProfileKey& key, const VUnicodeString& name, const VStringArray& value) {
    return key.SetMultiString(name, value);
}

bool VProfileMultiSz::StoredToVariant(const Stored& value, VARIANT& variant, VReportMessageParams&) const {
    VVariant list;
    SAFEARRAY* array = list.SetVector(VT_BSTR, value.GetCount());
    LONG index = 0;
    for (const VUnicodeString& text : value) {
        VVariant element;
        element.SetText(text);
        // SafeArrayPutElement copies the BSTR.
        if (FAILED(SafeArrayPutElement(array, &index, V_BSTR(&element.Get())))) throw std::bad_alloc();
        ++index;
    }
    list.MoveTo(variant);
    return true;
}

bool VProfileMultiSz::StoredFromVariant(const VARIANT& variant, Stored& value, VReportMessageParams& report) const {
    SAFEARRAY* array = nullptr;
    LONG first = 0;
    size_t count = 0;
    const bool texts = VVariant::VectorOf(variant, VT_BSTR, array, first, count);
    if (!texts && !VVariant::VectorOf(variant, VT_VARIANT, array, first, count)) return NotConvertible(report);
    VStringArray strings;
    for (LONG index = first; index < first + static_cast<LONG>(count); ++index) {
        // SafeArrayGetElement hands out copies, freed by the variant.
        VVariant element;
        if (texts) {
            BSTR bstr = nullptr;
            if (FAILED(SafeArrayGetElement(array, &index, &bstr))) return NotConvertible(report);
            V_VT(&element.Get()) = VT_BSTR;
            V_BSTR(&element.Get()) = bstr;
        } else if (FAILED(SafeArrayGetElement(array, &index, &element.Get()))) {
            return NotConvertible(report);
        }
        VUnicodeString text;
        if (!VVariant::TextOf(element.Get(), text)) return NotConvertible(report);
        strings.Add(text);
    }
    value = strings;
    return true;
}
