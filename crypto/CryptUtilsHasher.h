// CryptUtils::Hasher: the message digests the protected strings use, chosen
// by name: "md5", "sha1", "sha224", "sha256", "sha384" and "sha512".
#pragma once

#include <memory>

#include "IHasher.h"

namespace CryptoPP {
class HashTransformation;
}

namespace CryptUtils {

// The algorithm of a hasher made without a name.
inline constexpr wchar_t DefaultHashName[] = L"sha256";

class Hasher : public VUnknown<IHasher> {
public:
    // A hasher of the named algorithm. An unknown name gives a hasher without
    // one: IsValid is false and reports CONFIG_CRYPTO_ALGORITHM_UNKNOWN.
    explicit Hasher(const wchar_t* name = DefaultHashName);

    size_t GetDigestSize() const override;
    bool IsValid(VReportMessageParams& report) const override;
    bool Update(const void* bytes, size_t count, VReportMessageParams& report) override;
    size_t Final(void* buffer, size_t capacity, VReportMessageParams& report) override;

protected:
    ~Hasher() override;

private:
    // Fills report and returns false when there is no algorithm.
    bool Check(VReportMessageParams& report) const;

    std::unique_ptr<CryptoPP::HashTransformation> hash_;
    VReportMessageParams error_;
};

}  // namespace CryptUtils
