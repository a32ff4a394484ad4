#include "VCapiRandomSource.h"

#include <algorithm>

VCapiRandomSource::VCapiRandomSource() {
    HCRYPTPROV provider = 0;
    if (CryptAcquireContextW(&provider, nullptr, nullptr, PROV_RSA_FULL, CRYPT_VERIFYCONTEXT))
        provider_.Reset(provider);
    else
        acquireError_ = GetLastError();
}

bool VCapiRandomSource::FillDirect(void* buffer, uint32_t count) {
    if (!provider_) {
        SetLastError(acquireError_);
        return false;
    }
    return CryptGenRandom(provider_.Get(), count, static_cast<BYTE*>(buffer)) != FALSE;
}

bool VCapiRandomSource::Fill(void* buffer, size_t count) {
    // The provider takes a 32-bit length, so larger requests go in pieces.
    auto* bytes = static_cast<uint8_t*>(buffer);
    do {
        const auto piece = static_cast<uint32_t>(std::min<size_t>(count, UINT32_MAX));
        if (!FillDirect(bytes, piece)) return false;
        bytes += piece;
        count -= piece;
    } while (count > 0);
    return true;
}

IRandomSource& GetDefaultRandomSource() {
    // Never released: the source lives until the process ends.
    static VCapiRandomSource* const source = new VCapiRandomSource();
    return *source;
}
