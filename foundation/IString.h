// The string interface passed across module boundaries: a library fills an
// IString that its caller supplies, whatever the caller's string class is.
// The operations are declared in the order the shared interface fixes.
#pragma once

#include <cstddef>

#include "StringBlock.h"

class IString {
public:
    virtual bool IsEmptyString() const = 0;
    // Each Set empties the string, stores the state, then appends the text.
    virtual void SetWide(const wchar_t* text, size_t count, Str::SensitiveState state) = 0;
    virtual void SetNarrow(const char* text, size_t count, Str::SensitiveState state) = 0;
    virtual void SetWide(const wchar_t* text, Str::SensitiveState state) = 0;
    virtual void SetNarrow(const char* text, Str::SensitiveState state) = 0;
    // Copies the text, its length and its sensitivity into target.
    virtual void CopyInto(IString& target) const = 0;
    virtual void AppendNarrow(const char* text, size_t count) = 0;
    virtual void AppendWide(const wchar_t* text, size_t count) = 0;
    virtual void AppendNarrow(const char* text) = 0;
    virtual void AppendWide(const wchar_t* text) = 0;

protected:
    ~IString() = default;
};
