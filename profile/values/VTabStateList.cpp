#include "VTabStateList.h"

bool VTabStateList::Parse(const VUnicodeString& text, VTabStateList& list) {
    VArray<VPaneState> groups;
    if (!text.IsEmpty()) {
        VArray<VUnicodeString> parts = StateText::Split(text, L';');
        // Newer form: every group ends with ";", so the last part is empty.
        // Older form: one group and no ";" at all.
        const bool older = parts.GetCount() == 1;
        if (!older) {
            if (!parts[parts.GetCount() - 1].IsEmpty()) return false;
            parts.RemoveAt(parts.GetCount() - 1);
        }
        for (const VUnicodeString& part : parts) {
            VPaneState group;
            if (!VPaneState::Parse(part, group)) return false;
            groups.Add(group);
        }
    }
    list.groups = groups;
    return true;
}

VUnicodeString VTabStateList::Format() const {
    VUnicodeString text;
    for (const VPaneState& group : groups) text += group.Format() + L";";
    return text;
}
