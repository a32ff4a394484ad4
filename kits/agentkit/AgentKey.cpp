#include "AgentKey.h"

#include <cryptopp/base64.h>
#include <cryptopp/eccrypto.h>
#include <cryptopp/oids.h>
#include <cryptopp/rsa.h>
#include <cryptopp/sha.h>
#include <cryptopp/xed25519.h>

#include <cstring>
#include <iterator>
#include <string_view>

#include "AgentRandom.h"

namespace {

using CryptoPP::Integer;

struct Curve {
    const char* typeName;
    const char* curveName;
    unsigned bits;
    CryptoPP::OID (*oid)();
};

constexpr Curve Curves[] = {
    {"ecdsa-sha2-nistp256", "nistp256", 256, CryptoPP::ASN1::secp256r1},
    {"ecdsa-sha2-nistp384", "nistp384", 384, CryptoPP::ASN1::secp384r1},
    {"ecdsa-sha2-nistp521", "nistp521", 521, CryptoPP::ASN1::secp521r1},
};

constexpr char Ed25519Name[] = "ssh-ed25519";
constexpr char RsaName[] = "ssh-rsa";
constexpr size_t Ed25519Bytes = 32;

bool Equals(const uint8_t* data, size_t count, std::string_view text) {
    return count == text.size() && std::memcmp(data, text.data(), count) == 0;
}

// The encoded public point of secret d on the curve.
AgentBytes EcPublicPoint(int curve, const Integer& d) {
    CryptoPP::DL_GroupParameters_EC<CryptoPP::ECP> group(Curves[curve].oid());
    const CryptoPP::ECP::Point point = group.ExponentiateBase(d);
    AgentBytes encoded(group.GetCurve().EncodedPointSize(false));
    group.GetCurve().EncodePoint(encoded.data(), point, false);
    return encoded;
}

template <class Hash>
void SignEcdsa(int curve, const Integer& d, const uint8_t* data, size_t count, AgentBytes& out) {
    typename CryptoPP::ECDSA<CryptoPP::ECP, Hash>::Signer signer;
    signer.AccessKey().Initialize(Curves[curve].oid(), d);
    AgentBytes raw(signer.MaxSignatureLength());
    raw.resize(signer.SignMessage(AgentRandom(), data, count, raw.data()));
    // Crypto++ gives r and s side by side at the field's width; the wire wants two mpints.
    const size_t half = raw.size() / 2;
    AgentBytes pair;
    SshWriter inner(pair);
    inner.Mpint(Integer(raw.data(), half));
    inner.Mpint(Integer(raw.data() + half, half));
    SshWriter writer(out);
    writer.String(Curves[curve].typeName);
    writer.String(pair);
}

template <class Hash>
void SignRsa(const CryptoPP::InvertibleRSAFunction& key, const char* name, const uint8_t* data,
             size_t count, AgentBytes& out) {
    typename CryptoPP::RSASS<CryptoPP::PKCS1v15, Hash>::Signer signer(key);
    AgentBytes raw(signer.MaxSignatureLength());
    raw.resize(signer.SignMessage(AgentRandom(), data, count, raw.data()));
    SshWriter writer(out);
    writer.String(name);
    writer.String(raw);
}

}  // namespace

AgentKeyError AgentKey::Read(SshReader& reader) {
    *this = AgentKey();
    const uint8_t* name;
    size_t nameLength;
    if (!reader.String(name, nameLength)) return AgentKeyError::Damaged;
    if (Equals(name, nameLength, Ed25519Name)) {
        AgentBytes both;
        if (!reader.String(publicBytes_) || !reader.String(both) ||
            publicBytes_.size() != Ed25519Bytes || both.size() != 2 * Ed25519Bytes ||
            std::memcmp(both.data() + Ed25519Bytes, publicBytes_.data(), Ed25519Bytes) != 0)
            return AgentKeyError::Damaged;
        seed_.assign(both.begin(), both.begin() + Ed25519Bytes);
        kind_ = Kind::Ed25519;
        return AgentKeyError::None;
    }
    if (Equals(name, nameLength, RsaName)) {
        if (!reader.Mpint(n_) || !reader.Mpint(e_) || !reader.Mpint(d_) || !reader.Mpint(iqmp_) ||
            !reader.Mpint(p_) || !reader.Mpint(q_))
            return AgentKeyError::Damaged;
        kind_ = Kind::Rsa;
        return n_.BitCount() < MinimumRsaBits ? AgentKeyError::TooSmall : AgentKeyError::None;
    }
    for (int curve = 0; curve < static_cast<int>(std::size(Curves)); ++curve) {
        if (!Equals(name, nameLength, Curves[curve].typeName)) continue;
        const uint8_t* curveName;
        size_t curveLength;
        if (!reader.String(curveName, curveLength) ||
            !Equals(curveName, curveLength, Curves[curve].curveName) ||
            !reader.String(publicBytes_) || !reader.Mpint(d_))
            return AgentKeyError::Damaged;
        kind_ = Kind::Ecdsa;
        curve_ = curve;
        return AgentKeyError::None;
    }
    return AgentKeyError::Unsupported;
}

void AgentKey::Write(SshWriter& writer) const {
    writer.String(GetTypeName());
    switch (kind_) {
        case Kind::Ed25519: {
            writer.String(publicBytes_);
            AgentBytes both(seed_);
            both.insert(both.end(), publicBytes_.begin(), publicBytes_.end());
            writer.String(both);
            break;
        }
        case Kind::Ecdsa:
            writer.String(Curves[curve_].curveName);
            writer.String(publicBytes_);
            writer.Mpint(d_);
            break;
        case Kind::Rsa:
            for (const Integer* field : {&n_, &e_, &d_, &iqmp_, &p_, &q_}) writer.Mpint(*field);
            break;
        case Kind::None:
            break;
    }
}

AgentKeyError AgentKey::Validate() const {
    switch (kind_) {
        case Kind::Ed25519: {
            CryptoPP::ed25519Signer signer(seed_.data());
            const auto& key =
                static_cast<const CryptoPP::ed25519PrivateKey&>(signer.GetPrivateKey());
            return std::memcmp(key.GetPublicKeyBytePtr(), publicBytes_.data(), Ed25519Bytes) == 0
                       ? AgentKeyError::None
                       : AgentKeyError::Damaged;
        }
        case Kind::Ecdsa: {
            const CryptoPP::DL_GroupParameters_EC<CryptoPP::ECP> group(Curves[curve_].oid());
            if (d_.IsZero() || d_ >= group.GetSubgroupOrder()) return AgentKeyError::Damaged;
            return EcPublicPoint(curve_, d_) == publicBytes_ ? AgentKeyError::None
                                                             : AgentKeyError::Damaged;
        }
        case Kind::Rsa: {
            if (n_.BitCount() < MinimumRsaBits) return AgentKeyError::TooSmall;
            if (p_ * q_ != n_ || p_ <= Integer::One() || q_ <= Integer::One() ||
                (iqmp_ * q_) % p_ != Integer::One())
                return AgentKeyError::Damaged;
            // e and d must undo each other: a test message goes there and back.
            const Integer message(Integer::Power2(n_.BitCount() - 2) + Integer(12345));
            return a_exp_b_mod_c(a_exp_b_mod_c(message, e_, n_), d_, n_) == message
                       ? AgentKeyError::None
                       : AgentKeyError::Damaged;
        }
        case Kind::None:
            break;
    }
    return AgentKeyError::Damaged;
}

AgentBytes AgentKey::GetPublicBlob() const {
    AgentBytes blob;
    SshWriter writer(blob);
    writer.String(GetTypeName());
    switch (kind_) {
        case Kind::Ed25519:
            writer.String(publicBytes_);
            break;
        case Kind::Ecdsa:
            writer.String(Curves[curve_].curveName);
            writer.String(publicBytes_);
            break;
        case Kind::Rsa:
            writer.Mpint(e_);
            writer.Mpint(n_);
            break;
        case Kind::None:
            break;
    }
    return blob;
}

const char* AgentKey::GetTypeName() const {
    switch (kind_) {
        case Kind::Ed25519:
            return Ed25519Name;
        case Kind::Ecdsa:
            return Curves[curve_].typeName;
        case Kind::Rsa:
            return RsaName;
        case Kind::None:
            break;
    }
    return "";
}

const wchar_t* AgentKey::GetTypeLabel() const {
    switch (kind_) {
        case Kind::Ed25519:
            return L"ED25519";
        case Kind::Ecdsa:
            return L"ECDSA";
        case Kind::Rsa:
            return L"RSA";
        case Kind::None:
            break;
    }
    return L"";
}

unsigned AgentKey::GetBits() const {
    switch (kind_) {
        case Kind::Ed25519:
            return 256;
        case Kind::Ecdsa:
            return Curves[curve_].bits;
        case Kind::Rsa:
            return n_.BitCount();
        case Kind::None:
            break;
    }
    return 0;
}

bool AgentKey::Sign(const uint8_t* data, size_t count, uint32_t flags,
                    AgentBytes& signature) const {
    signature.clear();
    switch (kind_) {
        case Kind::Ed25519: {
            CryptoPP::ed25519Signer signer(publicBytes_.data(), seed_.data());
            uint8_t raw[CryptoPP::ed25519Signer::SIGNATURE_LENGTH];
            signer.SignMessage(AgentRandom(), data, count, raw);
            SshWriter writer(signature);
            writer.String(Ed25519Name);
            writer.String(raw, sizeof raw);
            return true;
        }
        case Kind::Ecdsa:
            if (curve_ == 0)
                SignEcdsa<CryptoPP::SHA256>(curve_, d_, data, count, signature);
            else if (curve_ == 1)
                SignEcdsa<CryptoPP::SHA384>(curve_, d_, data, count, signature);
            else
                SignEcdsa<CryptoPP::SHA512>(curve_, d_, data, count, signature);
            return true;
        case Kind::Rsa: {
            CryptoPP::InvertibleRSAFunction key;
            key.Initialize(n_, e_, d_, p_, q_, d_ % (p_ - Integer::One()),
                           d_ % (q_ - Integer::One()), iqmp_);
            if (flags & SignRsaSha512)
                SignRsa<CryptoPP::SHA512>(key, "rsa-sha2-512", data, count, signature);
            else if (flags & SignRsaSha256)
                SignRsa<CryptoPP::SHA256>(key, "rsa-sha2-256", data, count, signature);
            else
                SignRsa<CryptoPP::SHA1>(key, RsaName, data, count, signature);
            return true;
        }
        case Kind::None:
            break;
    }
    return false;
}

AgentText KeyFingerprint(const AgentBytes& publicBlob) {
    uint8_t digest[CryptoPP::SHA256::DIGESTSIZE];
    CryptoPP::SHA256().CalculateDigest(digest, publicBlob.data(), publicBlob.size());
    std::string encoded;
    CryptoPP::Base64Encoder encoder(new CryptoPP::StringSink(encoded), false);
    encoder.Put(digest, sizeof digest);
    encoder.MessageEnd();
    while (!encoded.empty() && encoded.back() == '=') encoded.pop_back();
    return AgentText("SHA256:") + AgentText(encoded.begin(), encoded.end());
}

void DescribePublicKey(const AgentBytes& publicBlob, const wchar_t*& label, unsigned& bits) {
    label = L"";
    bits = 0;
    SshReader reader(publicBlob);
    const uint8_t* name;
    size_t count;
    if (!reader.String(name, count)) return;
    if (Equals(name, count, Ed25519Name)) {
        label = L"ED25519";
        bits = 256;
    } else if (Integer e, n; Equals(name, count, RsaName) && reader.Mpint(e) && reader.Mpint(n)) {
        label = L"RSA";
        bits = n.BitCount();
    }
    for (const Curve& curve : Curves)
        if (Equals(name, count, curve.typeName)) {
            label = L"ECDSA";
            bits = curve.bits;
        }
}
