// Random sources for tests: one whose bytes are known, one that always fails.
#pragma once

#include <windows.h>

#include <cstdint>

#include "IRandomSource.h"

// Gives 0x00, 0x01, 0x02, ... continuing across calls.
class CountingRandomSource : public VUnknown<IRandomSource> {
public:
    bool Fill(void* buffer, size_t count) override {
        auto* bytes = static_cast<uint8_t*>(buffer);
        for (size_t index = 0; index < count; ++index) bytes[index] = next_++;
        return true;
    }
    bool FillDirect(void* buffer, uint32_t count) override { return Fill(buffer, count); }

private:
    uint8_t next_ = 0;
};

// Fails as a provider that could not be acquired does.
class FailingRandomSource : public VUnknown<IRandomSource> {
public:
    static constexpr DWORD Error = NTE_BAD_KEYSET;
    bool Fill(void*, size_t) override {
        SetLastError(Error);
        return false;
    }
    bool FillDirect(void* buffer, uint32_t count) override { return Fill(buffer, count); }
};
