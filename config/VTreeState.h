// VTreeState: which nodes of an options tree are expanded, kept as text in a
// string value ("Global Options Tree State", "Session Options Tree State").
//
// Text form: one character per node in display order, "1" for an expanded
// node and "0" for a collapsed one, for example "1001000100". Nodes beyond
// the text are collapsed; the empty text is a tree with nothing expanded.
// Any other character is refused.
#pragma once

#include "StateText.h"
#include "VContainers.h"
#include "VProfile2.h"
#include "VProfileSz.h"

struct VTreeState {
    VArray<bool> expanded;

    // False, with state unchanged, when text is not of the form above.
    static bool Parse(const VUnicodeString& text, VTreeState& state);
    VUnicodeString Format() const;

    friend bool operator==(const VTreeState& a, const VTreeState& b) {
        return a.expanded == b.expanded;
    }
};

template <>
struct VProfileValueTraits<VTreeState> : VProfileStateTextTraits<VTreeState> {};

using VProfileTreeState = VProfile2<VTreeState, VProfileSz>;
