// VUnicodeString (UTF-16) and VString (bytes in the thread's ANSI code page):
// reference-counted, copy-on-write strings that carry a sensitivity mark.
//
// A string object is one pointer to the characters of a StringBlock. Copies share
// the block; the first write to a shared block copies it, sized exactly to what
// is needed. Sensitivity is sticky: a sensitive variable stays sensitive when
// plain text is assigned to it, and sensitive blocks are wiped before they are
// freed. A single string object must not be written from two threads at once;
// copies of it may live on any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <utility>

#include "StringBlock.h"

template <class Char>
class VBasicString {
    static_assert(std::is_same_v<Char, char> || std::is_same_v<Char, wchar_t>);

public:
    using OtherChar = std::conditional_t<std::is_same_v<Char, char>, wchar_t, char>;
    static constexpr size_t npos = static_cast<size_t>(-1);

    VBasicString() noexcept : VBasicString(Str::NotSensitive) {}
    // The shared empty string of the given state.
    explicit VBasicString(Str::SensitiveState state) noexcept;
    // A null text is taken as empty.
    VBasicString(const Char* text, Str::SensitiveState state = Str::NotSensitive);
    VBasicString(const Char* text, size_t count, Str::SensitiveState state = Str::NotSensitive);
    // Converts through the thread's ANSI code page, keeping the sensitivity.
    // Throws IllegalSequence when the converter reports an untranslatable sequence.
    explicit VBasicString(const VBasicString<OtherChar>& other);

    VBasicString(const VBasicString& other) noexcept;
    VBasicString(VBasicString&& other) noexcept;
    VBasicString& operator=(const VBasicString& other);
    VBasicString& operator=(VBasicString&& other);
    VBasicString& operator=(const Char* text);
    ~VBasicString();

    size_t GetLength() const noexcept { return Header()->lengthBytes / sizeof(Char); }
    bool IsEmpty() const noexcept { return GetLength() == 0; }
    const Char* c_str() const noexcept { return chars_; }
    // Index up to the length (the terminator); beyond it throws std::out_of_range("VString").
    Char GetAt(size_t index) const;
    Char operator[](size_t index) const { return GetAt(index); }

    Str::SensitiveState GetSensitiveState() const noexcept;
    bool IsSensitive() const noexcept { return Str::IsSensitive(Header()->sensitivity); }
    // Marks this string sensitive, giving it a private block first if it shares one.
    void MakeSensitive();

    // Exchanges blocks, sensitivity included (assignment would keep it sticky).
    void Swap(VBasicString& other) noexcept { std::swap(chars_, other.chars_); }
    // Empties the string, keeping its sensitivity.
    void Empty() noexcept;
    // Replaces the text, keeping the sensitivity of this string.
    void Assign(const Char* text, size_t count);

    // Inserting at the length appends; beyond it throws std::out_of_range("VString").
    void Insert(size_t position, const Char* text, size_t count);
    void Insert(size_t position, const VBasicString& text);
    void Append(const Char* text, size_t count) { Insert(GetLength(), text, count); }
    void Append(const Char* text);
    void Append(const VBasicString& text) { Insert(GetLength(), text); }
    void Append(Char character) { Insert(GetLength(), &character, 1); }
    VBasicString& operator+=(const VBasicString& text) {
        Append(text);
        return *this;
    }
    VBasicString& operator+=(const Char* text) {
        Append(text);
        return *this;
    }
    VBasicString& operator+=(Char character) {
        Append(character);
        return *this;
    }
    // Removes count characters from position on (fewer at the end of the text).
    void Delete(size_t position, size_t count);

    // Substrings keep the sensitivity of this string.
    VBasicString Mid(size_t position, size_t count = npos) const;
    VBasicString Left(size_t count) const { return Mid(0, count); }
    size_t Find(Char character, size_t start = 0) const noexcept;
    size_t Find(const Char* text, size_t start = 0) const noexcept;
    bool StartsWith(const Char* text) const noexcept;
    bool EndsWith(const Char* text) const noexcept;
    // Removes white space (as the runtime classifies it) at either end.
    void Trim();

    // Characters compared over the shorter length, then the lengths.
    int Compare(const VBasicString& other) const noexcept;
    int Compare(const Char* text) const noexcept;
    int CompareNoCase(const VBasicString& other) const noexcept;
    bool EqualsNoCase(const VBasicString& other) const noexcept {
        return CompareNoCase(other) == 0;
    }
    void MakeUpper();

    // Gives a private, writable buffer with room for count characters plus the
    // terminator; the first min(count, length) characters are kept. Finish the
    // write with ReleaseBuffer, giving the new length.
    Char* GetBuffer(size_t count);
    void ReleaseBuffer(size_t length);

    // Parses an unsigned decimal number. Fails for a null or empty text, when
    // no digit is read, on overflow, for a minus sign before the digits' end,
    // and when anything but white space follows the digits.
    static bool ParseUnsigned(const Char* text, uint64_t& value) noexcept;
    bool ParseUnsigned(uint64_t& value) const noexcept { return ParseUnsigned(chars_, value); }

    // Positional inserts ("%1", "%2!d!", "%1!ls!") through the system message
    // formatter in the user's default language. False (and the text unchanged)
    // when the formatter fails; GetLastError tells why.
    bool FormatPositional(const Char* pattern, ...);
    // printf-style formatting into a buffer of bufferCharacters characters;
    // false when the text does not fit or the format fails.
    bool FormatPrintf(size_t bufferCharacters, const Char* format, ...);

    friend bool operator==(const VBasicString& a, const VBasicString& b) noexcept {
        return a.Compare(b) == 0;
    }
    friend bool operator==(const VBasicString& a, const Char* b) noexcept {
        return a.Compare(b) == 0;
    }
    friend bool operator<(const VBasicString& a, const VBasicString& b) noexcept {
        return a.Compare(b) < 0;
    }
    friend VBasicString operator+(VBasicString a, const VBasicString& b) {
        a.Append(b);
        return a;
    }
    friend VBasicString operator+(VBasicString a, const Char* b) {
        a.Append(b);
        return a;
    }

private:
    Str::BlockHeader* Header() const noexcept {
        return reinterpret_cast<Str::BlockHeader*>(chars_) - 1;
    }
    static int CompareCharacters(const Char* a, size_t aLength, const Char* b,
                                 size_t bLength) noexcept;
    static Char* CharactersOf(Str::BlockHeader* block) noexcept {
        return static_cast<Char*>(block->characters);
    }
    void TakeBlock(Str::BlockHeader* block) noexcept;
    void SetLength(size_t length) noexcept;
    // Makes the block private with room for count characters (see GetBuffer).
    void MakeWritable(size_t count);

    Char* chars_;
};

using VUnicodeString = VBasicString<wchar_t>;
using VString = VBasicString<char>;

extern template class VBasicString<char>;
extern template class VBasicString<wchar_t>;
