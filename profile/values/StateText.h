// The pieces of the state texts (pane, tab and list-view states): lists of
// decimal integers separated by commas, grouped by semicolons.
#pragma once

#include "VContainers.h"
#include "VString.h"

// The traits (VProfileValueTraits) of a state kept as its text in a string
// value: T has static bool Parse(text, T&) (false, T unchanged, for a text
// that is not its form), VUnicodeString Format() const and operator==.
template <class T>
struct VProfileStateTextTraits {
    using Stored = VUnicodeString;
    static bool ToStored(const T& value, Stored& out) {
        out = value.Format();
        return true;
    }
    static bool FromStored(const Stored& in, T& value) { return T::Parse(in, value); }
    static bool Equal(const T& a, const T& b) { return a == b; }
};

namespace StateText {

// The parts of text between separators: "a;b;" gives "a", "b" and "". An
// empty text gives one empty part.
VArray<VUnicodeString> Split(const VUnicodeString& text, wchar_t separator);

// The numbers of "n,n,...": each an optional "-" and decimal digits within
// the range of int, nothing else (no blanks). An empty text gives none.
// False, with numbers unchanged, for anything else.
bool ParseIntegers(const VUnicodeString& text, VArray<int>& numbers);

// "n,n,...", the form ParseIntegers reads.
VUnicodeString FormatIntegers(const VArray<int>& numbers);

}  // namespace StateText
