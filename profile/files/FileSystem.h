// Folder helpers of the profile file store.
#pragma once

#include "VSecurityDescriptor.h"
#include "VString.h"

// Creates the folder path with every missing parent folder, applying security
// (null or empty: default security) to each folder it creates. A folder that
// already exists is no error; a file where a folder should be fails with
// ERROR_ALREADY_EXISTS. Both "\" and "/" separate, and drive, UNC ("\\server\share")
// and "\\?\" roots are never created. False with the system's error as last error.
bool CreateFolderChain(const VUnicodeString& path, const VSecurityDescriptor* security = nullptr);

// Removes path: a file, or a folder with everything in it. A link to a folder
// is removed itself, never followed. Read-only files are not forced: they fail
// the removal, as they would in the shell. False with the system's error as
// last error; what was removed before a failure stays removed.
bool DeleteTree(const VUnicodeString& path);
