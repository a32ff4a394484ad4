// A key of the test's own under HKEY_CURRENT_USER\Software\TraywellTests, removed when it
// goes, and predefined keys redirected into it for code that reads fixed places.
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

// While it lives, predefined means the subkey name of sandbox, for this whole process.
class PredefinedKeyRedirect {
public:
    PredefinedKeyRedirect(HKEY predefined, const RegistrySandbox& sandbox, const wchar_t* name);
    ~PredefinedKeyRedirect();
    PredefinedKeyRedirect(const PredefinedKeyRedirect&) = delete;
    PredefinedKeyRedirect& operator=(const PredefinedKeyRedirect&) = delete;

private:
    HKEY predefined_;
};

// Oracles, without the code under test. The value's type (REG_NONE: unreadable) and bytes.
DWORD RawValueType(HKEY key, const wchar_t* name, std::vector<BYTE>* data = nullptr);
bool RawKeyExists(HKEY parent, const wchar_t* path);
void RawSetValue(HKEY key, const wchar_t* name, DWORD type, const void* data, DWORD size);
