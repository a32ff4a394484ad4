#include "VCommandLine.h"

#include <cwchar>

#include "ConfigMessages.h"

namespace {

constexpr wchar_t ConfigPassphraseOption[] = L"/ConfigPassphrase";

bool IsSwitch(const wchar_t* token, size_t length) {
    return length >= 2 && (token[0] == L'-' || token[0] == L'/');
}

// Reads one token from position on into token; returns the position after it.
// The token is written into one buffer sized for the rest of the line, so no
// partial copies of a secret are left behind in freed memory.
size_t ReadToken(const VUnicodeString& line, size_t position, VUnicodeString& token) {
    const wchar_t* text = line.c_str();
    const size_t length = line.GetLength();
    wchar_t* out = token.GetBuffer(length - position);
    size_t count = 0;
    if (text[position] == L'"') {
        // Quoted: up to the next quote that no backslash escapes; \" is a quote.
        for (++position; position < length; ++position) {
            if (text[position] == L'"') {
                if (count > 0 && text[position - 1] == L'\\') {
                    out[count - 1] = L'"';
                    continue;
                }
                ++position;
                break;
            }
            out[count++] = text[position];
        }
    } else {
        // Unquoted: up to a blank outside quotes; the quotes themselves drop out.
        bool quoted = false;
        for (; position < length && (quoted || text[position] != L' '); ++position) {
            if (text[position] == L'"')
                quoted = !quoted;
            else
                out[count++] = text[position];
        }
    }
    token.ReleaseBuffer(count);
    return position;
}

}  // namespace

void VCommandLine::Tokenize(const VUnicodeString& commandLine) {
    tokens_.RemoveAll();
    const size_t length = commandLine.GetLength();
    size_t position = 0;
    while (position < length) {
        if (commandLine[position] == L' ') {
            ++position;
            continue;
        }
        VUnicodeString token(commandLine.GetSensitiveState());
        position = ReadToken(commandLine, position, token);
        if (!token.IsEmpty()) tokens_.Add(token);
    }
}

bool VCommandLine::Parse(const VUnicodeString& commandLine, VReportMessageParams& report) {
    configFolder_.Empty();
    Tokenize(commandLine);
    for (const VUnicodeString& token : tokens_)
        if (token.Find(L"://") != VUnicodeString::npos) {
            report.Clear();
            return true;
        }
    return GetTextOption(L"/F", configFolder_, report, false);
}

size_t VCommandLine::FindSwitch(const wchar_t* option) const {
    const size_t optionLength = std::wcslen(option);
    if (!IsSwitch(option, optionLength)) return npos;
    const VUnicodeString name(option + 1, optionLength - 1);
    for (size_t i = 0; i < tokens_.GetCount(); ++i) {
        const VUnicodeString& token = tokens_[i];
        if (IsSwitch(token.c_str(), token.GetLength()) && token.GetLength() == optionLength &&
            token.Mid(1).EqualsNoCase(name))
            return i;
    }
    return npos;
}

bool VCommandLine::GetTextOption(const wchar_t* option, VUnicodeString& value,
                                 VReportMessageParams& report, bool required) {
    report.Clear();
    value.Empty();
    if (!IsSwitch(option, std::wcslen(option))) return false;
    const size_t i = FindSwitch(option);
    if (i == npos) return !required;
    if (i + 1 == tokens_.GetCount()) {
        report.Set(CONFIG_OPTION_VALUE_MISSING, VUnicodeString(option));
        return false;
    }
    if (std::wcscmp(option, ConfigPassphraseOption) == 0) {
        // A pass phrase lives only in sensitive strings: the caller's copy is
        // private and sensitive, and the token's block is wiped when removed.
        value.MakeSensitive();
        value.Assign(tokens_[i + 1].c_str(), tokens_[i + 1].GetLength());
        tokens_[i + 1].MakeSensitive();
    } else {
        value = tokens_[i + 1];
    }
    tokens_.RemoveAt(i + 1);
    tokens_.RemoveAt(i);
    return true;
}

bool VCommandLine::TakeSwitch(const wchar_t* option) {
    const size_t i = FindSwitch(option);
    if (i == npos) return false;
    tokens_.RemoveAt(i);
    return true;
}

bool VCommandLine::GetNumberOption(const wchar_t* option, uint32_t& value,
                                   VReportMessageParams& report, bool required) {
    value = 0;
    VUnicodeString text;
    if (!GetTextOption(option, text, report, required)) return false;
    if (text.IsEmpty()) return true;
    for (size_t i = 0; i < text.GetLength(); ++i)
        if (text[i] < L'0' || text[i] > L'9') {
            report.Set(CONFIG_OPTION_NOT_A_NUMBER, VUnicodeString(option), text);
            return false;
        }
    value = static_cast<uint32_t>(std::wcstoul(text.c_str(), nullptr, 10));
    return true;
}
