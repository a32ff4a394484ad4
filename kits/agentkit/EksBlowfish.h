// The Blowfish cipher with its key schedule opened up, as the expensive key
// schedule of bcrypt-pbkdf needs it: the initial state, the keyed expansion
// with and without a salt, and the plain block encryption. Any thread; one
// object per thread.
#pragma once

#include <cstddef>
#include <cstdint>

class EksBlowfish {
public:
    // The initial state: the fractional hexadecimal digits of pi.
    EksBlowfish();
    ~EksBlowfish();
    EksBlowfish(const EksBlowfish&) = delete;
    EksBlowfish& operator=(const EksBlowfish&) = delete;

    // Mixes key into the state, then re-encrypts it with the salt's words
    // folded in. Expand0 is the same without a salt; on a fresh state it is
    // Blowfish's own key schedule. Keys and salts of 1 byte and more.
    void Expand(const uint8_t* salt, size_t saltBytes, const uint8_t* key, size_t keyBytes);
    void Expand0(const uint8_t* key, size_t keyBytes);

    void Encrypt(uint32_t& left, uint32_t& right) const noexcept;

private:
    uint32_t F(uint32_t x) const noexcept;
    void Reencrypt(const uint8_t* salt, size_t saltBytes);

    uint32_t p_[18];
    uint32_t s_[4][256];
};

// The next big-endian word of data taken cyclically from position.
uint32_t StreamToWord(const uint8_t* data, size_t count, size_t& position) noexcept;
