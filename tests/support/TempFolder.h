// A temporary folder of the test's own, removed with everything in it when the test ends.
#pragma once

#include <windows.h>

#include <string>

#include "VString.h"

class TempFolder {
public:
    TempFolder();
    ~TempFolder();
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    // The folder, without a trailing separator.
    const VUnicodeString& Path() const { return path_; }
    VUnicodeString operator/(const wchar_t* name) const { return path_ + L"\\" + name; }

private:
    VUnicodeString path_;
};

// Writes bytes as the whole file; false when that fails.
bool WriteWholeFile(const VUnicodeString& path, const std::string& bytes);
// The whole file as bytes; empty when it cannot be read.
std::string ReadWholeFile(const VUnicodeString& path);
