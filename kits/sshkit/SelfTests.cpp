#include "SelfTests.h"

#include <cstdint>
#include <cstring>
#include <cwchar>
#include <iterator>
#include <memory>
#include <vector>

#include "CryptUtilsCipher.h"
#include "CryptUtilsHasher.h"
#include "HexDigits.h"

namespace SSH2::Detail {

std::atomic<int> g_brokenSelfTest{-1};

namespace {

// The one-block example of FIPS 180 (and RFC 1321 for MD5): the digest of "abc".
struct HashAnswer {
    const wchar_t* name;
    const wchar_t* digest;
};

constexpr char HashMessage[] = "abc";

constexpr HashAnswer HashAnswers[] = {
    {L"md5", L"900150983cd24fb0d6963f7d28e17f72"},
    {L"sha1", L"a9993e364706816aba3e25717850c26c9cd0d89d"},
    {L"sha224", L"23097d223405d8228642a477bda255b32aadbce4bda0b3f7e36c9da7"},
    {L"sha256", L"ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"},
    {L"sha384",
     L"cb00753f45a35e8bb5a03d699ac65007272c32ab0eded1631a8b605a43ff5bed"
     L"8086072ba1e7cc2358baeca134c825a7"},
    {L"sha512",
     L"ddaf35a193617abacc417349ae20413112e6fa4e89a97ea20a9eeee64b55d39a"
     L"2192992a274fc1a836ba3c23a3feebbd454d4423643ce80e2a9ac94fa54ca49f"},
};

// The first two blocks of the CBC examples of NIST SP 800-38A (F.2.1, F.2.3, F.2.5).
struct CipherAnswer {
    const wchar_t* name;
    const wchar_t* key;
    const wchar_t* cipherText;
};

constexpr wchar_t CipherIv[] = L"000102030405060708090a0b0c0d0e0f";
constexpr wchar_t CipherPlainText[] =
    L"6bc1bee22e409f96e93d7e117393172aae2d8a571e03ac9c9eb76fac45af8e51";

constexpr CipherAnswer CipherAnswers[] = {
    {L"aes128-cbc", L"2b7e151628aed2a6abf7158809cf4f3c",
     L"7649abac8119b246cee98e9b12e9197d5086cb9b507219ee95db113a917678b2"},
    {L"aes192-cbc", L"8e73b0f7da0e6452c810f32b809079e562f8ead2522c6b7b",
     L"4f021db243bc633d7178183a9fa071e8b4d9ada9ad7dedf4e5e738763f69145a"},
    {L"aes256-cbc", L"603deb1015ca71be2b73aef0857d77811f352c073b6108d72d9810a30914dff4",
     L"f58c4c04d6e5f1ba779eabfb5f7bfbd69cfc4e967edb808d679f777bc6702c7d"},
};

constexpr size_t HashCount = std::size(HashAnswers);

std::vector<uint8_t> Bytes(const wchar_t* digits) {
    VBasicBuffer buffer;
    DecodeHexDigits(digits, wcslen(digits), buffer);  // the tables hold even counts of digits
    return std::vector<uint8_t>(buffer.GetData(), buffer.GetData() + buffer.GetLength());
}

// The answer the test compares with: the right one, or with one bit turned
// when the test seam broke this test.
std::vector<uint8_t> Expected(size_t index, const wchar_t* digits) {
    std::vector<uint8_t> bytes = Bytes(digits);
    if (g_brokenSelfTest.load() == static_cast<int>(index) && !bytes.empty()) bytes[0] ^= 0x01;
    return bytes;
}

bool PassesHash(size_t index) {
    const HashAnswer& answer = HashAnswers[index];
    VReportMessageParams report;
    CryptUtils::Hasher* hasher = new CryptUtils::Hasher(answer.name);
    std::vector<uint8_t> digest(hasher->GetDigestSize());
    const bool computed = !digest.empty() &&
                          hasher->Update(HashMessage, strlen(HashMessage), report) &&
                          hasher->Final(digest.data(), digest.size(), report) == digest.size();
    hasher->Release();
    return computed && digest == Expected(index, answer.digest);
}

// Enciphers the plain text, compares, and deciphers the answer back.
bool PassesCipher(size_t index) {
    const CipherAnswer& answer = CipherAnswers[index - HashCount];
    const std::vector<uint8_t> key = Bytes(answer.key);
    const std::vector<uint8_t> iv = Bytes(CipherIv);
    const std::vector<uint8_t> plain = Bytes(CipherPlainText);
    const std::unique_ptr<CryptUtils::Cipher> cipher = CryptUtils::CreateCipher(answer.name);
    if (!cipher || cipher->GetKeySize() != key.size() || cipher->GetIvSize() != iv.size())
        return false;
    VReportMessageParams report;
    std::vector<uint8_t> out(plain.size());
    if (!cipher->SetEncrypt(iv.data(), key.data(), report) ||
        !cipher->Process(plain.data(), out.data(), out.size(), report) ||
        out != Expected(index, answer.cipherText))
        return false;
    return cipher->SetDecrypt(iv.data(), key.data(), report) &&
           cipher->Process(out.data(), out.data(), out.size(), report) && out == plain;
}

}  // namespace

size_t GetSelfTestCount() { return HashCount + std::size(CipherAnswers); }

const wchar_t* GetSelfTestName(size_t index) {
    return index < HashCount ? HashAnswers[index].name : CipherAnswers[index - HashCount].name;
}

const wchar_t* RunSelfTests() {
    for (size_t index = 0; index < GetSelfTestCount(); ++index) {
        const bool passed = index < HashCount ? PassesHash(index) : PassesCipher(index);
        if (!passed) return GetSelfTestName(index);
    }
    return nullptr;
}

}  // namespace SSH2::Detail
