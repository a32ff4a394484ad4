// The process's global options object, which the tray program and the other
// users of the configuration library share.
#pragma once

#include "GlobalConfig.h"
#include "VReportMessageParams.h"

// index -1: config receives the process's global options object, loaded on
// the first call from the global options key ("Global") of the current store
// (CurrentProfileStoreFactory), with the terminal client's names, its pass
// phrase member opened through the configuration pass phrase
// (GetConfigPassphraseProvider). Every later call yields the same object,
// without loading it again. The object belongs to the library and lives
// until the process ends; callers use it from the user-interface thread and
// save it with config->SaveToStore, which writes back to the key it was
// loaded from.
//
// True when the options were read (a missing key counts as read). False when
// the key could not be read: config still receives the object, whose options
// then hold their defaults, and report (in the second form) tells why
// (CONFIG_GLOBAL_OPTIONS_UNREADABLE). Any other index is misuse and throws
// std::invalid_argument. Safe to call from any thread.
bool GetGlobalConfig(GlobalConfig*& config, int index);
bool GetGlobalConfig(GlobalConfig*& config, int index, VReportMessageParams& report);
