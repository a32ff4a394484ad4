#include "VIniFileData.h"

#include <cstring>

#include "IniFileFormat.h"
#include "VTextFile.h"

bool VIniFileData::GetMultiString(VArray<VUnicodeString>&) const { return false; }
bool VIniFileData::GetBinary(void*, size_t&) const { return false; }
bool VIniFileData::GetString(VUnicodeString&) const { return false; }
bool VIniFileData::GetDword(uint32_t&) const { return false; }
bool VIniFileData::SetMultiString(const VArray<VUnicodeString>&) { return false; }
bool VIniFileData::SetBinary(const void*, size_t) { return false; }
bool VIniFileData::SetString(const VUnicodeString&) { return false; }
bool VIniFileData::SetDword(uint32_t) { return false; }

bool VIniFileDataDword::GetDword(uint32_t& value) const {
    value = value_;
    return true;
}

bool VIniFileDataDword::SetDword(uint32_t value) {
    value_ = value;
    return true;
}

bool VIniFileDataDword::WriteToFile(VTextFile& file, std::wstring_view name) const {
    return file.Write(FormatIniDwordEntry(name, value_));
}

bool VIniFileDataString::GetString(VUnicodeString& text) const {
    text = text_;
    return true;
}

bool VIniFileDataString::SetString(const VUnicodeString& text) {
    text_ = text;
    return true;
}

bool VIniFileDataString::WriteToFile(VTextFile& file, std::wstring_view name) const {
    return file.Write(FormatIniStringEntry(name, text_));
}

VIniFileDataBinary::VIniFileDataBinary(const void* bytes, size_t length) { SetBinary(bytes, length); }

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

bool VIniFileDataBinary::SetBinary(const void* bytes, size_t length) {
    const auto* first = static_cast<const uint8_t*>(bytes);
    bytes_.assign(first, first + (first ? length : 0));
    return true;
}

bool VIniFileDataBinary::WriteToFile(VTextFile& file, std::wstring_view name) const {
    return file.Write(FormatIniBinaryEntry(name, bytes_.data(), bytes_.size()));
}

bool VIniFileDataStringSz::GetMultiString(VArray<VUnicodeString>& strings) const {
    strings = strings_;
    return true;
}

bool VIniFileDataStringSz::SetMultiString(const VArray<VUnicodeString>& strings) {
    strings_ = strings;
    return true;
}

bool VIniFileDataStringSz::WriteToFile(VTextFile& file, std::wstring_view name) const {
    return file.Write(FormatIniMultiStringEntry(name, strings_));
}
