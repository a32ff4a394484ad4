// Where the client programs are installed: the terminal client (Termwright, or
// its plain edition Termlet) and the transfer client (Filewright).
//
// The facts come from the registry, from the key "SOFTWARE\Quillon\Installation"
// under HKEY_CURRENT_USER first (a per-user installation) and then under
// HKEY_LOCAL_MACHINE (a machine-wide one); a value found in neither has its
// default. They are read at every call, so a client installed while the
// program runs is seen at once.
//
//   Installation\<client>   "Path"        REG_SZ  the client's executable file;
//                                                 default: "<client>.exe" in
//                                                 this program's own folder
//   Installation            "Integrated"  REG_DWORD  non-zero: the terminal and
//                                                 the transfer client are one
//                                                 product; default: 1 when both
//                                                 Termwright and Filewright are
//                                                 installed, else 0
//
// where <client> is "Termwright", "Termlet" or "Filewright". Environment
// variables in a text ("%ProgramFiles%") are expanded. A client is installed
// when its executable file exists.
//
// The paths returned stay valid for the life of the process. Any thread.
#pragma once

// The registry key of the installation facts, below either hive.
inline constexpr wchar_t InstallationKeyPath[] = L"SOFTWARE\\Quillon\\Installation";

bool IsIntegrated();
bool IsTermwrightInstalled();
bool IsTermletInstalled();
bool IsFilewrightInstalled();
bool IsTermwrightOrTermletInstalled();

// The full path of the client's executable file, whether it exists or not.
const wchar_t* GetTermwrightPath();
const wchar_t* GetTermletPath();
const wchar_t* GetFilewrightPath();
