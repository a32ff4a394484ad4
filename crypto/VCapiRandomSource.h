// VCapiRandomSource: random bytes from the system's cryptographic service
// provider (CryptoAPI), and the program's default random source.
#pragma once

#include <windows.h>

#include "IRandomSource.h"
#include "Win32Handle.h"

class VCapiRandomSource : public VUnknown<IRandomSource> {
public:
    // Acquires a verification context of the default RSA provider, which
    // needs no key container. When that fails the error is kept and every
    // fill fails with it.
    VCapiRandomSource();

    // ERROR_SUCCESS when the provider was acquired.
    DWORD GetAcquireError() const { return acquireError_; }

    // Safe to call from several threads at once.
    bool Fill(void* buffer, size_t count) override;
    bool FillDirect(void* buffer, uint32_t count) override;

private:
    CryptProviderHandle provider_;
    DWORD acquireError_ = ERROR_SUCCESS;
};

// The source used when a caller gives none: made on first use, shared by all
// threads, kept for the life of the process.
IRandomSource& GetDefaultRandomSource();
