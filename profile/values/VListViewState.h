// VListViewState: the columns of a report-style list view (widths, order,
// sorting), kept as text in a string value, such as "Local ListView State"
// or "Traywell Agent Keys ListView State" (VProfileListViewState).
//
// Text form: "sort,ascending;width,width,...;index,index,...":
//   sort       the column sorted by, -1 for none
//   ascending  1 for ascending, 0 for descending
//   widths     one per column, in pixels, as LVM_GETCOLUMNWIDTH gives them
//   indexes    the display order of the columns, as LVM_GETCOLUMNORDERARRAY
//              gives it: a permutation of 0 .. count - 1
// for example "1,0;200,80,120;0,2,1". The empty text means nothing is saved
// (the list view keeps its own layout). Anything else (blanks, negative
// widths, orders that are no permutation, a sort column beyond the columns)
// is refused.
#pragma once

#include "StateText.h"
#include "VContainers.h"
#include "VProfile2.h"
#include "VProfileSz.h"

struct VListViewState {
    int sortColumn = -1;
    bool sortAscending = true;
    VArray<int> widths;
    VArray<int> order;

    // Whether anything is saved: the empty text has no columns.
    bool IsEmpty() const { return widths.IsEmpty(); }

    // False, with state unchanged, when text is not of the form above.
    static bool Parse(const VUnicodeString& text, VListViewState& state);
    // The empty text for a state without columns.
    VUnicodeString Format() const;

    friend bool operator==(const VListViewState& a, const VListViewState& b) {
        return a.sortColumn == b.sortColumn && a.sortAscending == b.sortAscending &&
               a.widths == b.widths && a.order == b.order;
    }
};

template <>
struct VProfileValueTraits<VListViewState> : VProfileStateTextTraits<VListViewState> {};

using VProfileListViewState = VProfile2<VListViewState, VProfileSz>;
