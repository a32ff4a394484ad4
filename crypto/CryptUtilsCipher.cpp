#include "CryptUtilsCipher.h"

#include <cryptopp/aes.h>
#include <cryptopp/modes.h>

#include <cwchar>
#include <stdexcept>

#include "CryptoFailure.h"
#include "ProfileErrors.h"

namespace CryptUtils {

namespace {

std::unique_ptr<Cipher> MakeAes(unsigned keyBits) { return std::make_unique<CipherAes>(keyBits); }

constexpr CipherTableEntry CipherTable[] = {
    {L"aes128-cbc", 128, MakeAes},
    {L"aes192-cbc", 192, MakeAes},
    {L"aes256-cbc", 256, MakeAes},
};

}  // namespace

CipherAes::CipherAes(unsigned keyBits) : keyBits_(keyBits) {}

CipherAes::~CipherAes() = default;

size_t CipherAes::GetIvSize() const { return CryptoPP::AES::BLOCKSIZE; }

size_t CipherAes::GetBlockSize() const { return CryptoPP::AES::BLOCKSIZE; }

bool CipherAes::SetEncrypt(const uint8_t* iv, const uint8_t* key, VReportMessageParams& report) {
    return Key(std::make_unique<CryptoPP::CBC_Mode<CryptoPP::AES>::Encryption>(), iv, key, report);
}

bool CipherAes::SetDecrypt(const uint8_t* iv, const uint8_t* key, VReportMessageParams& report) {
    return Key(std::make_unique<CryptoPP::CBC_Mode<CryptoPP::AES>::Decryption>(), iv, key, report);
}

bool CipherAes::Key(std::unique_ptr<CryptoPP::SymmetricCipher> mode, const uint8_t* iv,
                    const uint8_t* key, VReportMessageParams& report) {
    try {
        mode->SetKeyWithIV(key, GetKeySize(), iv, GetIvSize());
    } catch (const CryptoPP::Exception& failure) {
        // A cipher that could not take the new key must not go on with the old one.
        mode_.reset();
        RecordCryptoFailure(report, failure);
        return false;
    }
    mode_ = std::move(mode);
    return true;
}

bool CipherAes::Process(const uint8_t* in, uint8_t* out, size_t count,
                        VReportMessageParams& report) {
    if (!mode_) throw std::logic_error("CipherAes::Process before SetEncrypt or SetDecrypt");
    // CBC without padding takes whole blocks only; Crypto++ merely asserts that.
    if (count % GetBlockSize() != 0) {
        RecordSystemError(report, ERROR_INVALID_DATA);
        return false;
    }
    try {
        mode_->ProcessData(out, in, count);
        return true;
    } catch (const CryptoPP::Exception& failure) {
        RecordCryptoFailure(report, failure);
        return false;
    }
}

std::span<const CipherTableEntry> GetCipherTable() { return CipherTable; }

std::unique_ptr<Cipher> CreateCipher(const wchar_t* name) {
    if (!name) return nullptr;
    for (const CipherTableEntry& entry : CipherTable) {
        if (std::wcscmp(entry.name, name) == 0) return entry.create(entry.keyBits);
    }
    return nullptr;
}

}  // namespace CryptUtils
