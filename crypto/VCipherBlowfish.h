// VCipherBlowfish: Blowfish with a fixed key, block by block (no chaining).
// Only the older fixed-key protected form (VBlowfishString) uses it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

namespace CryptoPP {
class BlockTransformation;
}

class VCipherBlowfish {
public:
    static constexpr size_t BlockSize = 8;

    // key holds keySize bytes (4 to 56).
    VCipherBlowfish(const uint8_t* key, size_t keySize);
    ~VCipherBlowfish();
    VCipherBlowfish(const VCipherBlowfish&) = delete;
    VCipherBlowfish& operator=(const VCipherBlowfish&) = delete;

    // Enciphers, resp. deciphers, count bytes in place. False, with nothing
    // changed, when count is not a whole number of blocks.
    bool Encipher(uint8_t* bytes, size_t count) const;
    bool Decipher(uint8_t* bytes, size_t count) const;

private:
    static bool Apply(const CryptoPP::BlockTransformation& direction, uint8_t* bytes, size_t count);

    std::unique_ptr<CryptoPP::BlockTransformation> encryption_;
    std::unique_ptr<CryptoPP::BlockTransformation> decryption_;
};
