// The family's fixed places in the registry: where its settings are based,
// and the policy values and machine-wide application settings that an
// administrator sets. Every lookup only reads; nothing here creates a key.
// Safe from any thread.
#pragma once

#include <windows.h>

#include <cstdint>

#include "VString.h"

// A key given as a hive (a predefined key) and a path below it.
struct RegistryPlace {
    HKEY hive;
    VUnicodeString path;
};

// The first of these keys that opens for reading decides where the family's
// settings live: HKEY_CURRENT_USER\SOFTWARE\Quillon, HKEY_LOCAL_MACHINE\SOFTWARE\Quillon,
// HKEY_CURRENT_USER\SOFTWARE\Quillon Works, HKEY_LOCAL_MACHINE\SOFTWARE\Quillon Works.
// When none does, HKEY_CURRENT_USER\SOFTWARE\Quillon.
RegistryPlace FindFamilyRegistryBase();

// A policy value (REG_DWORD or REG_SZ) from the first of these keys that has it
// with that type: HKEY_LOCAL_MACHINE\Software\Policies\Quillon,
// HKEY_CURRENT_USER\Software\Policies\Quillon, HKEY_LOCAL_MACHINE\SOFTWARE\Quillon\Global.
// False, and value untouched, when none has it.
bool GetPolicyDword(const VUnicodeString& valueName, uint32_t& value);
bool GetPolicyString(const VUnicodeString& valueName, VUnicodeString& text);

// An application's machine-wide setting: the policy value first, then the
// value in HKEY_LOCAL_MACHINE\SOFTWARE\Quillon\<application>\<keyName>, then,
// for an application whose name begins with "Termwright" (in any case), in the
// older HKEY_LOCAL_MACHINE\SOFTWARE\Quillon Works\<application> 3.0\<keyName>;
// defaultValue when none has it. An empty keyName means the application's key itself.
uint32_t GetApplicationSettingDword(const VUnicodeString& valueName,
                                    const VUnicodeString& application,
                                    const VUnicodeString& keyName, uint32_t defaultValue);
VUnicodeString GetApplicationSettingString(const VUnicodeString& valueName,
                                           const VUnicodeString& application,
                                           const VUnicodeString& keyName,
                                           const VUnicodeString& defaultValue);
