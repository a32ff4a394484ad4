#include "IniTestValues.h"

#include <iomanip>

#include "VIniFileKeyIterator.h"

namespace {

std::string Narrow(const std::wstring& text) {
    std::string narrow;
    for (wchar_t character : text) {
        if (character >= 32 && character < 127) {
            narrow += static_cast<char>(character);
        } else {
            char escaped[12];
            std::snprintf(escaped, sizeof escaped, "\\u%04x", static_cast<unsigned>(character));
            narrow += escaped;
        }
    }
    return narrow;
}

VArray<VUnicodeString> ToArray(const std::vector<std::wstring>& strings) {
    VArray<VUnicodeString> array;
    for (const std::wstring& string : strings) array.Add(VUnicodeString(string.c_str(), string.size()));
    return array;
}

}  // namespace

TestValue TestValue::Dword(uint32_t value) {
    TestValue result;
    result.dword = value;
    return result;
}

TestValue TestValue::String(std::wstring text) {
    TestValue result;
    result.kind = ProfileString;
    result.text = std::move(text);
    return result;
}

TestValue TestValue::Binary(std::vector<uint8_t> bytes) {
    TestValue result;
    result.kind = ProfileBinary;
    result.bytes = std::move(bytes);
    return result;
}

TestValue TestValue::MultiString(std::vector<std::wstring> strings) {
    TestValue result;
    result.kind = ProfileMultiString;
    result.strings = std::move(strings);
    return result;
}

void PrintTo(const TestValue& value, std::ostream* out) {
    switch (value.kind) {
    case ProfileDword: *out << "D " << value.dword; break;
    case ProfileString: *out << "S \"" << Narrow(value.text) << '"'; break;
    case ProfileBinary:
        *out << "B[" << value.bytes.size() << "]";
        for (uint8_t byte : value.bytes) *out << ' ' << std::hex << std::setw(2) << std::setfill('0') << +byte;
        *out << std::dec;
        break;
    case ProfileMultiString:
        *out << "Z{";
        for (const std::wstring& string : value.strings) *out << '"' << Narrow(string) << "\",";
        *out << '}';
        break;
    default: *out << "kind " << value.kind;
    }
}

TestValues ReadAllValues(VProfilePrivateKey& key) {
    TestValues values;
    const auto iterator = key.CreatePrivateKeyIterator(true);
    VUnicodeString name;
    uint32_t kind = 0;
    while (iterator->Next(name, kind)) {
        TestValue value;
        value.kind = kind;
        bool read = false;
        switch (kind) {
        case ProfileDword: read = key.GetDword(name, value.dword); break;
        case ProfileString: {
            VUnicodeString text;
            read = key.GetString(name, text);
            value.text.assign(text.c_str(), text.GetLength());
            break;
        }
        case ProfileBinary: {
            size_t size = 0;
            read = key.GetBinary(name, nullptr, size);
            value.bytes.resize(size);
            read = read && key.GetBinary(name, value.bytes.data(), size) && size == value.bytes.size();
            break;
        }
        case ProfileMultiString: {
            VArray<VUnicodeString> strings;
            read = key.GetMultiString(name, strings);
            for (const VUnicodeString& string : strings) value.strings.emplace_back(string.c_str(), string.GetLength());
            break;
        }
        default: break;
        }
        // A listed value that cannot be read back shows up as a kind of its own.
        if (!read) {
            value = TestValue();
            value.kind = 0xDEAD;
        }
        values[std::wstring(name.c_str(), name.GetLength())] = value;
    }
    return values;
}

bool StoreValue(VProfilePrivateKey& key, const std::wstring& name, const TestValue& value) {
    const VUnicodeString valueName(name.c_str(), name.size());
    switch (value.kind) {
    case ProfileDword: return key.SetDword(valueName, value.dword);
    case ProfileString: return key.SetString(valueName, VUnicodeString(value.text.c_str(), value.text.size()));
    case ProfileBinary: return key.SetBinary(valueName, value.bytes.data(), value.bytes.size());
    case ProfileMultiString: return key.SetMultiString(valueName, ToArray(value.strings));
    default: return false;
    }
}
