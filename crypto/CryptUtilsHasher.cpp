#include "CryptUtilsHasher.h"

// MD5 lives in Crypto++'s namespace of weak algorithms, which must be asked for.
#define CRYPTOPP_ENABLE_NAMESPACE_WEAK 1
#include <cryptopp/md5.h>
#include <cryptopp/sha.h>

#include <cwchar>

#include "ConfigMessages.h"
#include "CryptoFailure.h"
#include "ProfileErrors.h"

namespace CryptUtils {

namespace {

template <class Algorithm>
std::unique_ptr<CryptoPP::HashTransformation> Make() {
    return std::make_unique<Algorithm>();
}

struct HashTableEntry {
    const wchar_t* name;
    std::unique_ptr<CryptoPP::HashTransformation> (*create)();
};

constexpr HashTableEntry HashTable[] = {
    {L"md5", Make<CryptoPP::Weak1::MD5>}, {L"sha1", Make<CryptoPP::SHA1>},
    {L"sha224", Make<CryptoPP::SHA224>},  {L"sha256", Make<CryptoPP::SHA256>},
    {L"sha384", Make<CryptoPP::SHA384>},  {L"sha512", Make<CryptoPP::SHA512>},
};

}  // namespace

Hasher::Hasher(const wchar_t* name) {
    for (const HashTableEntry& entry : HashTable) {
        if (name && std::wcscmp(entry.name, name) == 0) {
            hash_ = entry.create();
            return;
        }
    }
    error_.Set(CONFIG_CRYPTO_ALGORITHM_UNKNOWN, VUnicodeString(name));
}

Hasher::~Hasher() = default;

size_t Hasher::GetDigestSize() const { return hash_ ? hash_->DigestSize() : 0; }

bool Hasher::IsValid(VReportMessageParams& report) const {
    report = error_;
    return hash_ != nullptr;
}

bool Hasher::Check(VReportMessageParams& report) const {
    if (hash_) return true;
    report = error_;
    return false;
}

bool Hasher::Update(const void* bytes, size_t count, VReportMessageParams& report) {
    if (!Check(report)) return false;
    try {
        hash_->Update(static_cast<const CryptoPP::byte*>(bytes), count);
        return true;
    } catch (const CryptoPP::Exception& failure) {
        RecordCryptoFailure(report, failure);
        return false;
    }
}

size_t Hasher::Final(void* buffer, size_t capacity, VReportMessageParams& report) {
    if (!Check(report)) return 0;
    const size_t size = hash_->DigestSize();
    if (capacity < size) {
        RecordSystemError(report, ERROR_INSUFFICIENT_BUFFER);
        return 0;
    }
    try {
        // Final also restarts the hash for the next message.
        hash_->Final(static_cast<CryptoPP::byte*>(buffer));
        return size;
    } catch (const CryptoPP::Exception& failure) {
        RecordCryptoFailure(report, failure);
        return 0;
    }
}

}  // namespace CryptUtils
