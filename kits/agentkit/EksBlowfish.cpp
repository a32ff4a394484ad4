#include "EksBlowfish.h"

#include <windows.h>

#include <cryptopp/integer.h>

#include <array>
#include <cstring>

namespace {

constexpr size_t StateWords = 18 + 4 * 256;

// Blowfish's initial state is the first 18 + 1024 words of pi's fraction.
// Computing them (Machin's formula, 64 guard bits) once per process is
// cheaper to trust than a transcribed table of a thousand constants.
CryptoPP::Integer ArctanOfInverse(CryptoPP::word x, unsigned bits) {
    using CryptoPP::Integer;
    Integer power = Integer::Power2(bits) / Integer(x);
    Integer sum = power;
    const Integer square(x * x);
    for (CryptoPP::word k = 1; !power.IsZero(); ++k) {
        power /= square;
        const Integer term = power / Integer(2 * k + 1);
        if (k % 2)
            sum -= term;
        else
            sum += term;
    }
    return sum;
}

const std::array<uint32_t, StateWords>& InitialState() {
    static const std::array<uint32_t, StateWords> state = [] {
        using CryptoPP::Integer;
        constexpr unsigned Bits = StateWords * 32 + 64;
        const Integer pi =
            ArctanOfInverse(5, Bits) * Integer(16) - ArctanOfInverse(239, Bits) * Integer(4);
        const Integer fraction = pi - Integer(3) * Integer::Power2(Bits);
        std::array<uint32_t, StateWords> words{};
        for (size_t index = 0; index < StateWords; ++index)
            words[index] = static_cast<uint32_t>(
                (fraction >> static_cast<unsigned>(Bits - 32 * (index + 1))).GetBits(0, 32));
        return words;
    }();
    return state;
}

}  // namespace

uint32_t StreamToWord(const uint8_t* data, size_t count, size_t& position) noexcept {
    uint32_t word = 0;
    for (int index = 0; index < 4; ++index) {
        word = (word << 8) | data[position];
        position = (position + 1) % count;
    }
    return word;
}

EksBlowfish::EksBlowfish() {
    const auto& state = InitialState();
    std::memcpy(p_, state.data(), sizeof p_);
    std::memcpy(s_, state.data() + 18, sizeof s_);
}

// The state is key material.
EksBlowfish::~EksBlowfish() {
    SecureZeroMemory(p_, sizeof p_);
    SecureZeroMemory(s_, sizeof s_);
}

uint32_t EksBlowfish::F(uint32_t x) const noexcept {
    return ((s_[0][x >> 24] + s_[1][(x >> 16) & 0xff]) ^ s_[2][(x >> 8) & 0xff]) + s_[3][x & 0xff];
}

void EksBlowfish::Encrypt(uint32_t& left, uint32_t& right) const noexcept {
    uint32_t l = left ^ p_[0], r = right;
    for (int round = 1; round <= 16; round += 2) {
        r ^= F(l) ^ p_[round];
        l ^= F(r) ^ p_[round + 1];
    }
    left = r ^ p_[17];
    right = l;
}

void EksBlowfish::Reencrypt(const uint8_t* salt, size_t saltBytes) {
    size_t position = 0;
    uint32_t left = 0, right = 0;
    auto next = [&](uint32_t& first, uint32_t& second) {
        if (salt) {
            left ^= StreamToWord(salt, saltBytes, position);
            right ^= StreamToWord(salt, saltBytes, position);
        }
        Encrypt(left, right);
        first = left;
        second = right;
    };
    for (int index = 0; index < 18; index += 2) next(p_[index], p_[index + 1]);
    for (auto& box : s_)
        for (int index = 0; index < 256; index += 2) next(box[index], box[index + 1]);
}

void EksBlowfish::Expand(const uint8_t* salt, size_t saltBytes, const uint8_t* key,
                         size_t keyBytes) {
    size_t position = 0;
    for (uint32_t& word : p_) word ^= StreamToWord(key, keyBytes, position);
    Reencrypt(salt, saltBytes);
}

void EksBlowfish::Expand0(const uint8_t* key, size_t keyBytes) {
    Expand(nullptr, 0, key, keyBytes);
}
