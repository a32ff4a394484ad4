#include "VTreeState.h"

bool VTreeState::Parse(const VUnicodeString& text, VTreeState& state) {
    VArray<bool> expanded;
    for (size_t i = 0; i < text.GetLength(); ++i) {
        const wchar_t node = text[i];
        if (node != L'0' && node != L'1') return false;
        expanded.Add(node == L'1');
    }
    state.expanded = expanded;
    return true;
}

VUnicodeString VTreeState::Format() const {
    VUnicodeString text;
    for (const bool node : expanded) text += node ? L'1' : L'0';
    return text;
}
