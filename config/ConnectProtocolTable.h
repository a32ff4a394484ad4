// The protocol table's shape: one element per protocol a session may name in
// "Protocol Name" (terminal sessions) or "Transfer Protocol Name" (transfer
// sessions), with its kind, which says which sessions may use it, and the
// connection part that holds its settings. The table's contents belong to
// Confkit (GetConnectProtocolTable).
#pragma once

#include <cstdint>

#include "ConnectConfig.h"
#include "VContainers.h"

// Which client a session is read for.
enum class SessionMode {
    Terminal,  // "Protocol Name"; protocol kinds 1, 3 and 8
    Transfer,  // "Transfer Protocol Name"; kinds 6 and 9
};

// The kinds of protocols, by number.
namespace ConnectProtocolKind {
constexpr uint32_t NoConnection = 0;  // "None"
constexpr uint32_t Network = 1;       // a terminal over the network (SSH, Telnet, ...)
constexpr uint32_t Device = 3;        // a terminal over a local device (serial line, modem)
constexpr uint32_t FileTransferSsh = 6;
constexpr uint32_t LocalShell = 8;
constexpr uint32_t FileTransferFtp = 9;
}  // namespace ConnectProtocolKind

struct ConnectProtocolTableElement {
    VUnicodeString name;    // as sessions name it
    uint32_t kind;          // ConnectProtocolKind
    VUnicodeString module;  // the module that carries the protocol; empty when built in
    // The protocol a session of its kind's mode takes when it names none, or
    // one that is unknown or does not suit it. One per mode.
    bool isDefault;
    // A new connection part for the protocol, with its defaults (one
    // reference, the caller's).
    ConnectConfig* (*createPart)();
};

// Indexing past the count throws VContainerOutOfRange.
using ConnectProtocolTable = VArray<ConnectProtocolTableElement>;

// Whether sessions of mode may use protocols of kind.
bool IsProtocolKindAllowed(uint32_t kind, SessionMode mode);

// Whether name is one that sessions of mode may hold: empty (the default),
// "None", or the name of a protocol of mode's kinds, compared without regard
// to case.
bool IsKnownProtocolName(const ConnectProtocolTable& table, SessionMode mode,
                         const VUnicodeString& name);

// The index in table of the protocol name names for sessions of mode; the
// default protocol of mode for an empty name and for one that is not known
// (see IsKnownProtocolName). -1 when the table has no such protocol (no
// default for mode, no "None" row).
int FindProtocolIndex(const ConnectProtocolTable& table, SessionMode mode,
                      const VUnicodeString& name);

// Writes the debug-output line "Unknown protocol "<name>" using default
// protocol." (OutputDebugStringA, name in the ANSI code page).
void TraceUnknownProtocol(const VUnicodeString& name);
