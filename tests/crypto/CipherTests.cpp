// The cipher table and CryptUtils::CipherAes against NIST SP 800-38A and
// RFC 3602 as Crypto++ ships them; its failure results.

#include <gtest/gtest.h>

#include <stdexcept>

#include "CryptUtilsCipher.h"
#include "CryptoTestVectors.h"

namespace {

const wchar_t* CipherNameForKey(size_t keyBytes) {
    return keyBytes == 16   ? L"aes128-cbc"
           : keyBytes == 24 ? L"aes192-cbc"
           : keyBytes == 32 ? L"aes256-cbc"
                            : nullptr;
}

// in processed by a cipher of the given key length, keyed for one direction,
// in two calls split at a block boundary (the chain must carry over).
Bytes Processed(const Bytes& key, const Bytes& iv, const Bytes& in, bool encrypt) {
    std::unique_ptr<CryptUtils::Cipher> cipher =
        CryptUtils::CreateCipher(CipherNameForKey(key.size()));
    EXPECT_NE(cipher, nullptr);
    if (!cipher) return {};
    VReportMessageParams report;
    EXPECT_TRUE(encrypt ? cipher->SetEncrypt(iv.data(), key.data(), report)
                        : cipher->SetDecrypt(iv.data(), key.data(), report));
    Bytes out(in.size());
    const size_t split = in.size() / 32 * 16;
    EXPECT_TRUE(cipher->Process(in.data(), out.data(), split, report));
    EXPECT_TRUE(cipher->Process(in.data() + split, out.data() + split, in.size() - split, report));
    return out;
}

}  // namespace

TEST(CipherTableTest, OffersTheThreeAesSizesByExactNameOnly) {
    for (size_t keyBytes : {16u, 24u, 32u}) {
        std::unique_ptr<CryptUtils::Cipher> cipher =
            CryptUtils::CreateCipher(CipherNameForKey(keyBytes));
        ASSERT_NE(cipher, nullptr) << keyBytes;
        EXPECT_EQ(cipher->GetKeySize(), keyBytes);
        EXPECT_EQ(cipher->GetIvSize(), 16u);
    }
    for (const wchar_t* other :
         {L"AES256-CBC", L"aes256-cbc ", L"aes256", L"aes512-cbc", L"aes256-ctr", L"", L"blowfish"})
        EXPECT_EQ(CryptUtils::CreateCipher(other), nullptr) << other;
    EXPECT_EQ(CryptUtils::CreateCipher(nullptr), nullptr);
}

TEST(CipherAesTest, AgreesWithTheNistAndRfcCbcVectorsBothWays) {
    int checked = 0;
    for (const CryptoTestCase& vector : ReadTestVectorFile("aes.txt")) {
        if (vector.Text("Name") != "AES/CBC" || vector.test != "Encrypt") continue;
        const Bytes key = vector.Decoded("Key");
        const Bytes iv = vector.Decoded("IV");
        const Bytes plain = vector.Decoded("Plaintext");
        const Bytes cipherText = vector.Decoded("Ciphertext");
        EXPECT_EQ(EncodeHex(Processed(key, iv, plain, true)), EncodeHex(cipherText))
            << vector.Describe();
        EXPECT_EQ(EncodeHex(Processed(key, iv, cipherText, false)), EncodeHex(plain))
            << vector.Describe();
        ++checked;
    }
    // SP 800-38A gives one vector per key size, RFC 3602 four, Crypto++ one long one.
    EXPECT_GE(checked, 8);
}

TEST(CipherAesTest, RefusesPartialBlocksAndUseBeforeKeying) {
    std::unique_ptr<CryptUtils::Cipher> cipher = CryptUtils::CreateCipher(L"aes128-cbc");
    ASSERT_NE(cipher, nullptr);
    uint8_t buffer[32] = {};
    VReportMessageParams report;
    EXPECT_THROW(cipher->Process(buffer, buffer, 16, report), std::logic_error);

    const uint8_t key[16] = {1, 2, 3};
    const uint8_t iv[16] = {};
    ASSERT_TRUE(cipher->SetEncrypt(iv, key, report));
    for (size_t count : {1u, 15u, 17u, 31u}) {
        uint8_t untouched[32] = {};
        EXPECT_FALSE(cipher->Process(untouched, untouched, count, report)) << count;
        EXPECT_EQ(report.GetMessageCode(), static_cast<DWORD>(ERROR_INVALID_DATA));
        EXPECT_EQ(EncodeHex(untouched, sizeof untouched), std::string(64, '0'));
    }
    EXPECT_TRUE(cipher->Process(buffer, buffer, 0, report));
}
