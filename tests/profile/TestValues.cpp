#include "TestValues.h"

#include <gtest/gtest.h>

#include "VProfilePrivate.h"

void PrintTo(const TestValue& value, std::ostream* out) {
    switch (value.kind) {
    case ProfileDword: *out << "D " << value.dword; break;
    case ProfileString: *out << "S " << testing::PrintToString(value.text); break;
    case ProfileBinary: *out << "B " << testing::PrintToString(value.bytes); break;
    case ProfileMultiString: *out << "Z " << testing::PrintToString(value.strings); break;
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
    case ProfileMultiString: {
        VArray<VUnicodeString> strings;
        for (const std::wstring& string : value.strings) strings.Add(VUnicodeString(string.c_str(), string.size()));
        return key.SetMultiString(valueName, strings);
    }
    default: return false;
    }
}
