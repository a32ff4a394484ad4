#include "BcryptPbkdf.h"

#include <cryptopp/sha.h>

#include <algorithm>
#include <cstring>

#include "AgentBytes.h"
#include "EksBlowfish.h"

namespace {

constexpr size_t HashBytes = 32;
constexpr size_t DigestBytes = CryptoPP::SHA512::DIGESTSIZE;

// bcrypt's core on pre-hashed inputs: 64 rounds of the expensive schedule,
// then 64 encryptions of a fixed text. The words come out little-endian.
void BcryptHash(const uint8_t* passDigest, const uint8_t* saltDigest, uint8_t* out) {
    static const char Text[] = "OxychromaticBlowfishSwatDynamite";
    EksBlowfish state;
    state.Expand(saltDigest, DigestBytes, passDigest, DigestBytes);
    for (int round = 0; round < 64; ++round) {
        state.Expand0(saltDigest, DigestBytes);
        state.Expand0(passDigest, DigestBytes);
    }
    uint32_t words[HashBytes / 4];
    size_t position = 0;
    for (uint32_t& word : words)
        word = StreamToWord(reinterpret_cast<const uint8_t*>(Text), HashBytes, position);
    for (int round = 0; round < 64; ++round)
        for (size_t index = 0; index < HashBytes / 4; index += 2)
            state.Encrypt(words[index], words[index + 1]);
    for (size_t index = 0; index < HashBytes / 4; ++index)
        for (int byte = 0; byte < 4; ++byte)
            out[4 * index + byte] = static_cast<uint8_t>(words[index] >> (8 * byte));
    SecureZeroMemory(words, sizeof words);
}

}  // namespace

bool BcryptPbkdf(const uint8_t* passphrase, size_t passphraseBytes, const uint8_t* salt,
                 size_t saltBytes, uint32_t rounds, uint8_t* key, size_t keyBytes) {
    if (rounds < 1 || saltBytes == 0 || keyBytes == 0 || keyBytes > HashBytes * HashBytes)
        return false;
    uint8_t passDigest[DigestBytes], saltDigest[DigestBytes];
    CryptoPP::SHA512().CalculateDigest(passDigest, passphrase, passphraseBytes);

    // Each block of output is spread over the key with this stride, so that
    // every part of the key costs the full work.
    const size_t stride = (keyBytes + HashBytes - 1) / HashBytes;
    const size_t perBlock = (keyBytes + stride - 1) / stride;
    AgentBytes countedSalt(saltBytes + 4);
    std::memcpy(countedSalt.data(), salt, saltBytes);
    uint8_t block[HashBytes], out[HashBytes];
    size_t left = keyBytes;
    for (uint32_t count = 1; left > 0; ++count) {
        for (int byte = 0; byte < 4; ++byte)
            countedSalt[saltBytes + byte] = static_cast<uint8_t>(count >> (24 - 8 * byte));
        CryptoPP::SHA512().CalculateDigest(saltDigest, countedSalt.data(), countedSalt.size());
        BcryptHash(passDigest, saltDigest, block);
        std::memcpy(out, block, HashBytes);
        for (uint32_t round = 1; round < rounds; ++round) {
            CryptoPP::SHA512().CalculateDigest(saltDigest, block, HashBytes);
            BcryptHash(passDigest, saltDigest, block);
            for (size_t index = 0; index < HashBytes; ++index) out[index] ^= block[index];
        }
        size_t taken = 0;
        for (; taken < std::min(perBlock, left); ++taken) {
            const size_t target = taken * stride + (count - 1);
            if (target >= keyBytes) break;
            key[target] = out[taken];
        }
        left -= taken;
    }
    SecureZeroMemory(passDigest, sizeof passDigest);
    SecureZeroMemory(saltDigest, sizeof saltDigest);
    SecureZeroMemory(block, sizeof block);
    SecureZeroMemory(out, sizeof out);
    return true;
}
