// The tray program's command line: split into tokens, with options looked up
// (and consumed) by name. Start-up reads "/F", the configuration folder,
// "/ConfigPassphrase", and the agent's "/AddKey" with its options; every
// other token is ignored.
#pragma once

#include <cstdint>

#include "VContainers.h"
#include "VReportMessageParams.h"
#include "VString.h"

class VCommandLine {
public:
    // Splits commandLine into tokens and looks up "/F" as an optional text
    // option, kept for GetConfigFolder. A line holding a link (a token with
    // "://") is taken as it stands: true, and no folder. Otherwise the result
    // is that of the "/F" lookup.
    bool Parse(const VUnicodeString& commandLine, VReportMessageParams& report);
    // The "/F" value found by Parse; empty when there was none.
    const VUnicodeString& GetConfigFolder() const { return configFolder_; }

    // Looks up option (written with its switch character, "/Name" or "-Name",
    // matched without regard to case) and removes it and its value from the
    // tokens, so a second lookup finds the next occurrence. An absent option
    // is true unless required. False with CONFIG_OPTION_VALUE_MISSING when no
    // token follows the option. The value of "/ConfigPassphrase" comes back
    // sensitive and its token is wiped.
    bool GetTextOption(const wchar_t* option, VUnicodeString& value, VReportMessageParams& report,
                       bool required);
    // As GetTextOption, for a decimal number (0 when absent); a value with other
    // characters than digits fails with CONFIG_OPTION_NOT_A_NUMBER.
    bool GetNumberOption(const wchar_t* option, uint32_t& value, VReportMessageParams& report,
                         bool required);

    // Looks up a switch that takes no value (matched as GetTextOption
    // matches) and removes it; whether it was there.
    bool TakeSwitch(const wchar_t* option);

    const VArray<VUnicodeString>& GetTokens() const { return tokens_; }

private:
    static constexpr size_t npos = static_cast<size_t>(-1);

    void Tokenize(const VUnicodeString& commandLine);
    // The index of option's first match among the tokens; npos for none, or
    // when option is not written as a switch.
    size_t FindSwitch(const wchar_t* option) const;

    VArray<VUnicodeString> tokens_;
    VUnicodeString configFolder_;
};
