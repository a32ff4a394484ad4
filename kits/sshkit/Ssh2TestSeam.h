// For tests only (library sshkit_test_seam, which the program never links):
// makes one self-test fail, so that a test of start-up can show what the user
// sees when the hash or cipher code is broken in FIPS mode. The program itself
// has no switch that does this.
#pragma once

namespace SSH2::Testing {

// From now on, the self-test named name ("md5", "sha1", "sha224", "sha256",
// "sha384", "sha512", "aes128-cbc", "aes192-cbc", "aes256-cbc") compares
// against a wrong answer. False for an unknown name. Not thread-safe with Init.
bool BreakSelfTest(const wchar_t* name);

// Every self-test compares against its right answer again.
void RepairSelfTests();

}  // namespace SSH2::Testing
