// The folders that start-up works out: the configuration folder's normal form,
// and the user's documents and SSH data folders that the path variables publish.
#pragma once

#include "VString.h"

// True when path names an existing directory.
bool IsDirectory(const VUnicodeString& path);

// folder without trailing "/" or "\", except one that directly follows ":",
// so that C:\ keeps its backslash and D:\Data\\ becomes D:\Data.
VUnicodeString StripTrailingSeparators(VUnicodeString folder);

// The user's documents folder; empty when the shell cannot tell it.
VUnicodeString DocumentsFolder();
// Where the SSH library keeps the user's data: the documents folder, else the
// application-data folder followed by "\Quillon\", else empty.
VUnicodeString SshDataFolder();
