// VPaneState: the layout of one pane of a frame window, kept as text in a
// string value. The file-transfer client keeps its explorer frames (folder
// tree beside file list) and the tab bars of its local and remote panes so;
// VExplorerFrameState and VTabState name those uses.
//
// Text form: "shown,position,size", three decimal integers:
//   shown     1 when the pane (folder tree, tab bar) is shown, else 0
//   position  where its divider sits, in pixels from the frame's left or top
//             edge; -1 leaves it to the frame
//   size      the pane's width or height in pixels; -1 leaves it to the frame
// for example "1,-1,200". Nothing else (no blanks) is accepted.
#pragma once

#include "StateText.h"
#include "VProfile2.h"
#include "VProfileSz.h"

struct VPaneState {
    bool shown = true;
    int position = -1;
    int size = -1;

    // False, with state unchanged, when text is not of the form above.
    static bool Parse(const VUnicodeString& text, VPaneState& state);
    VUnicodeString Format() const;

    friend bool operator==(const VPaneState&, const VPaneState&) = default;
};

using VExplorerFrameState = VPaneState;
using VTabState = VPaneState;

template <>
struct VProfileValueTraits<VPaneState> : VProfileStateTextTraits<VPaneState> {};

using VProfileExplorerFrameState = VProfile2<VExplorerFrameState, VProfileSz>;
using VProfileTabState = VProfile2<VTabState, VProfileSz>;
