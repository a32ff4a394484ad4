// IRandomSource: where the protected strings get their random padding.
// VCapiRandomSource is the program's source; tests may give their own.
#pragma once

#include <cstddef>
#include <cstdint>

#include "VUnknown.h"

class IRandomSource : public IUnknown {
public:
    // Fills count bytes at buffer with random bytes. False, with the
    // system's error as the thread's last error, when the source has no
    // provider or the provider fails.
    virtual bool Fill(void* buffer, size_t count) = 0;
    // The same in one call to the provider, whose length is 32 bits.
    virtual bool FillDirect(void* buffer, uint32_t count) = 0;

protected:
    virtual ~IRandomSource() = default;
};
