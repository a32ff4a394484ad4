// The ciphers and hashers chosen by name, against published known answers.
#include <gtest/gtest.h>

#include <cstring>
#include <stdexcept>

#include "ConfigMessages.h"
#include "CryptUtilsCipher.h"
#include "CryptUtilsHasher.h"
#include "CryptoTestSupport.h"
#include "VCipherBlowfish.h"

namespace {

Bytes Processed(const wchar_t* name, const Bytes& key, const Bytes& iv, const Bytes& in, bool encrypt) {
    std::unique_ptr<CryptUtils::Cipher> cipher = CryptUtils::CreateCipher(name);
    VReportMessageParams report;
    EXPECT_TRUE(encrypt ? cipher->SetEncrypt(iv.data(), key.data(), report)
                        : cipher->SetDecrypt(iv.data(), key.data(), report));
    Bytes out(in.size());
    EXPECT_TRUE(cipher->Process(in.data(), out.data(), 16, report));
    EXPECT_TRUE(cipher->Process(in.data() + 16, out.data() + 16, in.size() - 16, report));
    return out;
}

Bytes DigestOf(IHasher& hasher, const std::string& message, size_t piece) {
    VReportMessageParams report;
    for (size_t at = 0; at < message.size(); at += piece)
        EXPECT_TRUE(hasher.Update(message.data() + at, std::min(piece, message.size() - at), report));
    Bytes digest(128);
    digest.resize(hasher.Final(digest.data(), digest.size(), report));
    return digest;
}

VRefPtr<IHasher> Hasher(const wchar_t* name) { return VRefPtr<IHasher>::Adopt(new CryptUtils::Hasher(name)); }

}  // namespace

TEST(Ciphers, AesInCbcModeAgreesWithSp800_38aBothWaysUnderItsExactNamesOnly) {
    const std::string plain = "6bc1bee22e409f96e93d7e117393172aae2d8a571e03ac9c9eb76fac45af8e51"
                              "30c81c46a35ce411e5fbc1191a0a52eff69f2445df4f9b17ad2b417be66c3710";
    const struct {
        const wchar_t* name;
        const char* key;
        const char* cipher;
    } vectors[] = {
        {L"aes128-cbc", "2b7e151628aed2a6abf7158809cf4f3c",
         "7649abac8119b246cee98e9b12e9197d5086cb9b507219ee95db113a917678b2"
         "73bed6b8e3c1743b7116e69e222295163ff1caa1681fac09120eca307586e1a7"},
        {L"aes192-cbc", "8e73b0f7da0e6452c810f32b809079e562f8ead2522c6b7b",
         "4f021db243bc633d7178183a9fa071e8b4d9ada9ad7dedf4e5e738763f69145a"
         "571b242012fb7ae07fa9baac3df102e008b0e27988598881d920a9e64f5615cd"},
        {L"aes256-cbc", "603deb1015ca71be2b73aef0857d77811f352c073b6108d72d9810a30914dff4",
         "f58c4c04d6e5f1ba779eabfb5f7bfbd69cfc4e967edb808d679f777bc6702c7d"
         "39f23369a9d9bacfa530e26304231461b2eb05e2c39be9fcda6c19078c6a9d1b"},
    };
    const Bytes iv = DecodeHex("000102030405060708090a0b0c0d0e0f");
    for (const auto& v : vectors) {
        const Bytes key = DecodeHex(v.key);
        EXPECT_TRUE(CryptUtils::CreateCipher(v.name)->GetKeySize() == key.size() &&
                    CryptUtils::CreateCipher(v.name)->GetIvSize() == 16u);
        EXPECT_EQ(EncodeHex(Processed(v.name, key, iv, DecodeHex(plain), true)), v.cipher);
        EXPECT_EQ(EncodeHex(Processed(v.name, key, iv, DecodeHex(v.cipher), false)), plain);
    }
    for (const wchar_t* other : {L"AES256-CBC", L"aes256-cbc ", L"aes256", L"aes256-ctr", L"", L"blowfish"})
        EXPECT_EQ(CryptUtils::CreateCipher(other), nullptr) << other;
    EXPECT_EQ(CryptUtils::CreateCipher(nullptr), nullptr);
}

TEST(Ciphers, PartialBlocksAndUseBeforeKeyingAreRefused) {
    std::unique_ptr<CryptUtils::Cipher> aes = CryptUtils::CreateCipher(L"aes128-cbc");
    uint8_t buffer[32] = {};
    VReportMessageParams report;
    EXPECT_THROW(aes->Process(buffer, buffer, 16, report), std::logic_error);
    ASSERT_TRUE(aes->SetEncrypt(buffer, buffer, report));
    for (size_t count : {1u, 15u, 17u}) {
        EXPECT_FALSE(aes->Process(buffer, buffer, count, report) ||
                     report.GetMessageCode() != ERROR_INVALID_DATA ||
                     EncodeHex(buffer, sizeof buffer) != std::string(64, '0'))
            << count << ": refused, and nothing processed";
    }
    EXPECT_TRUE(aes->Process(buffer, buffer, 0, report));
    EXPECT_FALSE(VCipherBlowfish(buffer, 8).Encipher(buffer, 12));
    EXPECT_EQ(EncodeHex(buffer, sizeof buffer), std::string(64, '0'));
}

TEST(Ciphers, BlowfishAgreesWithThePublishedKnownAnswers) {
    const char* vectors[][3] = {  // key, plain, cipher
        {"0000000000000000", "0000000000000000", "4ef997456198dd78"},
        {"fedcba9876543210", "0123456789abcdef", "0aceab0fc6a0a28d"},
    };
    for (const auto& [key, plain, cipher] : vectors) {
        const Bytes keyBytes = DecodeHex(key);
        const VCipherBlowfish blowfish(keyBytes.data(), keyBytes.size());
        Bytes block = DecodeHex(plain);
        EXPECT_TRUE(blowfish.Encipher(block.data(), block.size()) && EncodeHex(block) == cipher);
        EXPECT_TRUE(blowfish.Decipher(block.data(), block.size()) && EncodeHex(block) == plain);
    }
}

TEST(Hashers, EachNameGivesItsAlgorithmFedWholeOrInPieces) {
    const std::pair<const wchar_t*, const char*> abc[] = {
        {L"md5", "900150983cd24fb0d6963f7d28e17f72"},
        {L"sha1", "a9993e364706816aba3e25717850c26c9cd0d89d"},
        {L"sha224", "23097d223405d8228642a477bda255b32aadbce4bda0b3f7e36c9da7"},
        {L"sha256", "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"},
        {L"sha384", "cb00753f45a35e8bb5a03d699ac65007272c32ab0eded1631a8b605a43ff5bed"
                    "8086072ba1e7cc2358baeca134c825a7"},
        {L"sha512", "ddaf35a193617abacc417349ae20413112e6fa4e89a97ea20a9eeee64b55d39a"
                    "2192992a274fc1a836ba3c23a3feebbd454d4423643ce80e2a9ac94fa54ca49f"},
    };
    std::string long_(1000, '\0');
    for (size_t i = 0; i < long_.size(); ++i) long_[i] = static_cast<char>(i * 7);
    for (const auto& [name, digest] : abc) {
        VRefPtr<IHasher> hasher = Hasher(name);
        EXPECT_EQ(hasher->GetDigestSize() * 2, std::strlen(digest)) << name;
        EXPECT_EQ(EncodeHex(DigestOf(*hasher, "abc", 3)), digest) << name;
        EXPECT_EQ(EncodeHex(DigestOf(*hasher, long_, 7)), EncodeHex(DigestOf(*hasher, long_, 1000))) << name;
    }
    const VRefPtr<IHasher> byDefault = VRefPtr<IHasher>::Adopt(new CryptUtils::Hasher());
    EXPECT_EQ(EncodeHex(DigestOf(*byDefault, "abc", 3)), abc[3].second);
}

TEST(Hashers, AnUnknownNameFailsEveryOperationAndASmallBufferKeepsWhatWasFed) {
    for (const wchar_t* name : {L"SHA256", L"sha-256", L"sha3-256", L"", L"md5 "}) {
        VRefPtr<IHasher> hasher = Hasher(name);
        VReportMessageParams valid, update, finish;
        uint8_t digest[64];
        EXPECT_FALSE(hasher->IsValid(valid) || hasher->Update("x", 1, update) ||
                     hasher->Final(digest, sizeof digest, finish) != 0);
        for (const VReportMessageParams* report : {&valid, &update, &finish})
            EXPECT_EQ(report->GetMessageCode(), static_cast<DWORD>(CONFIG_CRYPTO_ALGORITHM_UNKNOWN));
        EXPECT_EQ(valid.GetArguments(), VArray<VUnicodeString>{name});
    }
    VRefPtr<IHasher> hasher = Hasher(L"sha256");
    VReportMessageParams report;
    ASSERT_TRUE(hasher->Update("abc", 3, report));
    uint8_t small[31];
    EXPECT_TRUE(hasher->Final(small, sizeof small, report) == 0 &&
                report.GetMessageCode() == ERROR_INSUFFICIENT_BUFFER);
    EXPECT_EQ(EncodeHex(DigestOf(*hasher, "", 1)), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad")
        << "the refused Final did not restart the hash";
}
