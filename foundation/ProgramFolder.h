// The folder of the running program, where its companion files (message
// modules, a portable "Config" folder, clients installed beside it) live.
#pragma once

#include "VString.h"

// The folder of the process's executable file, without a trailing separator
// (a drive root keeps its "\"). Empty when the system cannot tell; GetLastError
// then says why. Any thread.
VUnicodeString GetProgramFolder();

// The path of fileName in the program's folder; empty when the folder is unknown.
VUnicodeString GetPathBesideProgram(const wchar_t* fileName);
