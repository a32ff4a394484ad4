// The values the store benchmarks load and save: shaped like a session's,
// the same for both back ends, with the loops that set and read them all.
#pragma once

#include <cstdint>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

#include "VProfilePrivate.h"

struct Value {
    std::wstring name;
    VUnicodeString valueName;  // made once, as a typed value holds its name
    VProfileValueKind kind;
    uint32_t number;
    std::wstring text;
    std::vector<uint8_t> bytes;
    std::vector<std::wstring> strings;
};

inline VUnicodeString V(const std::wstring& text) {
    return VUnicodeString(text.c_str(), text.size());
}

// Values shaped like a session's: mostly numbers and short strings, some
// binary blocks (fonts, window places) and a few lists, some non-ASCII text.
inline std::vector<Value> SessionLikeValues(size_t count, uint32_t seed) {
    static const wchar_t* const words[] = {
        L"Auto",   L"Reconnect", L"Window", L"Font",     L"Color",  L"Tab",
        L"Keep",   L"Alive",     L"Proxy",  L"Terminal", L"Scroll", L"Transfer",
        L"Cipher", L"Log",       L"File",   L"Host",     L"Port",   L"Use"};
    std::mt19937 random(seed);
    std::vector<Value> values;
    for (size_t i = 0; i < count; ++i) {
        Value value{};
        value.name = std::wstring(words[random() % 18]) + L" " + words[random() % 18] + L" " +
                     std::to_wstring(i);
        value.valueName = V(value.name);
        const uint32_t pick = random() % 20;
        if (pick < 9) {
            value.kind = ProfileDword;
            value.number = random() % 3 ? random() % 100 : random();
        } else if (pick < 17) {
            value.kind = ProfileString;
            value.text = L"host-" + std::to_wstring(random() % 1000) + L".example.com";
            if (pick == 16)
                value.text = L"C:\\Users\\Zo\u00eb\\Documents\\Sessions\\log-" +
                             std::to_wstring(i) + L".txt";
        } else if (pick < 19) {
            value.kind = ProfileBinary;
            value.bytes.resize(8 + random() % 57);
            for (uint8_t& byte : value.bytes) byte = static_cast<uint8_t>(random());
        } else {
            value.kind = ProfileMultiString;
            for (uint32_t n = 1 + random() % 4; n > 0; --n)
                value.strings.push_back(L"cd /var/log/" + std::to_wstring(n));
        }
        values.push_back(std::move(value));
    }
    return values;
}

inline void Store(VProfilePrivateKey& key, const std::vector<Value>& values) {
    for (const Value& value : values) {
        switch (value.kind) {
            case ProfileDword:
                key.SetDword(V(value.name), value.number);
                break;
            case ProfileString:
                key.SetString(V(value.name), V(value.text));
                break;
            case ProfileBinary:
                key.SetBinary(V(value.name), value.bytes.data(), value.bytes.size());
                break;
            default: {
                VArray<VUnicodeString> strings;
                for (const std::wstring& string : value.strings) strings.Add(V(string));
                key.SetMultiString(V(value.name), strings);
            }
        }
    }
}

// Where the readers below put what they read, kept by the caller between
// reads so that a loop measures the reads, not allocations.
struct ReadScratch {
    uint32_t number = 0;
    VUnicodeString text;
    VArray<VUnicodeString> strings;
    uint8_t buffer[256];
};

// Reads one value with the getter of its kind; whether it was read. Key is a
// private key or the public VProfileKey, which counts binary sizes in 32 bits.
template <class Key>
bool ReadValueOfKind(Key& key, const VUnicodeString& name, uint32_t kind, ReadScratch& scratch) {
    switch (kind) {
        case ProfileDword:
            return key.GetDword(name, scratch.number);
        case ProfileString:
            return key.GetString(name, scratch.text);
        case ProfileBinary: {
            std::conditional_t<std::is_base_of_v<VProfilePrivateKey, Key>, size_t, uint32_t> size =
                sizeof scratch.buffer;
            return key.GetBinary(name, scratch.buffer, size);
        }
        default:
            return key.GetMultiString(name, scratch.strings);
    }
}

// Reads every value; the number read (a check that the load was complete).
inline size_t LoadAll(VProfilePrivateKey& key, const std::vector<Value>& values) {
    size_t read = 0;
    ReadScratch scratch;
    for (const Value& value : values)
        read += ReadValueOfKind(key, value.valueName, value.kind, scratch);
    return read;
}
