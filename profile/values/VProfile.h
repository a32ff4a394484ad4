// VProfile<T>: the scalar typed values (switches, counts, sizes, colours),
// each kept as a 32-bit number value of a profile key: widened to 32 bits on
// writing and narrowed on reading (a switch is true for any number but 0).
//
// Each instance hands out its value as one variant type and takes a variant
// in through VariantChangeType to another; the differences are deliberate and
// kept, as the option dialogs and importers of the family rely on them:
//
//   T               out        in
//   unsigned char   VT_UI1     VT_I1     a byte goes out unsigned, comes in signed
//   short           VT_I2      VT_I2
//   unsigned short  VT_UI2     VT_UI2
//   int             VT_INT     VT_UI4    so a negative number is refused coming in
//   unsigned int    VT_UINT    VT_UI4
//   unsigned long   VT_UI4     VT_UI4
//   bool            VT_BOOL    VT_BOOL   true goes out as 1, not VARIANT_TRUE (-1)
//
// VariantChangeType copies the bits between the signed and unsigned types of
// one size rather than checking the range, so a value's own variant comes
// back whole (VT_UI1 200 through VT_I1; VT_INT or VT_I4 -5 through VT_UI4),
// while a negative number of another width or a text ("-5") is refused.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <type_traits>

#include "VProfileDword.h"
#include "VProfileValue.h"
#include "VVariant.h"

// The scalar types: stored as the key's 32-bit number, exchanged as the
// variant types VariantOut and VariantIn (Put and Take reach the member).
template <class T, VARTYPE Out, VARTYPE In>
struct VProfileScalarTraits {
    using Stored = uint32_t;
    static constexpr VARTYPE VariantOut = Out;
    static constexpr VARTYPE VariantIn = In;
    // Conversion to unsigned is modulo 2^32: a negative short is sign-extended.
    static bool ToStored(const T& value, Stored& out) {
        out = static_cast<Stored>(value);
        return true;
    }
    static bool FromStored(const Stored& in, T& value) {
        value = static_cast<T>(in);
        return true;
    }
    static bool Equal(const T& a, const T& b) { return a == b; }
};

template <>
struct VProfileValueTraits<unsigned char> : VProfileScalarTraits<unsigned char, VT_UI1, VT_I1> {
    static void Put(VARIANT& variant, unsigned char value) { V_UI1(&variant) = value; }
    static unsigned char Take(const VARIANT& variant) {
        return static_cast<unsigned char>(V_I1(&variant));
    }
};

template <>
struct VProfileValueTraits<short> : VProfileScalarTraits<short, VT_I2, VT_I2> {
    static void Put(VARIANT& variant, short value) { V_I2(&variant) = value; }
    static short Take(const VARIANT& variant) { return V_I2(&variant); }
};

template <>
struct VProfileValueTraits<unsigned short> : VProfileScalarTraits<unsigned short, VT_UI2, VT_UI2> {
    static void Put(VARIANT& variant, unsigned short value) { V_UI2(&variant) = value; }
    static unsigned short Take(const VARIANT& variant) { return V_UI2(&variant); }
};

template <>
struct VProfileValueTraits<int> : VProfileScalarTraits<int, VT_INT, VT_UI4> {
    static void Put(VARIANT& variant, int value) { V_INT(&variant) = value; }
    static int Take(const VARIANT& variant) { return static_cast<int>(V_UI4(&variant)); }
};

template <>
struct VProfileValueTraits<unsigned int> : VProfileScalarTraits<unsigned int, VT_UINT, VT_UI4> {
    static void Put(VARIANT& variant, unsigned int value) { V_UINT(&variant) = value; }
    static unsigned int Take(const VARIANT& variant) { return V_UI4(&variant); }
};

template <>
struct VProfileValueTraits<unsigned long> : VProfileScalarTraits<unsigned long, VT_UI4, VT_UI4> {
    static void Put(VARIANT& variant, unsigned long value) { V_UI4(&variant) = value; }
    static unsigned long Take(const VARIANT& variant) { return V_UI4(&variant); }
};

template <>
struct VProfileValueTraits<bool> : VProfileScalarTraits<bool, VT_BOOL, VT_BOOL> {
    static bool ToStored(const bool& value, Stored& out) {
        out = value ? 1 : 0;
        return true;
    }
    static bool FromStored(const Stored& in, bool& value) {
        value = in != 0;
        return true;
    }
    static void Put(VARIANT& variant, bool value) { V_BOOL(&variant) = value ? 1 : 0; }
    static bool Take(const VARIANT& variant) { return V_BOOL(&variant) != 0; }
};

template <class T>
class VProfile : public VProfileValue<T, VProfileDword> {
    using Traits = VProfileValueTraits<T>;

public:
    // Every type but bool parses text in a radix.
    static constexpr bool IsIntegral = !std::is_same_v<T, bool>;

    // current = saved = defaultValue; SetFromText parses in radix.
    explicit VProfile(const VUnicodeString& name, T defaultValue = T(),
                      int radix = 10) requires IsIntegral
        : VProfileValue<T, VProfileDword>(name, defaultValue),
          radix_(radix) {}
    explicit VProfile(const VUnicodeString& name, T defaultValue = T()) requires(!IsIntegral)
        : VProfileValue<T, VProfileDword>(name, defaultValue), radix_(0) {}

    int GetRadix() const { return radix_; }

    // Slot 1. A number parses text with strtol in the radix, as the family's
    // text forms always have: no range check, junk reads as 0, and a number
    // beyond 32-bit long saturates. A switch reads its value from source
    // instead (the source's success). Either way the value becomes the saved
    // one and is not modified.
    bool SetFromText(IProfileDataSource& source, const char* text) override {
        if constexpr (IsIntegral) {
            if (!text) return this->NotConvertible(source.GetLastErrorParams());
            this->Set(static_cast<T>(std::strtol(text, nullptr, radix_)));
            this->TakeCurrentAsSaved();
            return true;
        } else {
            const bool read = this->Read(source);
            this->TakeCurrentAsSaved();
            return read;
        }
    }

    bool Save(VProfileKey& key, bool force) override {  // slot 2
        if (!this->NeedsSave(force)) return true;
        uint32_t number;
        Traits::ToStored(this->Get(), number);
        if (!this->WriteNumber(key, number)) return false;
        this->TakeSaved();
        return true;
    }

    bool GetVariant(VARIANT& variant, VReportMessageParams&) const override {  // slot 10
        VariantClear(&variant);
        V_VT(&variant) = Traits::VariantOut;
        Traits::Put(variant, this->Get());
        return true;
    }

    bool SetVariant(const VARIANT& variant, VReportMessageParams& report) override {  // slot 14
        VVariant converted;
        if (!converted.ChangeTypeFrom(variant, Traits::VariantIn))
            return this->NotConvertible(report);
        this->Set(Traits::Take(converted.Get()));
        return true;
    }

    // current = saved = the number kept under the name; not modified. False
    // when the key is not open or holds no such number.
    bool Load(VProfileKey& key) { return LoadUnder(key, this->GetName()); }
    // Load, taking defaultValue as current and saved when absent; false then.
    bool Load(VProfileKey& key, T defaultValue) {
        return this->LoadOrDefaultUsing(defaultValue, Loader(key));
    }
    // Loads under the present name, else under formerName (the name an older
    // version used), else takes defaultValue; true when a value was found.
    // Found under formerName, the value is modified, and the next Save writes
    // it under the present name and deletes the former value.
    bool LoadWithFormerName(VProfileKey& key, const VUnicodeString& formerName, T defaultValue) {
        return this->LoadWithFormerNameOrDefaultUsing(formerName, defaultValue, Loader(key));
    }

private:
    auto Loader(VProfileKey& key) {
        return [this, &key](const VUnicodeString& name, bool) { return LoadUnder(key, name); };
    }

    bool LoadUnder(VProfileKey& key, const VUnicodeString& name) {
        uint32_t number;
        if (!this->ReadNumber(key, name, number)) return false;
        T value;
        Traits::FromStored(number, value);
        this->TakeLoaded(value);
        return true;
    }

    int radix_;  // 0 for bool, which parses no text
};

extern template class VProfile<unsigned char>;
extern template class VProfile<short>;
extern template class VProfile<unsigned short>;
extern template class VProfile<int>;
extern template class VProfile<unsigned int>;
extern template class VProfile<unsigned long>;
extern template class VProfile<bool>;
