#include "VString.h"

#include <windows.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <cwctype>
#include <stdexcept>
#include <vector>

#include "ReportExceptions.h"
#include "Win32Handle.h"

namespace {

// The runtime's character functions for each width.
template <class Char>
struct Runtime;

template <>
struct Runtime<char> {
    static size_t Length(const char* text) { return std::strlen(text); }
    static int CompareNoCase(const char* a, const char* b, size_t count) {
        return _strnicmp(a, b, count);
    }
    static char Upper(char c) {
        return static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    }
    static bool IsSpace(char c) { return std::isspace(static_cast<unsigned char>(c)) != 0; }
    static unsigned long long ToUnsigned(const char* text, char** end) {
        return std::strtoull(text, end, 10);
    }
    static int PrintF(char* buffer, size_t size, const char* format, va_list args) {
        return std::vsnprintf(buffer, size, format, args);
    }
    static DWORD FormatFromString(const char* pattern, char** result, va_list* args) {
        return FormatMessageA(FORMAT_MESSAGE_FROM_STRING | FORMAT_MESSAGE_ALLOCATE_BUFFER, pattern,
                              0, LANG_USER_DEFAULT, reinterpret_cast<char*>(result), 0, args);
    }
};

template <>
struct Runtime<wchar_t> {
    static size_t Length(const wchar_t* text) { return std::wcslen(text); }
    static int CompareNoCase(const wchar_t* a, const wchar_t* b, size_t count) {
        return _wcsnicmp(a, b, count);
    }
    static wchar_t Upper(wchar_t c) { return static_cast<wchar_t>(std::towupper(c)); }
    static bool IsSpace(wchar_t c) { return std::iswspace(c) != 0; }
    static unsigned long long ToUnsigned(const wchar_t* text, wchar_t** end) {
        return std::wcstoull(text, end, 10);
    }
    static int PrintF(wchar_t* buffer, size_t size, const wchar_t* format, va_list args) {
        return std::vswprintf(buffer, size, format, args);
    }
    static DWORD FormatFromString(const wchar_t* pattern, wchar_t** result, va_list* args) {
        return FormatMessageW(FORMAT_MESSAGE_FROM_STRING | FORMAT_MESSAGE_ALLOCATE_BUFFER, pattern,
                              0, LANG_USER_DEFAULT, reinterpret_cast<wchar_t*>(result), 0, args);
    }
};

[[noreturn]] void ThrowOutOfRange() { throw std::out_of_range("VString"); }

// Measures, sizes exactly and converts in place, through the thread's code page.
VUnicodeString ConvertToWide(const VString& source) {
    const int sourceLength = static_cast<int>(source.GetLength());
    VUnicodeString result(source.GetSensitiveState());
    if (sourceLength == 0) return result;
    const int needed = MultiByteToWideChar(CP_THREAD_ACP, MB_PRECOMPOSED, source.c_str(),
                                           sourceLength, nullptr, 0);
    if (needed == 0) {
        if (GetLastError() == ERROR_NO_UNICODE_TRANSLATION) throw IllegalSequence();
        return result;
    }
    wchar_t* buffer = result.GetBuffer(static_cast<size_t>(needed));
    const int written = MultiByteToWideChar(CP_THREAD_ACP, MB_PRECOMPOSED, source.c_str(),
                                            sourceLength, buffer, needed);
    result.ReleaseBuffer(static_cast<size_t>(written));
    return result;
}

VString ConvertToNarrow(const VUnicodeString& source) {
    const int sourceLength = static_cast<int>(source.GetLength());
    VString result(source.GetSensitiveState());
    if (sourceLength == 0) return result;
    const int needed = WideCharToMultiByte(CP_THREAD_ACP, 0, source.c_str(), sourceLength, nullptr,
                                           0, nullptr, nullptr);
    if (needed == 0) {
        if (GetLastError() == ERROR_NO_UNICODE_TRANSLATION) throw IllegalSequence();
        return result;
    }
    char* buffer = result.GetBuffer(static_cast<size_t>(needed));
    const int written = WideCharToMultiByte(CP_THREAD_ACP, 0, source.c_str(), sourceLength, buffer,
                                            needed, nullptr, nullptr);
    result.ReleaseBuffer(static_cast<size_t>(written));
    return result;
}

VUnicodeString Convert(const VString& source) { return ConvertToWide(source); }
VString Convert(const VUnicodeString& source) { return ConvertToNarrow(source); }

}  // namespace

template <class Char>
VBasicString<Char>::VBasicString(Str::SensitiveState state) noexcept
    : chars_(CharactersOf(Str::SharedEmptyBlock(sizeof(Char), state))) {}

template <class Char>
VBasicString<Char>::VBasicString(const Char* text, Str::SensitiveState state)
    : VBasicString(text, text ? Runtime<Char>::Length(text) : 0, state) {}

template <class Char>
VBasicString<Char>::VBasicString(const Char* text, size_t count, Str::SensitiveState state)
    : VBasicString(state) {
    if (text && count) Append(text, count);
}

template <class Char>
VBasicString<Char>::VBasicString(const VBasicString<OtherChar>& other)
    : VBasicString(Convert(other)) {}

template <class Char>
VBasicString<Char>::VBasicString(const VBasicString& other) noexcept : chars_(other.chars_) {
    Str::AddBlockReference(Header());
}

template <class Char>
VBasicString<Char>::VBasicString(VBasicString&& other) noexcept
    : chars_(CharactersOf(Str::SharedEmptyBlock(sizeof(Char), other.GetSensitiveState()))) {
    std::swap(chars_, other.chars_);
}

template <class Char>
VBasicString<Char>::~VBasicString() {
    Str::ReleaseBlock(Header());
}

template <class Char>
void VBasicString<Char>::TakeBlock(Str::BlockHeader* block) noexcept {
    Str::BlockHeader* old = Header();
    chars_ = CharactersOf(block);
    Str::ReleaseBlock(old);
}

template <class Char>
VBasicString<Char>& VBasicString<Char>::operator=(const VBasicString& other) {
    if (chars_ == other.chars_) return *this;
    if (IsSensitive() && !other.IsSensitive()) {
        // Sensitivity is sticky: keep a private, sensitive copy of the plain text.
        Assign(other.chars_, other.GetLength());
        return *this;
    }
    Str::AddBlockReference(other.Header());
    TakeBlock(other.Header());
    return *this;
}

template <class Char>
VBasicString<Char>& VBasicString<Char>::operator=(VBasicString&& other) {
    if (chars_ == other.chars_) return *this;
    if (IsSensitive() && !other.IsSensitive())
        return *this = static_cast<const VBasicString&>(other);
    // The moved-from variable keeps its own mark, not the one of the block it
    // is handed here (which it releases).
    const Str::SensitiveState otherState = other.GetSensitiveState();
    std::swap(chars_, other.chars_);
    other.TakeBlock(Str::SharedEmptyBlock(sizeof(Char), otherState));
    return *this;
}

template <class Char>
VBasicString<Char>& VBasicString<Char>::operator=(const Char* text) {
    Assign(text, text ? Runtime<Char>::Length(text) : 0);
    return *this;
}

template <class Char>
Char VBasicString<Char>::GetAt(size_t index) const {
    if (index > GetLength()) ThrowOutOfRange();
    return chars_[index];
}

template <class Char>
Str::SensitiveState VBasicString<Char>::GetSensitiveState() const noexcept {
    return IsSensitive() ? Str::Sensitive : Str::NotSensitive;
}

template <class Char>
void VBasicString<Char>::MakeSensitive() {
    if (IsSensitive()) return;
    if (IsEmpty()) {
        TakeBlock(Str::SharedEmptyBlock(sizeof(Char), Str::Sensitive));
        return;
    }
    MakeWritable(GetLength());
    Header()->sensitivity = Str::Sensitive;
}

template <class Char>
void VBasicString<Char>::Empty() noexcept {
    if (IsEmpty()) return;
    TakeBlock(Str::SharedEmptyBlock(sizeof(Char), GetSensitiveState()));
}

template <class Char>
void VBasicString<Char>::Assign(const Char* text, size_t count) {
    if (!text || count == 0) {
        Empty();
        return;
    }
    // A private block with room is written over: a caller that reads many
    // values into one string allocates once.
    const bool ownText = text >= chars_ && text <= chars_ + GetLength();
    if (!ownText && !Str::IsBlockShared(Header()) &&
        Header()->capacityBytes >= (count + 1) * sizeof(Char)) {
        std::memcpy(chars_, text, count * sizeof(Char));
        SetLength(count);
        return;
    }
    // The text may lie inside this string's own block: copy it out first.
    VBasicString copy(text, count, GetSensitiveState());
    Str::AddBlockReference(copy.Header());
    TakeBlock(copy.Header());
}

template <class Char>
void VBasicString<Char>::MakeWritable(size_t count) {
    Str::BlockHeader* block = Header();
    const size_t neededBytes = (count + 1) * sizeof(Char);
    if (!Str::IsBlockShared(block) && block->capacityBytes >= neededBytes) return;
    Str::BlockHeader* fresh = Str::AllocateBlock(neededBytes, sizeof(Char), block->sensitivity);
    const size_t kept = std::min(count, GetLength());
    std::memcpy(fresh->characters, chars_, kept * sizeof(Char));
    fresh->lengthBytes = kept * sizeof(Char);
    CharactersOf(fresh)[kept] = 0;
    TakeBlock(fresh);
}

template <class Char>
void VBasicString<Char>::SetLength(size_t length) noexcept {
    Header()->lengthBytes = length * sizeof(Char);
    chars_[length] = 0;
}

template <class Char>
Char* VBasicString<Char>::GetBuffer(size_t count) {
    MakeWritable(count);
    return chars_;
}

template <class Char>
void VBasicString<Char>::ReleaseBuffer(size_t length) {
    if ((length + 1) * sizeof(Char) > Header()->capacityBytes) ThrowOutOfRange();
    if (length == 0) {
        Empty();
        return;
    }
    SetLength(length);
}

template <class Char>
void VBasicString<Char>::Insert(size_t position, const Char* text, size_t count) {
    const size_t length = GetLength();
    if (position > length) ThrowOutOfRange();
    if (!text || count == 0) return;
    // Text from inside this block must outlive MakeWritable's replacing it.
    const bool ownText = text >= chars_ && text <= chars_ + length;
    const VBasicString keepAlive(ownText ? *this : VBasicString());
    MakeWritable(length + count);
    std::memmove(chars_ + position + count, chars_ + position, (length - position) * sizeof(Char));
    std::memcpy(chars_ + position, text, count * sizeof(Char));
    SetLength(length + count);
}

template <class Char>
void VBasicString<Char>::Insert(size_t position, const VBasicString& text) {
    if (position > GetLength()) ThrowOutOfRange();
    if (text.IsSensitive() && !IsSensitive()) MakeSensitive();
    Insert(position, text.chars_, text.GetLength());
}

template <class Char>
void VBasicString<Char>::Append(const Char* text) {
    if (text) Append(text, Runtime<Char>::Length(text));
}

template <class Char>
void VBasicString<Char>::Delete(size_t position, size_t count) {
    const size_t length = GetLength();
    if (position > length) ThrowOutOfRange();
    count = std::min(count, length - position);
    if (count == 0) return;
    if (count == length) {
        Empty();
        return;
    }
    MakeWritable(length);
    std::memmove(chars_ + position, chars_ + position + count,
                 (length - position - count) * sizeof(Char));
    SetLength(length - count);
}

template <class Char>
VBasicString<Char> VBasicString<Char>::Mid(size_t position, size_t count) const {
    const size_t length = GetLength();
    if (position > length) ThrowOutOfRange();
    count = std::min(count, length - position);
    if (count == length) return *this;
    return VBasicString(chars_ + position, count, GetSensitiveState());
}

template <class Char>
size_t VBasicString<Char>::Find(Char character, size_t start) const noexcept {
    for (size_t i = start; i < GetLength(); ++i)
        if (chars_[i] == character) return i;
    return npos;
}

template <class Char>
size_t VBasicString<Char>::Find(const Char* text, size_t start) const noexcept {
    const size_t length = GetLength();
    const size_t textLength = Runtime<Char>::Length(text);
    if (textLength > length) return npos;
    for (size_t i = start; i + textLength <= length; ++i)
        if (std::memcmp(chars_ + i, text, textLength * sizeof(Char)) == 0) return i;
    return npos;
}

template <class Char>
bool VBasicString<Char>::StartsWith(const Char* text) const noexcept {
    const size_t textLength = Runtime<Char>::Length(text);
    return textLength <= GetLength() && std::memcmp(chars_, text, textLength * sizeof(Char)) == 0;
}

template <class Char>
bool VBasicString<Char>::EndsWith(const Char* text) const noexcept {
    const size_t textLength = Runtime<Char>::Length(text);
    const size_t length = GetLength();
    return textLength <= length &&
           std::memcmp(chars_ + length - textLength, text, textLength * sizeof(Char)) == 0;
}

template <class Char>
void VBasicString<Char>::Trim() {
    size_t end = GetLength();
    while (end > 0 && Runtime<Char>::IsSpace(chars_[end - 1])) --end;
    size_t begin = 0;
    while (begin < end && Runtime<Char>::IsSpace(chars_[begin])) ++begin;
    if (begin == 0 && end == GetLength()) return;
    *this = Mid(begin, end - begin);
}

template <class Char>
int VBasicString<Char>::CompareCharacters(const Char* a, size_t aLength, const Char* b,
                                          size_t bLength) noexcept {
    using Unsigned = std::make_unsigned_t<Char>;
    for (size_t i = 0; i < std::min(aLength, bLength); ++i)
        if (a[i] != b[i]) return static_cast<Unsigned>(a[i]) < static_cast<Unsigned>(b[i]) ? -1 : 1;
    return aLength == bLength ? 0 : (aLength < bLength ? -1 : 1);
}

template <class Char>
int VBasicString<Char>::Compare(const VBasicString& other) const noexcept {
    return CompareCharacters(chars_, GetLength(), other.chars_, other.GetLength());
}

template <class Char>
int VBasicString<Char>::Compare(const Char* text) const noexcept {
    return CompareCharacters(chars_, GetLength(), text ? text : chars_ + GetLength(),
                             text ? Runtime<Char>::Length(text) : 0);
}

template <class Char>
int VBasicString<Char>::CompareNoCase(const VBasicString& other) const noexcept {
    const size_t length = GetLength();
    const size_t otherLength = other.GetLength();
    const int common =
        Runtime<Char>::CompareNoCase(chars_, other.chars_, std::min(length, otherLength));
    if (common != 0) return common < 0 ? -1 : 1;
    return length == otherLength ? 0 : (length < otherLength ? -1 : 1);
}

template <class Char>
void VBasicString<Char>::MakeUpper() {
    const size_t length = GetLength();
    if (length == 0) return;
    MakeWritable(length);
    for (size_t i = 0; i < length; ++i) chars_[i] = Runtime<Char>::Upper(chars_[i]);
}

template <class Char>
bool VBasicString<Char>::ParseUnsigned(const Char* text, uint64_t& value) noexcept {
    value = 0;
    if (!text) return false;
    Char* end = nullptr;
    errno = 0;
    const unsigned long long parsed = Runtime<Char>::ToUnsigned(text, &end);
    if (end == text) return false;  // no digit read
    if (parsed == ULLONG_MAX && errno == ERANGE) return false;
    for (const Char* p = text; p < end; ++p)
        if (*p == '-') return false;  // the runtime would negate it silently
    for (const Char* p = end; *p; ++p)
        if (!Runtime<Char>::IsSpace(*p)) return false;
    value = parsed;
    return true;
}

// The formatters' buffers may hold what was inserted - a pass phrase, say -
// so they are wiped before they are freed, whatever the string's mark.
template <class Char>
bool VBasicString<Char>::FormatPositional(const Char* pattern, ...) {
    va_list args;
    va_start(args, pattern);
    Char* formatted = nullptr;
    const DWORD length = Runtime<Char>::FormatFromString(pattern, &formatted, &args);
    va_end(args);
    const LocalMemory owner(formatted);
    if (length == 0) return false;
    Assign(formatted, length);
    SecureZeroMemory(formatted, LocalSize(formatted));
    return true;
}

template <class Char>
bool VBasicString<Char>::FormatPrintf(size_t bufferCharacters, const Char* format, ...) {
    std::vector<Char> buffer(bufferCharacters + 1);
    va_list args;
    va_start(args, format);
    const int written = Runtime<Char>::PrintF(buffer.data(), buffer.size(), format, args);
    va_end(args);
    const bool fits = written >= 0 && static_cast<size_t>(written) <= bufferCharacters;
    if (fits) Assign(buffer.data(), static_cast<size_t>(written));
    SecureZeroMemory(buffer.data(), buffer.size() * sizeof(Char));
    return fits;
}

template class VBasicString<char>;
template class VBasicString<wchar_t>;
