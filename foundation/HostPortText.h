// The text form of a host with a port: splitting "host:port" (IPv6 literals
// in brackets) and joining the two for display.
#pragma once

#include <cstdint>

#include "VString.h"

// Splits text into its host and port:
// - no ":" at all: the whole text is the host, the port is 0;
// - more than one ":" (an IPv6 literal): without brackets the whole text is
//   the host with port 0; with them the host is what "[" and "]" enclose,
//   "[" must open the text, and after "]" only ":port" may follow;
// - otherwise the host is the text before the last ":".
// The port is an unsigned decimal number below 65536, which only white space
// may follow. False for a null text, unbalanced brackets or a bad port; host
// and port are then unspecified.
bool SplitHostPort(const char* text, VString& host, uint16_t& port);

// "host:port" for display: a host holding ":" is bracketed, an empty host is
// written "[]", and an empty port leaves the colon out.
template <class Char>
VBasicString<Char> JoinHostPort(const VBasicString<Char>& host, const VBasicString<Char>& port);
