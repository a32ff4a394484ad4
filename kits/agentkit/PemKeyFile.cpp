#include "PemKeyFile.h"

#define CRYPTOPP_ENABLE_NAMESPACE_WEAK 1
#include <cryptopp/aes.h>
#include <cryptopp/asn.h>
#include <cryptopp/des.h>
#include <cryptopp/filters.h>
#include <cryptopp/hex.h>
#include <cryptopp/md5.h>
#include <cryptopp/modes.h>
#include <cryptopp/oids.h>
#include <cryptopp/rsa.h>

#include <iterator>

namespace {

using CryptoPP::Integer;

struct PemCipher {
    const char* name;
    size_t keyBytes;
    size_t ivBytes;
};

constexpr PemCipher Ciphers[] = {
    {"AES-128-CBC", 16, 16},
    {"AES-192-CBC", 24, 16},
    {"AES-256-CBC", 32, 16},
    {"DES-EDE3-CBC", 24, 8},
};

// OpenSSL's key derivation for sealed PEM blocks: MD5 chained over the pass
// phrase and the IV's first 8 bytes, one iteration.
AgentBytes DeriveKey(const AgentBytes& passphrase, const AgentBytes& iv, size_t keyBytes) {
    AgentBytes key, digest;
    while (key.size() < keyBytes) {
        CryptoPP::Weak::MD5 md5;
        md5.Update(digest.data(), digest.size());
        md5.Update(passphrase.data(), passphrase.size());
        md5.Update(iv.data(), 8);
        digest.resize(md5.DigestSize());
        md5.Final(digest.data());
        key.insert(key.end(), digest.begin(), digest.end());
    }
    key.resize(keyBytes);
    return key;
}

template <class Cipher>
bool DecryptCbc(const AgentBytes& key, const AgentBytes& iv, const AgentBytes& sealed,
                AgentBytes& plain) {
    try {
        typename CryptoPP::CBC_Mode<Cipher>::Decryption cipher(key.data(), key.size(), iv.data());
        std::string out;  // wiped below: it holds the key
        CryptoPP::StringSource(
            sealed.data(), sealed.size(), true,
            new CryptoPP::StreamTransformationFilter(cipher, new CryptoPP::StringSink(out)));
        plain.assign(out.begin(), out.end());
        SecureZeroMemory(out.data(), out.size());
        return true;
    } catch (const CryptoPP::Exception&) {
        return false;  // the padding is wrong: a wrong pass phrase, almost always
    }
}

KeyFileError Unseal(const std::string& dekInfo, const AgentBytes& passphrase,
                    const AgentBytes& sealed, AgentBytes& plain, AgentText& unsupportedWhat) {
    const size_t comma = dekInfo.find(',');
    const std::string name = dekInfo.substr(0, comma);
    for (const PemCipher& cipher : Ciphers) {
        if (name != cipher.name) continue;
        if (comma == std::string::npos) return KeyFileError::Damaged;
        std::string ivText;
        CryptoPP::StringSource(dekInfo.substr(comma + 1), true,
                               new CryptoPP::HexDecoder(new CryptoPP::StringSink(ivText)));
        const AgentBytes iv(ivText.begin(), ivText.end());
        if (iv.size() != cipher.ivBytes) return KeyFileError::Damaged;
        if (passphrase.empty()) return KeyFileError::NeedsPassphrase;
        const AgentBytes key = DeriveKey(passphrase, iv, cipher.keyBytes);
        const bool opened = cipher.ivBytes == 8
                                ? DecryptCbc<CryptoPP::DES_EDE3>(key, iv, sealed, plain)
                                : DecryptCbc<CryptoPP::AES>(key, iv, sealed, plain);
        return opened ? KeyFileError::None : KeyFileError::WrongPassphrase;
    }
    unsupportedWhat.assign(name.begin(), name.end());
    return KeyFileError::Unsupported;
}

// PKCS #1 RSAPrivateKey.
void DecodeRsa(const AgentBytes& der, SshWriter& writer) {
    CryptoPP::InvertibleRSAFunction rsa;
    CryptoPP::ArraySource source(der.data(), der.size(), true);
    rsa.BERDecodePrivateKey(source, false, der.size());
    writer.String("ssh-rsa");
    for (const Integer& field :
         {rsa.GetModulus(), rsa.GetPublicExponent(), rsa.GetPrivateExponent(),
          rsa.GetMultiplicativeInverseOfPrime2ModPrime1(), rsa.GetPrime1(), rsa.GetPrime2()})
        writer.Mpint(field);
}

// SEC 1 ECPrivateKey: version 1, the secret, [0] the curve, [1] the public point.
bool DecodeEc(const AgentBytes& der, SshWriter& writer, AgentText& unsupportedWhat) {
    static const struct {
        CryptoPP::OID (*oid)();
        const char* typeName;
        const char* curveName;
    } Curves[] = {
        {CryptoPP::ASN1::secp256r1, "ecdsa-sha2-nistp256", "nistp256"},
        {CryptoPP::ASN1::secp384r1, "ecdsa-sha2-nistp384", "nistp384"},
        {CryptoPP::ASN1::secp521r1, "ecdsa-sha2-nistp521", "nistp521"},
    };
    CryptoPP::ArraySource source(der.data(), der.size(), true);
    CryptoPP::BERSequenceDecoder sequence(source);
    CryptoPP::word32 version;
    CryptoPP::BERDecodeUnsigned<CryptoPP::word32>(sequence, version, CryptoPP::INTEGER, 1, 1);
    CryptoPP::SecByteBlock secret;
    CryptoPP::BERDecodeOctetString(sequence, secret);
    CryptoPP::OID oid;
    {
        CryptoPP::BERGeneralDecoder parameters(
            sequence, CryptoPP::CONTEXT_SPECIFIC | CryptoPP::CONSTRUCTED | 0);
        oid.BERDecode(parameters);
        parameters.MessageEnd();
    }
    CryptoPP::SecByteBlock point;
    {
        CryptoPP::BERGeneralDecoder publicKey(
            sequence, CryptoPP::CONTEXT_SPECIFIC | CryptoPP::CONSTRUCTED | 1);
        unsigned unusedBits = 0;
        CryptoPP::BERDecodeBitString(publicKey, point, unusedBits);
        publicKey.MessageEnd();
    }
    sequence.MessageEnd();
    for (const auto& curve : Curves) {
        if (!(oid == curve.oid())) continue;
        writer.String(curve.typeName);
        writer.String(curve.curveName);
        writer.String(point.data(), point.size());
        writer.Mpint(Integer(secret.data(), secret.size()));
        return true;
    }
    unsupportedWhat = "EC curve";
    return false;
}

}  // namespace

KeyFileError ParsePemKey(PemKind kind, const std::string& dekInfo, const AgentBytes& body,
                         const AgentBytes& passphrase, LoadedKey& key, AgentText& unsupportedWhat) {
    AgentBytes der = body;
    if (!dekInfo.empty()) {
        if (const KeyFileError error = Unseal(dekInfo, passphrase, body, der, unsupportedWhat);
            error != KeyFileError::None)
            return error;
    }
    // A sealed block that opens to no valid key was opened with a wrong pass phrase.
    const KeyFileError broken =
        dekInfo.empty() ? KeyFileError::Damaged : KeyFileError::WrongPassphrase;
    AgentBytes wire;
    SshWriter writer(wire);
    try {
        if (kind == PemKind::Rsa)
            DecodeRsa(der, writer);
        else if (!DecodeEc(der, writer, unsupportedWhat))
            return KeyFileError::Unsupported;
    } catch (const CryptoPP::Exception&) {
        return broken;
    }
    LoadedKey loaded;
    SshReader reader(wire);
    const AgentKeyError error = loaded.key.Read(reader);
    if (error == AgentKeyError::TooSmall) return KeyFileError::TooSmall;
    if (error != AgentKeyError::None || loaded.key.Validate() != AgentKeyError::None) return broken;
    key = std::move(loaded);
    return KeyFileError::None;
}
