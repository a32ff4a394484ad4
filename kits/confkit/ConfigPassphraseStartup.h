// How the configuration pass phrase reaches the configuration library when
// the tray program starts: from the command line ("/ConfigPassphrase"),
// checked against the one the settings were protected with.
#pragma once

#include "GlobalConfig.h"
#include "VReportMessageParams.h"

// The global option "Config Passphrase" holds the check of the pass phrase in
// use: the pass phrase itself, sealed under itself in the "02:" form. It is
// written by whoever sets the pass phrase; this function only reads it.
//
// - No check stored (empty, or not in the "02:" form): given becomes the
//   configuration pass phrase (an empty one leaves none in use); true.
// - A check stored, and given opens it to itself: given becomes the pass
//   phrase; true.
// - A check stored and given empty (CONFIG_PASSPHRASE_REQUIRED), or given
//   does not open it (CONFIG_PASSPHRASE_MISMATCH): false, with the message in
//   report for the user. The pass phrase in force is left as it was (at
//   start-up, none), so nothing is ever sealed under a wrong one, and values
//   sealed under the right one stay as they are, unread.
//
// Call after GetGlobalConfig, with the sensitive value the command line gave
// (empty when none). Any thread.
bool StartConfigPassphrase(const GlobalConfig& config, const VUnicodeString& given,
                           VReportMessageParams& report);
