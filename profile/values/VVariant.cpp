#include "VVariant.h"

#include <cstring>
#include <new>

namespace {

// A new zero-based one-dimensional array of count elements, owned by variant.
SAFEARRAY* NewVector(VVariant& variant, VARTYPE elementType, size_t count) {
    SAFEARRAY* array = SafeArrayCreateVector(elementType, 0, static_cast<ULONG>(count));
    if (!array) throw std::bad_alloc();
    variant.Clear();
    V_VT(&variant.Get()) = VT_ARRAY | elementType;
    V_ARRAY(&variant.Get()) = array;
    return array;
}

// The one-dimensional array of elementType that source holds, with its first
// index and element count.
bool VectorOf(const VARIANT& source, VARTYPE elementType, SAFEARRAY*& array, LONG& first,
              size_t& count) {
    array = V_VT(&source) == (VT_ARRAY | elementType) ? V_ARRAY(&source) : nullptr;
    LONG last = 0;
    if (!array || SafeArrayGetDim(array) != 1 || FAILED(SafeArrayGetLBound(array, 1, &first)) ||
        FAILED(SafeArrayGetUBound(array, 1, &last)))
        return false;
    count = static_cast<size_t>(int64_t{last} - first + 1);
    return true;
}

}  // namespace

bool VVariant::ChangeTypeFrom(const VARIANT& source, VARTYPE vt) noexcept {
    // The declaration lacks const; the source is only read.
    return SUCCEEDED(VariantChangeType(&variant_, const_cast<VARIANT*>(&source), 0, vt));
}

void VVariant::MoveTo(VARIANT& target) noexcept {
    VariantClear(&target);
    target = variant_;
    VariantInit(&variant_);
}

void VVariant::SetText(const VUnicodeString& text) {
    const BSTR bstr = SysAllocStringLen(text.c_str(), static_cast<UINT>(text.GetLength()));
    if (!bstr) throw std::bad_alloc();
    Clear();
    V_VT(&variant_) = VT_BSTR;
    V_BSTR(&variant_) = bstr;
}

bool VVariant::TextOf(const VARIANT& source, VUnicodeString& text) {
    VVariant converted;
    if (!converted.ChangeTypeFrom(source, VT_BSTR)) return false;
    const BSTR bstr = V_BSTR(&converted.variant_);
    text.Assign(bstr, SysStringLen(bstr));
    return true;
}

void VVariant::SetTexts(const VArray<VUnicodeString>& texts) {
    VVariant list;
    SAFEARRAY* array = NewVector(list, VT_BSTR, texts.GetCount());
    LONG index = 0;
    for (const VUnicodeString& text : texts) {
        VVariant element;
        element.SetText(text);
        // SafeArrayPutElement copies the BSTR.
        if (FAILED(SafeArrayPutElement(array, &index, V_BSTR(&element.variant_))))
            throw std::bad_alloc();
        ++index;
    }
    list.MoveTo(variant_);
}

bool VVariant::TextsOf(const VARIANT& source, VArray<VUnicodeString>& texts) {
    SAFEARRAY* array = nullptr;
    LONG first = 0;
    size_t count = 0;
    const bool ofBstr = VectorOf(source, VT_BSTR, array, first, count);
    if (!ofBstr && !VectorOf(source, VT_VARIANT, array, first, count)) return false;
    VArray<VUnicodeString> read;
    for (LONG index = first; index < first + static_cast<LONG>(count); ++index) {
        // SafeArrayGetElement hands out copies, which element frees.
        VVariant element;
        if (ofBstr) {
            BSTR bstr = nullptr;
            if (FAILED(SafeArrayGetElement(array, &index, &bstr))) return false;
            V_VT(&element.variant_) = VT_BSTR;
            V_BSTR(&element.variant_) = bstr;
        } else if (FAILED(SafeArrayGetElement(array, &index, &element.variant_))) {
            return false;
        }
        VUnicodeString text;
        if (!TextOf(element.variant_, text)) return false;
        read.Add(text);
    }
    texts = read;
    return true;
}

void VVariant::SetBytes(const std::vector<uint8_t>& bytes) {
    VVariant block;
    SAFEARRAY* array = NewVector(block, VT_UI1, bytes.size());
    if (!bytes.empty()) {
        void* data = nullptr;
        if (FAILED(SafeArrayAccessData(array, &data))) throw std::bad_alloc();
        std::memcpy(data, bytes.data(), bytes.size());
        SafeArrayUnaccessData(array);
    }
    block.MoveTo(variant_);
}

bool VVariant::BytesOf(const VARIANT& source, std::vector<uint8_t>& bytes) {
    SAFEARRAY* array = nullptr;
    LONG first = 0;
    size_t count = 0;
    if (!VectorOf(source, VT_UI1, array, first, count)) return false;
    std::vector<uint8_t> read(count);
    if (count != 0) {
        void* data = nullptr;
        if (FAILED(SafeArrayAccessData(array, &data))) return false;
        std::memcpy(read.data(), data, count);
        SafeArrayUnaccessData(array);
    }
    bytes = std::move(read);
    return true;
}
