#include "ConnectProtocolTable.h"

#include <windows.h>

#include <string>

#include "NoneConfig.h"

namespace {

// name in the ANSI code page, with "?" for what it cannot hold: a trace line
// must not fail on a name typed in another script.
std::string NarrowForTrace(const VUnicodeString& name) {
    const int length = static_cast<int>(name.GetLength());
    const int needed =
        WideCharToMultiByte(CP_ACP, 0, name.c_str(), length, nullptr, 0, "?", nullptr);
    std::string narrow(static_cast<size_t>(needed), '\0');
    WideCharToMultiByte(CP_ACP, 0, name.c_str(), length, narrow.data(), needed, "?", nullptr);
    return narrow;
}

int DefaultIndex(const ConnectProtocolTable& table, SessionMode mode) {
    for (size_t i = 0; i < table.GetCount(); ++i)
        if (table[i].isDefault && IsProtocolKindAllowed(table[i].kind, mode))
            return static_cast<int>(i);
    return -1;
}

// The row of name, compared without regard to case, when it is "None" or a
// protocol of mode's kinds; -1 otherwise.
int FindNamedIndex(const ConnectProtocolTable& table, SessionMode mode,
                   const VUnicodeString& name) {
    const bool none = name.EqualsNoCase(NoneConfig::ProtocolName);
    for (size_t i = 0; i < table.GetCount(); ++i) {
        const ConnectProtocolTableElement& element = table[i];
        if (!element.name.EqualsNoCase(name)) continue;
        if (none || IsProtocolKindAllowed(element.kind, mode)) return static_cast<int>(i);
    }
    return -1;
}

}  // namespace

bool IsProtocolKindAllowed(uint32_t kind, SessionMode mode) {
    using namespace ConnectProtocolKind;
    if (mode == SessionMode::Transfer) return kind == FileTransferSsh || kind == FileTransferFtp;
    return kind == Network || kind == Device || kind == LocalShell;
}

bool IsKnownProtocolName(const ConnectProtocolTable& table, SessionMode mode,
                         const VUnicodeString& name) {
    return name.IsEmpty() || name.EqualsNoCase(NoneConfig::ProtocolName) ||
           FindNamedIndex(table, mode, name) >= 0;
}

int FindProtocolIndex(const ConnectProtocolTable& table, SessionMode mode,
                      const VUnicodeString& name) {
    const int named = FindNamedIndex(table, mode, name);
    if (named >= 0 || name.EqualsNoCase(NoneConfig::ProtocolName)) return named;
    return DefaultIndex(table, mode);
}

void TraceUnknownProtocol(const VUnicodeString& name) {
    const std::string narrow = NarrowForTrace(name);
    VString line;
    // The formatter would turn a line feed in the pattern into CR LF.
    if (!line.FormatPositional("Unknown protocol \"%1!hs!\" using default protocol.",
                               narrow.c_str()))
        return;
    line += '\n';
    OutputDebugStringA(line.c_str());
}
