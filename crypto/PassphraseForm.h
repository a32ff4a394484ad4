// crypto/ owns the ciphers and hashers (over Crypto++), the random source and
// the protected forms of a text built on them: this one, "CAPI:"
// (CapiForm.h) and the older fixed-key form (VBlowfishString.h). The
// protected values of profile/values use them.
//
// The "02:" form of a protected text, readable wherever the configuration
// pass phrase is known. The record
//
//     n (4 bytes, little-endian) | n bytes of UTF-8 text | SHA-256 of the text (32) | p random
//     bytes
//
// is padded to a whole number of cipher blocks with at least half a block of
// random bytes, enciphered in one pass with "aes256-cbc" under a zero IV and
// a key derived from the pass phrase, and stored as "02:" followed by two
// lower-case hexadecimal digits per byte.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "CryptUtilsCipher.h"
#include "IRandomSource.h"
#include "VBasicBuffer.h"
#include "VReportMessageParams.h"
#include "VString.h"

namespace PassphraseForm {

inline constexpr wchar_t Prefix[] = L"02:";
inline constexpr size_t PrefixLength = 3;
inline constexpr wchar_t CipherName[] = L"aes256-cbc";
inline constexpr size_t LengthFieldSize = 4;
inline constexpr size_t DigestSize = 32;
// Texts of this many UTF-8 bytes or more do not fit the length field.
inline constexpr uint64_t TextBytesLimit = 0xFFFFFFFFu;

// Fills key, up to its target size, from the pass phrase: the SHA-256 digest
// of its UTF-8 bytes, followed, while the key is short, by the digest of the
// key bytes gathered so far. No salt, no iterations. False when the pass
// phrase is not valid Unicode or the hasher fails.
bool DeriveKey(const VUnicodeString& passphrase, VBasicBuffer& key);

// "aes256-cbc" keyed from passphrase with a zero IV, set up for enciphering
// (encrypt) or deciphering; null when the pass phrase is empty or not valid
// Unicode, or the hasher or the cipher fails.
std::unique_ptr<CryptUtils::Cipher> CreateCipher(const VUnicodeString& passphrase, bool encrypt);

// The number of random bytes after a text of textBytes bytes.
size_t PaddingLength(size_t textBytes, size_t blockSize);

// Sets text to the "02:" form of plain under passphrase, with padding from
// random (the default random source when null). On failure text is unchanged
// and report tells why, naming the value name: CONFIG_TEXT_NOT_UNICODE,
// CONFIG_TEXT_TOO_LONG, CONFIG_PASSPHRASE_UNUSABLE, the random source's
// system error, or CONFIG_CRYPTO_FAILED.
bool Encode(const VUnicodeString& plain, const VUnicodeString& passphrase, VUnicodeString& text,
            const VUnicodeString& name, VReportMessageParams& report,
            IRandomSource* random = nullptr);

// Sets plain (which becomes sensitive) to the text that the "02:" form text
// holds under passphrase. On failure plain is unchanged and report holds
// CONFIG_PASSPHRASE_UNUSABLE, or CONFIG_PROTECTED_TEXT_UNREADABLE for a text
// that fails any test: prefix, digits, length, block multiple, length field,
// digest (a wrong pass phrase fails the last two).
bool Decode(const VUnicodeString& text, const VUnicodeString& passphrase, VUnicodeString& plain,
            const VUnicodeString& name, VReportMessageParams& report);

}  // namespace PassphraseForm
