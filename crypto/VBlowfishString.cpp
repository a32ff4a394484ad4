#include "VBlowfishString.h"

#include <cwchar>

#include "ConfigMessages.h"
#include "HexDigits.h"
#include "VBasicBuffer.h"
#include "VCipherBlowfish.h"

namespace {

// The two fixed keys of the older form: enciphering uses the first, then the
// second; deciphering goes the other way. They are kept here only.
constexpr uint8_t FirstKey[] = {0xe7, 0x80, 0x9b, 0xcd, 0xef, 0x47, 0x41, 0xb6,
                                0x66, 0xd5, 0x2e, 0xe6, 0x53, 0xa8, 0x82, 0x05};
constexpr uint8_t SecondKey[] = {0xbe, 0xa6, 0x46, 0x0d, 0x00, 0xeb, 0x83, 0x55,
                                 0x80, 0xb0, 0x80, 0x66, 0x36, 0xc4, 0xbf, 0xd6};

const VCipherBlowfish& FirstCipher() {
    static const VCipherBlowfish cipher(FirstKey, sizeof FirstKey);
    return cipher;
}

const VCipherBlowfish& SecondCipher() {
    static const VCipherBlowfish cipher(SecondKey, sizeof SecondKey);
    return cipher;
}

}  // namespace

VUnicodeString VBlowfishString::Encode(const VUnicodeString& plain) {
    const size_t textBytes = plain.GetLength() * sizeof(wchar_t);
    const size_t blocks = (textBytes + VCipherBlowfish::BlockSize - 1) / VCipherBlowfish::BlockSize;
    VBasicBuffer record(blocks * VCipherBlowfish::BlockSize);
    // wchar_t is UTF-16LE on every Windows target.
    record.Append(plain.c_str(), textBytes);
    record.Extend(record.GetTargetSize() - record.GetLength());
    FirstCipher().Encipher(record.GetData(), record.GetTargetSize());
    SecondCipher().Encipher(record.GetData(), record.GetTargetSize());
    VUnicodeString digits;
    AppendHexDigits(digits, record.GetData(), record.GetTargetSize(), false);
    return digits;
}

bool VBlowfishString::Decode(const VUnicodeString& digits, VUnicodeString& plain,
                             const VUnicodeString& name, VReportMessageParams& report) {
    auto invalid = [&] {
        report.Set(CONFIG_PROTECTED_TEXT_INVALID, name);
        return false;
    };
    VBasicBuffer record;
    if (!DecodeHexDigits(digits.c_str(), digits.GetLength(), record)) return invalid();
    if (!SecondCipher().Decipher(record.GetData(), record.GetLength())) return invalid();
    FirstCipher().Decipher(record.GetData(), record.GetLength());

    const auto* units = reinterpret_cast<const wchar_t*>(record.GetData());
    size_t length = record.GetLength() / sizeof(wchar_t);
    while (length > 0 && units[length - 1] == L'\0') --length;
    // Only the padding may be zero.
    if (length > 0 && std::wmemchr(units, L'\0', length)) return invalid();
    VUnicodeString result(units, length, Str::Sensitive);
    plain.Swap(result);
    return true;
}
