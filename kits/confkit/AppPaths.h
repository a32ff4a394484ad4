// The folders of a client application ("Termwright", "Filewright", ...): where
// it keeps its configuration, and whether and where it keeps the values that
// belong to one user (the personal data) apart from it.
//
// Read at every call from "SOFTWARE\Quillon\Installation\<application>" under
// HKEY_CURRENT_USER, then HKEY_LOCAL_MACHINE (see Installation.h), with these
// values and defaults (environment variables in texts are expanded):
//
//   "Config Folder"             REG_SZ     default: <AppData>\Quillon\<application>
//   "Use Personal Data Folder"  REG_DWORD  default: 0 (the personal values stay
//                                          in the configuration folder)
//   "Personal Data Folder"      REG_SZ     default: the folder "<LocalAppData>
//                                          \Quillon\<application>\Personal Data
//                                          \<the configuration folder as one name>"
//
// <AppData> and <LocalAppData> are the user's roaming and local application-data
// folders. No folder is created here. Any thread.
#pragma once

#include "VString.h"

// The application's configuration folder; empty for an empty or null name,
// or when the user's application-data folder cannot be had.
VUnicodeString GetAppConfigPath(const wchar_t* appName);

// Whether the application keeps a personal data folder apart from its
// configuration folder. False for an empty or null name.
bool UsePersonalDataPath(const wchar_t* appName);

// The personal data folder of the application for the configuration folder
// configFolder: the "Personal Data Folder" value, else a folder of its own for
// each configuration folder (so two portable configurations never share
// personal values), named after configFolder with every character that a file
// name cannot hold ("\", "/", ":", ...) turned into "_". Empty for an empty or
// null name, or when the local application-data folder cannot be had.
VUnicodeString GetAppPersonalDataPath(const wchar_t* appName, const wchar_t* configFolder);
