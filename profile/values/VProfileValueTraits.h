// How a value type of VProfile2<T, Base> maps to the form its storage kind
// keeps in the key (Base::Stored: a text, a list of texts, a byte block).
// Each value type specialises VProfileValueTraits<T> beside its own
// definition, with:
//
//   using Stored = ...;                                  // Base::Stored
//   static bool ToStored(const T& value, Stored& out);   // false: no stored form
//   static bool FromStored(const Stored& in, T& value);  // false: malformed; value unchanged
//   static bool Equal(const T& a, const T& b);           // what IsChanged compares
#pragma once

#include "VContainers.h"
#include "VString.h"

using VStringArray = VArray<VUnicodeString>;

template <class T>
struct VProfileValueTraits;

// The types that are their own stored form.
template <class T>
struct VProfileIdentityTraits {
    using Stored = T;
    static bool ToStored(const T& value, Stored& out) {
        out = value;
        return true;
    }
    static bool FromStored(const Stored& in, T& value) {
        value = in;
        return true;
    }
    // Texts compare exactly, case included.
    static bool Equal(const T& a, const T& b) { return a == b; }
};

template <>
struct VProfileValueTraits<VUnicodeString> : VProfileIdentityTraits<VUnicodeString> {};

template <>
struct VProfileValueTraits<VStringArray> : VProfileIdentityTraits<VStringArray> {};
