// Sshkit's start-up and clean-up. Start-up runs known-answer self-tests of the
// hash and cipher code the program uses (the SHA family, MD5 and AES-CBC of
// the crypto utilities); in FIPS mode a failed self-test stops SSH2 from
// starting. UI thread, or any single thread that owns start-up.
#pragma once

#include "VReportMessageParams.h"

namespace SSH2 {

// Runs the self-tests and keeps the two settings. In FIPS mode, a failed
// self-test makes Init return false, with report naming the algorithm
// (SSHKIT_SELF_TEST_FAILED, its text in SshkitMessages.dll beside the
// program); outside FIPS mode the failure is kept (GetFailedSelfTest) and Init
// succeeds. A second Init without CleanupForUnload runs the tests again and
// replaces the settings.
bool Init(bool fipsMode, bool disconnectOnSmartCardRemoval, VReportMessageParams& report);

// Undoes Init: the settings return to their defaults (off). Call only after a
// successful Init; a second call does nothing.
void CleanupForUnload();

// Whether Init succeeded and CleanupForUnload has not run since.
bool IsInitialized();
// The settings Init was given; false when not initialised.
bool IsFipsMode();
bool IsDisconnectOnSmartCardRemoval();
// The name of the self-test that failed at the last Init ("sha256",
// "aes128-cbc", ...); null when all passed or Init has not run.
const wchar_t* GetFailedSelfTest();

}  // namespace SSH2
