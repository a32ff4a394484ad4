// CryptUtils::Cipher and the table of block ciphers chosen by name:
// "aes128-cbc", "aes192-cbc" and "aes256-cbc" (AES in CBC mode, 16-byte blocks).
//
// A cipher is keyed for one direction, then processes whole blocks; callers
// do their own padding. One cipher object is used by one thread at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "VReportMessageParams.h"

namespace CryptoPP {
class SymmetricCipher;
}

namespace CryptUtils {

class Cipher {
public:
    virtual ~Cipher() = default;

    virtual size_t GetIvSize() const = 0;
    virtual size_t GetKeySize() const = 0;
    virtual size_t GetBlockSize() const = 0;
    // Keys the cipher for enciphering, resp. deciphering. iv holds
    // GetIvSize() bytes and key GetKeySize() bytes. False, with the reason in
    // report, when the library refuses them.
    virtual bool SetEncrypt(const uint8_t* iv, const uint8_t* key,
                            VReportMessageParams& report) = 0;
    virtual bool SetDecrypt(const uint8_t* iv, const uint8_t* key,
                            VReportMessageParams& report) = 0;
    // Processes count bytes from in to out (which may be the same place),
    // carrying the chain on from the previous call. False when count is not a
    // whole number of blocks (ERROR_INVALID_DATA) or the library fails.
    // Throws std::logic_error when the cipher has not been keyed.
    virtual bool Process(const uint8_t* in, uint8_t* out, size_t count,
                         VReportMessageParams& report) = 0;
};

// AES in CBC mode with a key of 128, 192 or 256 bits.
class CipherAes : public Cipher {
public:
    explicit CipherAes(unsigned keyBits);
    ~CipherAes() override;

    size_t GetIvSize() const override;
    size_t GetKeySize() const override { return keyBits_ / 8; }
    size_t GetBlockSize() const override;
    bool SetEncrypt(const uint8_t* iv, const uint8_t* key, VReportMessageParams& report) override;
    bool SetDecrypt(const uint8_t* iv, const uint8_t* key, VReportMessageParams& report) override;
    bool Process(const uint8_t* in, uint8_t* out, size_t count,
                 VReportMessageParams& report) override;

private:
    bool Key(std::unique_ptr<CryptoPP::SymmetricCipher> mode, const uint8_t* iv, const uint8_t* key,
             VReportMessageParams& report);

    unsigned keyBits_;
    std::unique_ptr<CryptoPP::SymmetricCipher> mode_;
};

struct CipherTableEntry {
    const wchar_t* name;
    unsigned keyBits;
    std::unique_ptr<Cipher> (*create)(unsigned keyBits);
};

// The ciphers, in the order a name is looked up.
std::span<const CipherTableEntry> GetCipherTable();

// A new cipher of the first row named name (compared exactly); null when no
// row has that name.
std::unique_ptr<Cipher> CreateCipher(const wchar_t* name);

}  // namespace CryptUtils
