#include "VCipherBlowfish.h"

#include <cryptopp/blowfish.h>

VCipherBlowfish::VCipherBlowfish(const uint8_t* key, size_t keySize)
    : encryption_(std::make_unique<CryptoPP::Blowfish::Encryption>(key, keySize)),
      decryption_(std::make_unique<CryptoPP::Blowfish::Decryption>(key, keySize)) {}

VCipherBlowfish::~VCipherBlowfish() = default;

bool VCipherBlowfish::Encipher(uint8_t* bytes, size_t count) const {
    return Apply(*encryption_, bytes, count);
}

bool VCipherBlowfish::Decipher(uint8_t* bytes, size_t count) const {
    return Apply(*decryption_, bytes, count);
}

bool VCipherBlowfish::Apply(const CryptoPP::BlockTransformation& direction, uint8_t* bytes,
                            size_t count) {
    if (count % BlockSize != 0) return false;
    for (size_t offset = 0; offset < count; offset += BlockSize)
        direction.ProcessBlock(bytes + offset);
    return true;
}
