// CryptUtils::Hasher against NIST's byte-oriented SHA vectors (as Crypto++
// ships them) and RFC 1321's MD5 suite; its failure results.

#include <gtest/gtest.h>

#include <map>

#include "ConfigMessages.h"
#include "CryptUtilsHasher.h"
#include "CryptoTestVectors.h"

namespace {

VRefPtr<IHasher> MakeHasher(const wchar_t* name) {
    return VRefPtr<IHasher>::Adopt(new CryptUtils::Hasher(name));
}

VRefPtr<IHasher> MakeDefaultHasher() { return VRefPtr<IHasher>::Adopt(new CryptUtils::Hasher()); }

// The digest of message fed in pieces of at most piece bytes (0: in one go).
Bytes DigestOf(IHasher& hasher, const Bytes& message, size_t piece = 0) {
    VReportMessageParams report;
    size_t offset = 0;
    do {
        const size_t count = piece ? std::min(piece, message.size() - offset) : message.size();
        EXPECT_TRUE(hasher.Update(message.data() + offset, count, report));
        offset += count;
    } while (offset < message.size());
    Bytes digest(128);
    const size_t size = hasher.Final(digest.data(), digest.size(), report);
    EXPECT_EQ(size, hasher.GetDigestSize());
    digest.resize(size);
    return digest;
}

// Our names for the algorithms as the vector files name them.
const std::map<std::string, const wchar_t*> HashNames = {
    {"SHA-1", L"sha1"},     {"SHA-224", L"sha224"}, {"SHA-256", L"sha256"},
    {"SHA-384", L"sha384"}, {"SHA-512", L"sha512"},
};

}  // namespace

TEST(HasherTest, AgreesWithTheNistVectorsForEveryShaAlgorithm) {
    std::map<std::string, int> checked;
    for (const char* file :
         {"sha.txt", "sha1_160_fips_180.txt", "sha2_224_fips_180.txt", "sha2_256_fips_180.txt",
          "sha2_384_fips_180.txt", "sha2_512_fips_180.txt"}) {
        for (const CryptoTestCase& vector : ReadTestVectorFile(file)) {
            auto name = HashNames.find(vector.Text("Name"));
            if (vector.test != "Verify" || name == HashNames.end()) continue;
            const Bytes message = vector.Decoded("Message");
            const Bytes expected = vector.Decoded("Digest");
            VRefPtr<IHasher> hasher = MakeHasher(name->second);
            ASSERT_EQ(hasher->GetDigestSize(), expected.size()) << vector.Describe();
            EXPECT_EQ(EncodeHex(DigestOf(*hasher, message)), EncodeHex(expected))
                << vector.Describe();
            // The same hasher, restarted by Final, fed in uneven pieces.
            EXPECT_EQ(EncodeHex(DigestOf(*hasher, message, 7)), EncodeHex(expected))
                << vector.Describe();
            ++checked[vector.Text("Name")];
        }
    }
    // NIST's files hold 129 vectors for each SHA-1/SHA-2 size and 257 for the
    // 1024-bit-block ones; a reader that lost them would pass vacuously.
    for (const auto& [name, ours] : HashNames) EXPECT_GE(checked[name], 129) << name;
}

TEST(HasherTest, Md5AgreesWithTheRfc1321TestSuite) {
    const std::pair<const char*, const char*> suite[] = {
        {"", "d41d8cd98f00b204e9800998ecf8427e"},
        {"a", "0cc175b9c0f1b6a831c399e269772661"},
        {"abc", "900150983cd24fb0d6963f7d28e17f72"},
        {"message digest", "f96b697d7cb7938d525a2f31aaf161d0"},
        {"abcdefghijklmnopqrstuvwxyz", "c3fcd3d76192e4007dfb496cca67e13b"},
        {"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789",
         "d174ab98d277d9f5a5611c2c9f419d9f"},
        {"12345678901234567890123456789012345678901234567890123456789012345678901234567890",
         "57edf4a22be3c955ac49da2e2107b67a"},
    };
    VRefPtr<IHasher> hasher = MakeHasher(L"md5");
    EXPECT_EQ(hasher->GetDigestSize(), 16u);
    for (const auto& [text, digest] : suite) {
        const Bytes message(text, text + std::char_traits<char>::length(text));
        EXPECT_EQ(EncodeHex(DigestOf(*hasher, message)), digest) << '"' << text << '"';
    }
}

TEST(HasherTest, WithoutANameIsSha256AndAnUnknownNameFailsEveryOperation) {
    EXPECT_EQ(EncodeHex(DigestOf(*MakeDefaultHasher(), Bytes{'a', 'b', 'c'})),
              "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    for (const wchar_t* name : {L"SHA256", L"sha-256", L"sha3-256", L"", L"md5 "}) {
        VRefPtr<IHasher> hasher = MakeHasher(name);
        VReportMessageParams valid, update, finish;
        uint8_t digest[64];
        EXPECT_FALSE(hasher->IsValid(valid));
        EXPECT_FALSE(hasher->Update("x", 1, update));
        EXPECT_EQ(hasher->Final(digest, sizeof digest, finish), 0u);
        for (const VReportMessageParams* report : {&valid, &update, &finish})
            EXPECT_EQ(report->GetMessageCode(), static_cast<DWORD>(CONFIG_CRYPTO_ALGORITHM_UNKNOWN))
                << VString(VUnicodeString(name)).c_str();
        ASSERT_EQ(valid.GetArguments().GetCount(), 1u);
        EXPECT_EQ(valid.GetArguments()[0], name);
    }
}

TEST(HasherTest, ABufferTooSmallForTheDigestFailsAndKeepsWhatWasFed) {
    VRefPtr<IHasher> hasher = MakeHasher(L"sha512");
    VReportMessageParams report;
    ASSERT_TRUE(hasher->Update("abc", 3, report));
    uint8_t small[63];
    EXPECT_EQ(hasher->Final(small, sizeof small, report), 0u);
    EXPECT_EQ(report.GetMessageCode(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    // The refused Final did not restart the hash: "abc" is still in it.
    Bytes digest(64);
    ASSERT_EQ(hasher->Final(digest.data(), digest.size(), report), 64u);
    EXPECT_EQ(EncodeHex(digest),
              "ddaf35a193617abacc417349ae20413112e6fa4e89a97ea20a9eeee64b55d39a"
              "2192992a274fc1a836ba3c23a3feebbd454d4423643ce80e2a9ac94fa54ca49f");
}
