// AgentKey: one private key the agent can sign with (Ed25519, ECDSA on
// P-256, P-384 or P-521, RSA of 2048 bits and more), read from and written to
// the form the agent protocol's add message and the key files share. A value
// object; any thread, one at a time.
#pragma once

#include <cryptopp/integer.h>

#include <cstdint>

#include "AgentBytes.h"
#include "SshWire.h"

enum class AgentKeyError {
    None,
    Unsupported,  // a key type the agent does not hold (certificates, DSA, ...)
    Damaged,      // fields missing, malformed, or not of one key
    TooSmall,     // RSA below 2048 bits
};

// The flags of a sign request that choose RSA's hash.
inline constexpr uint32_t SignRsaSha256 = 2;
inline constexpr uint32_t SignRsaSha512 = 4;

class AgentKey {
public:
    static constexpr unsigned MinimumRsaBits = 2048;

    // Reads the key type's name and its private fields. Checks only the form;
    // Validate checks that the fields belong together.
    AgentKeyError Read(SshReader& reader);
    // The form Read takes.
    void Write(SshWriter& writer) const;
    // Whether the public and private parts are one key (costs a public-key
    // operation; done when a key is added, not for every signature).
    AgentKeyError Validate() const;

    // The public key in the protocol's form (what clients list and name).
    AgentBytes GetPublicBlob() const;
    // "ssh-ed25519", "ecdsa-sha2-nistp256", "ssh-rsa", ...
    const char* GetTypeName() const;
    // As ssh-keygen labels keys: "ED25519", "ECDSA", "RSA".
    const wchar_t* GetTypeLabel() const;
    unsigned GetBits() const;

    // Signs data; signature receives the protocol's signature blob. RSA signs
    // with SHA-512 for SignRsaSha512, SHA-256 for SignRsaSha256, else SHA-1
    // ("ssh-rsa", for old clients); other key types ignore flags.
    bool Sign(const uint8_t* data, size_t count, uint32_t flags, AgentBytes& signature) const;

private:
    enum class Kind { None, Ed25519, Ecdsa, Rsa };
    Kind kind_ = Kind::None;
    int curve_ = 0;           // index into the curve table (ECDSA)
    AgentBytes publicBytes_;  // Ed25519: the 32-byte key; ECDSA: the encoded point
    AgentBytes seed_;         // Ed25519: the 32-byte secret
    CryptoPP::Integer n_, e_, d_, p_, q_, iqmp_;  // RSA; ECDSA keeps its secret in d_
};

// The label ("ED25519", "ECDSA", "RSA") and bits of a public key blob, as
// the agent lists keys; an empty label and 0 for a blob of another kind.
void DescribePublicKey(const AgentBytes& publicBlob, const wchar_t*& label, unsigned& bits);

// "SHA256:" and the unpadded Base64 of the blob's SHA-256, as ssh-keygen shows it.
AgentText KeyFingerprint(const AgentBytes& publicBlob);
