// IHasher: a message digest chosen by name, fed in pieces and finished into a
// caller's buffer. CryptUtils::Hasher implements it over Crypto++.
#pragma once

#include <cstddef>

#include "VReportMessageParams.h"
#include "VUnknown.h"

class IHasher : public IUnknown {
public:
    // Bytes in a finished digest; 0 when the hasher has no algorithm.
    virtual size_t GetDigestSize() const = 0;
    // Whether the hasher has an algorithm; the report recorded when it was
    // made (code 0 when all went well) is copied into report either way.
    virtual bool IsValid(VReportMessageParams& report) const = 0;
    // Feeds count bytes. False, with the reason in report, on failure.
    virtual bool Update(const void* bytes, size_t count, VReportMessageParams& report) = 0;
    // Writes the digest of everything fed since the last Final into buffer
    // (capacity bytes) and restarts, so the hasher can be fed again. Returns
    // the digest's size, or 0 with the reason in report (no algorithm, a
    // buffer too small, a failure of the library).
    virtual size_t Final(void* buffer, size_t capacity, VReportMessageParams& report) = 0;

protected:
    virtual ~IHasher() = default;
};
