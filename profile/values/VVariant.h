// A VARIANT with one owner: initialised on construction and cleared (which
// frees a BSTR or SAFEARRAY it holds) when it goes away.
#pragma once

#include <windows.h>
#include <oleauto.h>

#include <cstdint>
#include <new>

#include "VString.h"

class VVariant {
public:
    VVariant() noexcept { VariantInit(&variant_); }
    ~VVariant() { VariantClear(&variant_); }
    VVariant(const VVariant&) = delete;
    VVariant& operator=(const VVariant&) = delete;

    VARIANT& Get() noexcept { return variant_; }
    const VARIANT& Get() const noexcept { return variant_; }
    VARTYPE GetType() const noexcept { return V_VT(&variant_); }
    // Frees what the variant holds and leaves it VT_EMPTY.
    void Clear() noexcept { VariantClear(&variant_); }

    // Replaces the content with source converted to vt by VariantChangeType
    // (the system's rules, in the user's locale). False, with this variant
    // empty, when the conversion is refused (overflow, type mismatch).
    bool ChangeTypeFrom(const VARIANT& source, VARTYPE vt) noexcept {
        // The declaration lacks const; the source is only read.
        return SUCCEEDED(VariantChangeType(&variant_, const_cast<VARIANT*>(&source), 0, vt));
    }
    // Replaces the content with a BSTR copy of text (embedded zeros survive:
    // a BSTR carries its length). Throws std::bad_alloc when out of memory.
    void SetText(const VUnicodeString& text) {
        const BSTR bstr = SysAllocStringLen(text.c_str(), static_cast<UINT>(text.GetLength()));
        if (!bstr) throw std::bad_alloc();
        Clear();
        V_VT(&variant_) = VT_BSTR;
        V_BSTR(&variant_) = bstr;
    }
    // The text of source converted to VT_BSTR; false when it does not convert.
    static bool TextOf(const VARIANT& source, VUnicodeString& text) {
        VVariant converted;
        if (!converted.ChangeTypeFrom(source, VT_BSTR)) return false;
        const BSTR bstr = V_BSTR(&converted.variant_);
        text.Assign(bstr, SysStringLen(bstr));
        return true;
    }

    // Replaces the content with a new zero-based one-dimensional SAFEARRAY of
    // count elements of elementType, which the variant owns; the array.
    // Throws std::bad_alloc when out of memory.
    SAFEARRAY* SetVector(VARTYPE elementType, size_t count) {
        SAFEARRAY* array = SafeArrayCreateVector(elementType, 0, static_cast<ULONG>(count));
        if (!array) throw std::bad_alloc();
        Clear();
        V_VT(&variant_) = VT_ARRAY | elementType;
        V_ARRAY(&variant_) = array;
        return array;
    }
    // The one-dimensional array of elementType that source holds, with its
    // first index and element count; false when it holds none.
    static bool VectorOf(const VARIANT& source, VARTYPE elementType, SAFEARRAY*& array, LONG& first, size_t& count) {
        array = V_VT(&source) == (VT_ARRAY | elementType) ? V_ARRAY(&source) : nullptr;
        LONG last = 0;
        if (!array || SafeArrayGetDim(array) != 1 || FAILED(SafeArrayGetLBound(array, 1, &first)) ||
            FAILED(SafeArrayGetUBound(array, 1, &last)))
            return false;
        count = static_cast<size_t>(static_cast<int64_t>(last) - first + 1);
        return true;
    }

    // Hands the content to target, freeing what target held, and leaves this
    // variant empty. target must be initialised.
    void MoveTo(VARIANT& target) noexcept {
        VariantClear(&target);
        target = variant_;
        VariantInit(&variant_);
    }

private:
    VARIANT variant_;
};
