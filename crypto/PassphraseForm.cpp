#include "PassphraseForm.h"

#include <cryptopp/misc.h>

#include <algorithm>

#include "ConfigMessages.h"
#include "CryptUtilsHasher.h"
#include "HexDigits.h"
#include "ProfileErrors.h"
#include "Utf8Text.h"
#include "VCapiRandomSource.h"

namespace PassphraseForm {

namespace {

// A finished digest may be up to this long, whatever the algorithm.
constexpr size_t DigestBufferSize = 128;

VRefPtr<IHasher> MakeHasher() { return VRefPtr<IHasher>::Adopt(new CryptUtils::Hasher()); }

uint32_t ReadLittleEndian32(const uint8_t* bytes) {
    return uint32_t{bytes[0]} | uint32_t{bytes[1]} << 8 | uint32_t{bytes[2]} << 16 |
           uint32_t{bytes[3]} << 24;
}

void WriteLittleEndian32(uint8_t* bytes, uint32_t value) {
    for (int index = 0; index < 4; ++index)
        bytes[index] = static_cast<uint8_t>(value >> (8 * index));
}

// Writes the SHA-256 digest of count bytes to digest (DigestSize bytes).
bool DigestText(const uint8_t* bytes, size_t count, uint8_t* digest, VReportMessageParams& report) {
    VRefPtr<IHasher> hasher = MakeHasher();
    if (!hasher->Update(bytes, count, report)) return false;
    return hasher->Final(digest, DigestSize, report) == DigestSize;
}

}  // namespace

bool DeriveKey(const VUnicodeString& passphrase, VBasicBuffer& key) {
    key.Clear();
    size_t passphraseBytes = 0;
    if (!MeasureUtf8(passphrase, passphraseBytes)) return false;
    VBasicBuffer utf8(passphraseBytes);
    if (passphraseBytes) WriteUtf8(passphrase, utf8.Extend(passphraseBytes));

    VReportMessageParams report;
    VRefPtr<IHasher> hasher = MakeHasher();
    if (!hasher->Update(utf8.GetData(), utf8.GetLength(), report)) return false;
    VBasicBuffer digest(DigestBufferSize);
    while (!key.IsFull()) {
        // Each Final restarts the hasher, so later rounds digest the key so far.
        if (!hasher->Update(key.GetData(), key.GetLength(), report)) return false;
        const size_t size = hasher->Final(digest.GetData(), digest.GetTargetSize(), report);
        if (size == 0) return false;
        key.Append(digest.GetData(), std::min(size, key.GetTargetSize() - key.GetLength()));
    }
    return true;
}

std::unique_ptr<CryptUtils::Cipher> CreateCipher(const VUnicodeString& passphrase, bool encrypt) {
    if (passphrase.IsEmpty()) return nullptr;
    std::unique_ptr<CryptUtils::Cipher> cipher = CryptUtils::CreateCipher(CipherName);
    if (!cipher) return nullptr;
    VBasicBuffer key(cipher->GetKeySize());
    if (!DeriveKey(passphrase, key)) return nullptr;
    VBasicBuffer iv(cipher->GetIvSize());
    iv.Extend(iv.GetTargetSize());
    VReportMessageParams report;
    const bool keyed = encrypt ? cipher->SetEncrypt(iv.GetData(), key.GetData(), report)
                               : cipher->SetDecrypt(iv.GetData(), key.GetData(), report);
    return keyed ? std::move(cipher) : nullptr;
}

size_t PaddingLength(size_t textBytes, size_t blockSize) {
    size_t padding = blockSize - (textBytes + LengthFieldSize + DigestSize) % blockSize;
    // Always at least half a block of random bytes at the end.
    if (padding < blockSize / 2) padding += blockSize;
    return padding;
}

bool Encode(const VUnicodeString& plain, const VUnicodeString& passphrase, VUnicodeString& text,
            const VUnicodeString& name, VReportMessageParams& report, IRandomSource* random) {
    size_t textBytes = 0;
    if (!MeasureUtf8(plain, textBytes)) {
        report.Set(CONFIG_TEXT_NOT_UNICODE, name);
        return false;
    }
    if (textBytes >= TextBytesLimit) {
        report.Set(CONFIG_TEXT_TOO_LONG, name);
        return false;
    }
    std::unique_ptr<CryptUtils::Cipher> cipher = CreateCipher(passphrase, true);
    if (!cipher) {
        report.Set(CONFIG_PASSPHRASE_UNUSABLE, name);
        return false;
    }

    const size_t padding = PaddingLength(textBytes, cipher->GetBlockSize());
    VBasicBuffer record(LengthFieldSize + textBytes + DigestSize + padding);
    WriteLittleEndian32(record.Extend(LengthFieldSize), static_cast<uint32_t>(textBytes));
    if (textBytes) WriteUtf8(plain, record.Extend(textBytes));
    if (!DigestText(record.GetData() + LengthFieldSize, textBytes, record.Extend(DigestSize),
                    report))
        return false;
    IRandomSource& source = random ? *random : GetDefaultRandomSource();
    if (!source.Fill(record.Extend(padding), padding)) {
        RecordLastSystemError(report);
        return false;
    }
    if (!cipher->Process(record.GetData(), record.GetData(), record.GetLength(), report))
        return false;

    VUnicodeString stored(Prefix);
    AppendHexDigits(stored, record.GetData(), record.GetLength(), false);
    text.Swap(stored);
    return true;
}

bool Decode(const VUnicodeString& text, const VUnicodeString& passphrase, VUnicodeString& plain,
            const VUnicodeString& name, VReportMessageParams& report) {
    auto unreadable = [&] {
        report.Set(CONFIG_PROTECTED_TEXT_UNREADABLE, name);
        return false;
    };
    if (!text.StartsWith(Prefix)) return unreadable();
    std::unique_ptr<CryptUtils::Cipher> cipher = CreateCipher(passphrase, false);
    if (!cipher) {
        report.Set(CONFIG_PASSPHRASE_UNUSABLE, name);
        return false;
    }
    VBasicBuffer record;
    if (!DecodeHexDigits(text.c_str() + PrefixLength, text.GetLength() - PrefixLength, record))
        return unreadable();
    const size_t size = record.GetLength();
    const size_t blockSize = cipher->GetBlockSize();
    if (size < LengthFieldSize + DigestSize || size % blockSize != 0 || size < blockSize)
        return unreadable();
    if (!cipher->Process(record.GetData(), record.GetData(), size, report)) return false;

    // A wrong pass phrase gives random bytes, which fail here or at the digest.
    const uint32_t textBytes = ReadLittleEndian32(record.GetData());
    if (textBytes > size - LengthFieldSize - DigestSize) return unreadable();
    const uint8_t* textStart = record.GetData() + LengthFieldSize;
    VBasicBuffer digest(DigestSize);
    if (!DigestText(textStart, textBytes, digest.Extend(DigestSize), report)) return false;
    if (!CryptoPP::VerifyBufsEqual(digest.GetData(), textStart + textBytes, DigestSize))
        return unreadable();

    VUnicodeString result(Str::Sensitive);
    if (!ReadUtf8(textStart, textBytes, result)) return unreadable();
    plain.Swap(result);
    return true;
}

}  // namespace PassphraseForm
