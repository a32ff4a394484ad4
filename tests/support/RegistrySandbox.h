// Test helpers for Wine's real registry: a key of the test's own under
// HKEY_CURRENT_USER\Software\TraywellTests, removed with everything below it
// when the sandbox goes, and a redirection of a predefined key (HKEY_LOCAL_MACHINE,
// HKEY_CURRENT_USER) into such a key for code that reads fixed places.
#pragma once

#include <windows.h>

#include <vector>

#include "VString.h"
#include "Win32Handle.h"

class RegistrySandbox {
public:
    RegistrySandbox();
    ~RegistrySandbox();
    RegistrySandbox(const RegistrySandbox&) = delete;
    RegistrySandbox& operator=(const RegistrySandbox&) = delete;

    HKEY Get() const { return key_.Get(); }
    // The sandbox's path below HKEY_CURRENT_USER, and the path of child below it.
    const VUnicodeString& Path() const { return path_; }
    VUnicodeString PathOf(const wchar_t* child) const;

private:
    VUnicodeString path_;
    RegistryKeyHandle key_;
};

// While it lives, predefined (HKEY_LOCAL_MACHINE or HKEY_CURRENT_USER) means
// the subkey name of sandbox, for every registry call of this process.
class PredefinedKeyRedirect {
public:
    PredefinedKeyRedirect(HKEY predefined, const RegistrySandbox& sandbox, const wchar_t* name);
    ~PredefinedKeyRedirect();
    PredefinedKeyRedirect(const PredefinedKeyRedirect&) = delete;
    PredefinedKeyRedirect& operator=(const PredefinedKeyRedirect&) = delete;

private:
    HKEY predefined_;
};

// Test oracles: the registry's own answers, without the code under test.
// The type of the value (REG_NONE when it cannot be read) and its bytes.
DWORD RawValueType(HKEY key, const wchar_t* name, std::vector<BYTE>* data = nullptr);
bool RawKeyExists(HKEY parent, const wchar_t* path);
void RawSetValue(HKEY key, const wchar_t* name, DWORD type, const void* data, DWORD size);
