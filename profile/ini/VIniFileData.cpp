#include "VIniFileData.h"

#include <cstring>

#include "IniFileFormat.h"

namespace {

// The text of view in text, made sensitive first when it must be, so that the
// copy lands in a sensitive block. text keeps its block when it can.
void CopyOut(std::wstring_view view, bool sensitive, VUnicodeString& text) {
    if (sensitive) text.MakeSensitive();
    text.Assign(view.data(), view.size());
}

}  // namespace

bool VIniFileData::GetMultiString(VArray<VUnicodeString>&) const { return false; }
bool VIniFileData::GetBinary(void*, size_t&) const { return false; }
bool VIniFileData::GetString(VUnicodeString&) const { return false; }
bool VIniFileData::GetDword(uint32_t&) const { return false; }

bool VIniFileDataDword::GetDword(uint32_t& value) const {
    value = value_;
    return true;
}

void VIniFileDataDword::AppendTo(VIniFileText& text, std::wstring_view name) const {
    AppendIniDwordEntry(text, name, value_);
}

VIniFileDataString::VIniFileDataString(const VUnicodeString& text)
    : view_(text.c_str(), text.GetLength()), owned_(text) {}

bool VIniFileDataString::GetString(VUnicodeString& text) const {
    if (owned_) {
        text = *owned_;  // shares the block
        return true;
    }
    CopyOut(view_, sensitive_, text);
    return true;
}

void VIniFileDataString::AppendTo(VIniFileText& text, std::wstring_view name) const {
    AppendIniStringEntry(text, name, view_);
}

void VIniFileDataString::MarkSensitive() {
    sensitive_ = true;
    if (owned_ && !owned_->IsSensitive()) {
        owned_->MakeSensitive();
        view_ = std::wstring_view(owned_->c_str(), owned_->GetLength());
    }
}

VIniFileDataBinary::VIniFileDataBinary(const void* bytes, size_t length) {
    const auto* first = static_cast<const uint8_t*>(bytes);
    if (first) owned_.assign(first, first + length);
    bytes_ = owned_;
}

bool VIniFileDataBinary::GetBinary(void* buffer, size_t& size) const {
    if (!buffer) {
        size = bytes_.size();
        return true;
    }
    const bool fits = size >= bytes_.size();
    if (fits && !bytes_.empty()) std::memcpy(buffer, bytes_.data(), bytes_.size());
    size = bytes_.size();
    return fits;
}

void VIniFileDataBinary::AppendTo(VIniFileText& text, std::wstring_view name) const {
    AppendIniBinaryEntry(text, name, bytes_);
}

template <class Visit>
void VIniFileDataStringSz::ForEachString(Visit&& visit) const {
    if (isOwned_) {
        for (const VUnicodeString& string : strings_)
            visit(std::wstring_view(string.c_str(), string.GetLength()));
        return;
    }
    // The reader checked count lines that each begin with a blank.
    const wchar_t* position = lines_.data();
    const wchar_t* const end = position + lines_.size();
    std::wstring_view line;
    for (size_t i = 0; i < count_ && NextIniLine(position, end, line); ++i) visit(line.substr(1));
}

bool VIniFileDataStringSz::GetMultiString(VArray<VUnicodeString>& strings) const {
    if (isOwned_ && !sensitive_) {
        strings = strings_;  // shares the blocks
        return true;
    }
    // Into the caller's strings, which keep their blocks where they can.
    while (strings.GetCount() > count_) strings.RemoveAt(strings.GetCount() - 1);
    while (strings.GetCount() < count_) strings.Add(VUnicodeString());
    size_t index = 0;
    ForEachString([&](std::wstring_view string) { CopyOut(string, sensitive_, strings[index++]); });
    return true;
}

void VIniFileDataStringSz::AppendTo(VIniFileText& text, std::wstring_view name) const {
    AppendIniMultiStringHeader(text, name, count_);
    ForEachString([&](std::wstring_view string) { AppendIniStringLine(text, string); });
}

void VIniFileDataStringSz::MarkSensitive() { sensitive_ = true; }
