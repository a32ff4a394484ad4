#include "VPaneState.h"

bool VPaneState::Parse(const VUnicodeString& text, VPaneState& state) {
    VArray<int> numbers;
    if (!StateText::ParseIntegers(text, numbers) || numbers.GetCount() != 3) return false;
    if ((numbers[0] != 0 && numbers[0] != 1) || numbers[1] < -1 || numbers[2] < -1) return false;
    state.shown = numbers[0] == 1;
    state.position = numbers[1];
    state.size = numbers[2];
    return true;
}

VUnicodeString VPaneState::Format() const {
    return StateText::FormatIntegers({shown ? 1 : 0, position, size});
}
