#include "VListViewState.h"

#include <algorithm>
#include <vector>

namespace {

bool IsPermutation(const VArray<int>& order) {
    std::vector<bool> seen(order.GetCount(), false);
    for (const int index : order) {
        if (index < 0 || static_cast<size_t>(index) >= seen.size() || seen[index]) return false;
        seen[index] = true;
    }
    return true;
}

}  // namespace

bool VListViewState::Parse(const VUnicodeString& text, VListViewState& state) {
    if (text.IsEmpty()) {
        state = VListViewState();
        return true;
    }
    const VArray<VUnicodeString> parts = StateText::Split(text, L';');
    VArray<int> sorting;
    VListViewState read;
    if (parts.GetCount() != 3 || !StateText::ParseIntegers(parts[0], sorting) ||
        sorting.GetCount() != 2 || !StateText::ParseIntegers(parts[1], read.widths) ||
        !StateText::ParseIntegers(parts[2], read.order))
        return false;
    const int columns = static_cast<int>(read.widths.GetCount());
    read.sortColumn = sorting[0];
    const bool widthsValid =
        std::all_of(read.widths.begin(), read.widths.end(), [](int width) { return width >= 0; });
    if (columns == 0 || !widthsValid || read.order.GetCount() != read.widths.GetCount() ||
        !IsPermutation(read.order) || read.sortColumn < -1 || read.sortColumn >= columns ||
        (sorting[1] != 0 && sorting[1] != 1))
        return false;
    read.sortAscending = sorting[1] == 1;
    state = read;
    return true;
}

VUnicodeString VListViewState::Format() const {
    if (IsEmpty()) return VUnicodeString();
    return StateText::FormatIntegers({sortColumn, sortAscending ? 1 : 0}) + L";" +
           StateText::FormatIntegers(widths) + L";" + StateText::FormatIntegers(order);
}
