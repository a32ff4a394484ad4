#include "VProfileSz.h"

#include <new>

#include "VVariant.h"

namespace {

// A BSTR variant of text; BSTRs carry their length, so embedded zeros survive.
void MakeBstr(const VUnicodeString& text, VVariant& variant) {
    const BSTR bstr = SysAllocStringLen(text.c_str(), static_cast<UINT>(text.GetLength()));
    if (!bstr) throw std::bad_alloc();
    V_VT(&variant.Get()) = VT_BSTR;
    V_BSTR(&variant.Get()) = bstr;
}

}  // namespace

bool VProfileSz::GetVariantAs(VARIANT& variant, const VUnicodeString& value, VARTYPE vt,
                              VReportMessageParams& report) const {
    VVariant text;
    MakeBstr(value, text);
    VVariant converted;
    if (!converted.ChangeTypeFrom(text.Get(), vt)) return NotConvertible(report);
    converted.MoveTo(variant);
    return true;
}

bool VProfileSz::WriteAs(IProfileDataSink& sink, const VUnicodeString& value, VARTYPE vt) const {
    VVariant variant;
    return GetVariantAs(variant.Get(), value, vt, sink.GetLastErrorParams()) && sink.Write(GetName(), variant.Get());
}

bool VProfileSz::SetVariantAs(const VARIANT& variant, VUnicodeString& value, VARTYPE vt,
                              VReportMessageParams& report) {
    // Through vt first, so that only what vt can hold is accepted, then as text.
    VVariant typed;
    VVariant text;
    if (!typed.ChangeTypeFrom(variant, vt) || !text.ChangeTypeFrom(typed.Get(), VT_BSTR)) return NotConvertible(report);
    const BSTR bstr = V_BSTR(&text.Get());
    value.Assign(bstr, SysStringLen(bstr));
    return true;
}

bool VProfileSz::ReadAs(IProfileDataSource& source, VUnicodeString& value, VARTYPE vt,
                        VReportMessageParams& report) {
    VVariant variant;
    if (!source.Read(GetName(), variant.Get())) {
        if (&report != &source.GetLastErrorParams()) report = source.GetLastErrorParams();
        return false;
    }
    return SetVariantAs(variant.Get(), value, vt, report);
}

bool VProfileSz::ReadValue(VProfileKey& key, const VUnicodeString& name, VUnicodeString& out) {
    VUnicodeString text;
    if (!key.GetString(name, text)) return false;
    out = text;
    return true;
}

bool VProfileSz::WriteValue(VProfileKey& key, const VUnicodeString& name, const VUnicodeString& value) {
    return key.SetString(name, value);
}

bool VProfileSz::StoredFromDefaultText(const char* text, Stored& value) {
    value = VUnicodeString(VString(text));
    return true;
}
