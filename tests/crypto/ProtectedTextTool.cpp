// The "02:" form for openssl-interop.sh: one request a line on standard input,
// one answer a line, texts as the hexadecimal digits of their UTF-8 bytes.
//
//   seal PASSPHRASE TEXT                 -> the "02:" text
//   open PASSPHRASE PROTECTED            -> TEXT, or "refused 0x<code>"
//
// Empty digits are written "-". A request the tool cannot carry out is
// answered with "error <reason>".

#include <cstdio>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "HexDigits.h"
#include "PassphraseForm.h"
#include "Utf8Text.h"

namespace {

const VUnicodeString Name(L"protected_text_tool");

using Words = std::vector<VUnicodeString>;

VUnicodeString Error(const wchar_t* reason) { return VUnicodeString(L"error ") + reason; }

bool Text(const VUnicodeString& digits, VUnicodeString& text) {
    VBasicBuffer utf8;
    return DecodeHexDigits(digits.c_str(), digits.GetLength(), utf8) &&
           ReadUtf8(utf8.GetData(), utf8.GetLength(), text);
}

VUnicodeString Seal(const Words& words) {
    VUnicodeString passphrase(Str::Sensitive), plain(Str::Sensitive), sealed;
    if (!Text(words[1], passphrase) || !Text(words[2], plain))
        return Error(L"bad hexadecimal UTF-8");
    VReportMessageParams report;
    if (!PassphraseForm::Encode(plain, passphrase, sealed, Name, report))
        return Error(L"sealing failed");
    return sealed;
}

VUnicodeString Open(const Words& words) {
    VUnicodeString passphrase(Str::Sensitive), plain(Str::Sensitive);
    if (!Text(words[1], passphrase)) return Error(L"bad hexadecimal UTF-8");
    VReportMessageParams report;
    if (!PassphraseForm::Decode(words[2], passphrase, plain, Name, report)) {
        VUnicodeString refused;
        refused.FormatPrintf(32, L"refused 0x%08lx",
                             static_cast<unsigned long>(report.GetMessageCode()));
        return refused;
    }
    size_t size = 0;
    MeasureUtf8(plain, size);
    VBasicBuffer utf8(size);
    if (size) WriteUtf8(plain, utf8.Extend(size));
    VUnicodeString digits;
    AppendHexDigits(digits, utf8.GetData(), utf8.GetLength(), false);
    return digits;
}

VUnicodeString Answer(const Words& words) {
    const size_t count = words.size();
    const VUnicodeString& command = count ? words[0] : VUnicodeString();
    if (command == L"seal" && count == 3) return Seal(words);
    if (command == L"open" && count == 3) return Open(words);
    return Error(L"unknown request");
}

}  // namespace

int main() {
    for (std::string line; std::getline(std::cin, line);) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        Words words;
        std::istringstream split(line);
        for (std::string word; split >> word;)
            words.push_back(word == "-" ? VUnicodeString() : VUnicodeString(VString(word.c_str())));
        std::printf("%s\n", VString(Answer(words)).c_str());
    }
    return 0;
}
