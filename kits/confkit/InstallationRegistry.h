// Confkit's reading of the installation facts: values of
// "SOFTWARE\Quillon\Installation" and its subkeys, per user first, then
// machine-wide, and the user's shell folders for the defaults. Any thread.
#pragma once

#include <cstdint>

#include "VString.h"

// Value name of the installation key's subkey (null or empty: the key itself),
// from HKEY_CURRENT_USER, else from HKEY_LOCAL_MACHINE. A text has its
// environment variables expanded. False, value untouched, when neither has it
// with that type.
bool ReadInstallationString(const wchar_t* subkey, const wchar_t* name, VUnicodeString& value);
bool ReadInstallationDword(const wchar_t* subkey, const wchar_t* name, uint32_t& value);

// The shell folder csidl (CSIDL_APPDATA, ...), without a trailing separator;
// empty when the shell cannot give it.
VUnicodeString GetShellFolder(int csidl);
