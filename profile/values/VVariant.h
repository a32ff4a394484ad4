// A VARIANT with one owner: initialised on construction and cleared (which
// frees a BSTR or SAFEARRAY it holds) when it goes away; and the forms in
// which the typed values exchange texts, lists of texts and byte blocks.
#pragma once

#include <windows.h>

#include <oleauto.h>  // after windows.h, which it needs

#include <cstdint>
#include <vector>

#include "VContainers.h"
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
    bool ChangeTypeFrom(const VARIANT& source, VARTYPE vt) noexcept;
    // Hands the content to target, freeing what target held, and leaves this
    // variant empty. target must be initialised.
    void MoveTo(VARIANT& target) noexcept;

    // The setters replace the content and throw std::bad_alloc when out of
    // memory. The readers give false, with their output unchanged, when
    // source holds no such form.

    // A VT_BSTR (a BSTR carries its length, so embedded zeros survive).
    void SetText(const VUnicodeString& text);
    // The text of source converted to VT_BSTR.
    static bool TextOf(const VARIANT& source, VUnicodeString& text);

    // A zero-based one-dimensional array of BSTR (VT_ARRAY | VT_BSTR).
    void SetTexts(const VArray<VUnicodeString>& texts);
    // A one-dimensional array of BSTR, or of variants that each convert to text.
    static bool TextsOf(const VARIANT& source, VArray<VUnicodeString>& texts);

    // A zero-based one-dimensional array of bytes (VT_ARRAY | VT_UI1).
    void SetBytes(const std::vector<uint8_t>& bytes);
    static bool BytesOf(const VARIANT& source, std::vector<uint8_t>& bytes);

private:
    VARIANT variant_;
};
