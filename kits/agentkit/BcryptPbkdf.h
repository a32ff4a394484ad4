// bcrypt-pbkdf: the key derivation of pass-phrase-protected key files, a
// PBKDF2-like construction over SHA-512 and bcrypt's expensive Blowfish key
// schedule. Any thread.
#pragma once

#include <cstddef>
#include <cstdint>

// Derives keyBytes (1 to 1024) bytes into key from the pass phrase and the
// salt (1 byte and more) with rounds (at least 1) iterations. False, with key
// untouched, for arguments outside those ranges.
bool BcryptPbkdf(const uint8_t* passphrase, size_t passphraseBytes, const uint8_t* salt,
                 size_t saltBytes, uint32_t rounds, uint8_t* key, size_t keyBytes);
