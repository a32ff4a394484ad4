// Hexadecimal byte strings, and a random source that fails.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>
#include <vector>

#include "IRandomSource.h"

using Bytes = std::vector<uint8_t>;

inline Bytes DecodeHex(const std::string& digits) {
    Bytes bytes;
    for (size_t i = 0; i + 1 < digits.size(); i += 2)
        bytes.push_back(static_cast<uint8_t>(std::stoi(digits.substr(i, 2), nullptr, 16)));
    return bytes;
}

inline std::string EncodeHex(const uint8_t* bytes, size_t count) {
    static const char digits[] = "0123456789abcdef";
    std::string text;
    for (size_t i = 0; i < count; ++i) text += {digits[bytes[i] >> 4], digits[bytes[i] & 15]};
    return text;
}
inline std::string EncodeHex(const Bytes& bytes) { return EncodeHex(bytes.data(), bytes.size()); }

class FailingRandomSource : public VUnknown<IRandomSource> {
public:
    static constexpr DWORD Error = NTE_BAD_KEYSET;
    bool Fill(void*, size_t) override {
        SetLastError(Error);
        return false;
    }
    bool FillDirect(void* buffer, uint32_t count) override { return Fill(buffer, count); }
};
