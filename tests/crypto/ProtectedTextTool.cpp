// The "02:" form for openssl-interop.sh: one request a line on standard input, one answer a
// line, texts as the hexadecimal digits of their UTF-8 bytes ("-" when empty):
//   seal PASSPHRASE TEXT        -> the "02:" text
//   open PASSPHRASE PROTECTED   -> TEXT, or "refused 0x<code>"
// A request the tool cannot carry out is answered with "error <reason>".

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

bool Text(const VUnicodeString& digits, VUnicodeString& text) {
    VBasicBuffer utf8;
    return DecodeHexDigits(digits.c_str(), digits.GetLength(), utf8) &&
           ReadUtf8(utf8.GetData(), utf8.GetLength(), text);
}

// words: the request, its pass phrase and its text, each as given.
VUnicodeString Answer(const std::vector<VUnicodeString>& words) {
    const bool seal = words.size() == 3 && words[0] == L"seal";
    if (!seal && (words.size() != 3 || words[0] != L"open")) return L"error unknown request";
    VUnicodeString passphrase(Str::Sensitive), plain(Str::Sensitive), answer;
    if (!Text(words[1], passphrase) || (seal && !Text(words[2], plain)))
        return L"error bad hexadecimal UTF-8";
    VReportMessageParams report;
    if (seal) {
        if (!PassphraseForm::Encode(plain, passphrase, answer, Name, report))
            return L"error sealing failed";
    } else if (!PassphraseForm::Decode(words[2], passphrase, plain, Name, report)) {
        answer.FormatPrintf(32, L"refused 0x%08lx",
                            static_cast<unsigned long>(report.GetMessageCode()));
    } else {
        size_t size = 0;
        MeasureUtf8(plain, size);
        VBasicBuffer utf8(size);
        if (size) WriteUtf8(plain, utf8.Extend(size));
        AppendHexDigits(answer, utf8.GetData(), utf8.GetLength(), false);
    }
    return answer;
}

}  // namespace

int main() {
    for (std::string line; std::getline(std::cin, line);) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        std::vector<VUnicodeString> words;
        std::istringstream split(line);
        for (std::string word; split >> word;)
            words.push_back(word == "-" ? VUnicodeString() : VUnicodeString(VString(word.c_str())));
        std::printf("%s\n", VString(Answer(words)).c_str());
    }
    return 0;
}
