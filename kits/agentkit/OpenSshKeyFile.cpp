#include "OpenSshKeyFile.h"

#include <cryptopp/aes.h>
#include <cryptopp/modes.h>

#include <cstring>
#include <string_view>

#include "BcryptPbkdf.h"

namespace {

constexpr char Magic[] = "openssh-key-v1";  // followed by its terminating zero

struct Header {
    AgentText cipher, kdf;
    AgentBytes kdfOptions, publicBlob, sealed;
};

bool ReadHeader(const AgentBytes& body, Header& header) {
    if (body.size() < sizeof Magic || std::memcmp(body.data(), Magic, sizeof Magic) != 0)
        return false;
    SshReader reader(body.data() + sizeof Magic, body.size() - sizeof Magic);
    uint32_t keys;
    return reader.String(header.cipher) && reader.String(header.kdf) &&
           reader.String(header.kdfOptions) && reader.Uint32(keys) && keys == 1 &&
           reader.String(header.publicBlob) && reader.String(header.sealed) && reader.AtEnd();
}

// Opens the private section in place with aes256-ctr under a key and IV
// derived from the pass phrase.
KeyFileError Unseal(const Header& header, const AgentBytes& passphrase, AgentBytes& section) {
    SshReader options(header.kdfOptions);
    AgentBytes salt;
    uint32_t rounds;
    if (!options.String(salt) || !options.Uint32(rounds) || !options.AtEnd() || salt.empty() ||
        rounds == 0)
        return KeyFileError::Damaged;
    if (passphrase.empty()) return KeyFileError::NeedsPassphrase;
    constexpr size_t KeyBytes = 32, IvBytes = 16;
    AgentBytes keyAndIv(KeyBytes + IvBytes);
    BcryptPbkdf(passphrase.data(), passphrase.size(), salt.data(), salt.size(), rounds,
                keyAndIv.data(), keyAndIv.size());
    CryptoPP::CTR_Mode<CryptoPP::AES>::Decryption cipher(keyAndIv.data(), KeyBytes,
                                                         keyAndIv.data() + KeyBytes);
    cipher.ProcessString(section.data(), section.size());
    return KeyFileError::None;
}

}  // namespace

bool OpenSshKeyIsSealed(const AgentBytes& body) {
    Header header;
    return ReadHeader(body, header) && header.cipher != "none";
}

KeyFileError ParseOpenSshKey(const AgentBytes& body, const AgentBytes& passphrase, LoadedKey& key,
                             AgentText& unsupportedWhat) {
    Header header;
    if (!ReadHeader(body, header)) return KeyFileError::Damaged;
    AgentBytes section = header.sealed;
    size_t blockSize = 8;
    if (header.cipher == "aes256-ctr" && header.kdf == "bcrypt") {
        if (const KeyFileError error = Unseal(header, passphrase, section);
            error != KeyFileError::None)
            return error;
        blockSize = 16;
    } else if (header.cipher != "none" || header.kdf != "none") {
        unsupportedWhat = header.cipher == "none" ? header.kdf : header.cipher;
        return KeyFileError::Unsupported;
    }
    if (section.size() % blockSize != 0) return KeyFileError::Damaged;

    // Two equal random numbers open the section: unequal ones mean a wrong pass phrase.
    SshReader reader(section);
    uint32_t check1, check2;
    if (!reader.Uint32(check1) || !reader.Uint32(check2)) return KeyFileError::Damaged;
    if (check1 != check2)
        return blockSize == 8 ? KeyFileError::Damaged : KeyFileError::WrongPassphrase;
    LoadedKey loaded;
    switch (loaded.key.Read(reader)) {
        case AgentKeyError::None:
            break;
        case AgentKeyError::Unsupported: {
            SshReader name(header.publicBlob);
            name.String(unsupportedWhat);
            return KeyFileError::Unsupported;
        }
        case AgentKeyError::TooSmall:
            return KeyFileError::TooSmall;
        case AgentKeyError::Damaged:
            return KeyFileError::Damaged;
    }
    if (!reader.String(loaded.comment)) return KeyFileError::Damaged;
    // The padding runs 1, 2, 3, ... up to the block's end.
    for (uint8_t expected = 1; !reader.AtEnd(); ++expected) {
        uint8_t pad;
        if (!reader.Byte(pad) || pad != expected) return KeyFileError::Damaged;
    }
    if (loaded.key.GetPublicBlob() != header.publicBlob ||
        loaded.key.Validate() != AgentKeyError::None)
        return KeyFileError::Damaged;
    key = std::move(loaded);
    return KeyFileError::None;
}
