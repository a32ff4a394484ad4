// The four path variables that path-valued settings may hold:
// "${QLS_CONFIG_PATH}", "${QLS_INSTALL_PATH}", "${QLS_USER_DATA_PATH}" and
// "${QLS_SSH_DATA_PATH}". Start-up publishes their folders once; every user
// of a path value expands them when it uses the value. All functions are safe
// to call from any thread.
#pragma once

#include "IString.h"
#include "VString.h"

// Set the folder a variable stands for (null: empty). A trailing separator is
// kept as given.
void SetQlsConfigPathSub(const wchar_t* folder);
void SetQlsInstallPathSub(const wchar_t* folder);
void SetQlsUserDataPathSub(const wchar_t* folder);
void SetQlsSshDataPathSub(const wchar_t* folder);

// Fill folder with what the variable stands for now (empty until set).
void GetQlsConfigPathSub(IString& folder);
void GetQlsInstallPathSub(IString& folder);
void GetQlsUserDataPathSub(IString& folder);
void GetQlsSshDataPathSub(IString& folder);

// value with each of the four variables replaced by its folder. Names match
// without regard to case, as Windows users expect of variables; anything else
// in "${...}" stays as it is. Where a folder ends with a separator and the
// text after the variable starts with one, one separator is dropped, so that
// "${QLS_CONFIG_PATH}\Keys" with the folder "C:\" gives "C:\Keys". The result
// keeps value's sensitivity.
VUnicodeString ExpandQlsPathVariables(const VUnicodeString& value);
