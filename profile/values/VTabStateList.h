// VTabStateList: the tab bars of the terminal client's window, one pane state
// (VPaneState) per tab group, kept as text in a string value
// ("Termwright Tab State V2").
//
// Text form: each group's "shown,position,size" followed by ";", for example
// "1,1,0;" or "1,1,0;0,-1,-1;"; the empty text is no group. The older form
// ("Termwright Tab State") is a single group without the ";" and is read as a
// list of that one group, which is how the older value is carried into the
// newer one.
#pragma once

#include "VContainers.h"
#include "VPaneState.h"

struct VTabStateList {
    VArray<VPaneState> groups;

    // False, with list unchanged, when text is of neither form.
    static bool Parse(const VUnicodeString& text, VTabStateList& list);
    // Always the newer form.
    VUnicodeString Format() const;

    friend bool operator==(const VTabStateList& a, const VTabStateList& b) {
        return a.groups == b.groups;
    }
};

template <>
struct VProfileValueTraits<VTabStateList> : VProfileStateTextTraits<VTabStateList> {};

using VProfileTabStateList = VProfile2<VTabStateList, VProfileSz>;
