// Test-side picture of a key's values: plain std types that GoogleTest can
// compare and print, filled through the key's own interface.
#pragma once

#include <cstdint>
#include <map>
#include <ostream>
#include <string>
#include <vector>

#include "VProfilePrivate.h"

struct TestValue {
    uint32_t kind = ProfileDword;
    uint32_t dword = 0;
    std::wstring text;
    std::vector<uint8_t> bytes;
    std::vector<std::wstring> strings;

    bool operator==(const TestValue& other) const = default;
};
void PrintTo(const TestValue& value, std::ostream* out);

inline TestValue D(uint32_t value) { return {ProfileDword, value, {}, {}, {}}; }
inline TestValue S(std::wstring text) { return {ProfileString, 0, std::move(text), {}, {}}; }
inline TestValue B(std::vector<uint8_t> bytes) { return {ProfileBinary, 0, {}, std::move(bytes), {}}; }
inline TestValue Z(std::vector<std::wstring> strings) { return {ProfileMultiString, 0, {}, {}, std::move(strings)}; }

using TestValues = std::map<std::wstring, TestValue>;

// Every value the key lists, read back with the getter of its kind.
TestValues ReadAllValues(VProfilePrivateKey& key);
// Stores value with the setter of its kind; the setter's result.
bool StoreValue(VProfilePrivateKey& key, const std::wstring& name, const TestValue& value);
