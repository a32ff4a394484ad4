// A VARIANT with one owner: initialised on construction and cleared (which
// frees a BSTR or SAFEARRAY it holds) when it goes away.
#pragma once

#include <windows.h>
#include <oleauto.h>

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
