// Sshkit's known-answer self-tests of the hashes and ciphers that the crypto
// utilities provide (CryptUtils::Hasher and CryptUtils::Cipher). Private to Sshkit.
#pragma once

#include <atomic>
#include <cstddef>

namespace SSH2::Detail {

// The number of self-tests, and the name of each ("sha256", "aes128-cbc", ...),
// in the order they run.
size_t GetSelfTestCount();
const wchar_t* GetSelfTestName(size_t index);

// Runs every self-test in order. Null when all pass, else the name of the
// first that failed (a wrong answer, or the code refused to run). Any thread.
const wchar_t* RunSelfTests();

// The index of a self-test that must compare against a wrong answer, or -1.
// Only the test seam (Ssh2TestSeam.h) sets it.
extern std::atomic<int> g_brokenSelfTest;

}  // namespace SSH2::Detail
