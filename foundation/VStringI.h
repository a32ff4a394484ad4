// VUnicodeStringI and VStringI: our strings behind the IString interface, so
// that a library can fill them across a module boundary.
#pragma once

#include <type_traits>

#include "IString.h"
#include "VString.h"

template <class Char>
class VBasicStringI : public VBasicString<Char>, public IString {
    using Base = VBasicString<Char>;

public:
    using Base::Base;
    VBasicStringI(const Base& text) : Base(text) {}

    bool IsEmptyString() const override { return Base::IsEmpty(); }
    void SetWide(const wchar_t* text, size_t count, Str::SensitiveState state) override {
        Set(text, count, state);
    }
    void SetNarrow(const char* text, size_t count, Str::SensitiveState state) override {
        Set(text, count, state);
    }
    void SetWide(const wchar_t* text, Str::SensitiveState state) override {
        Set(text, Length(text), state);
    }
    void SetNarrow(const char* text, Str::SensitiveState state) override {
        Set(text, Length(text), state);
    }
    void CopyInto(IString& target) const override {
        if constexpr (std::is_same_v<Char, wchar_t>)
            target.SetWide(Base::c_str(), Base::GetLength(), Base::GetSensitiveState());
        else
            target.SetNarrow(Base::c_str(), Base::GetLength(), Base::GetSensitiveState());
    }
    void AppendNarrow(const char* text, size_t count) override { AppendText(text, count); }
    void AppendWide(const wchar_t* text, size_t count) override { AppendText(text, count); }
    void AppendNarrow(const char* text) override { AppendNarrow(text, Length(text)); }
    void AppendWide(const wchar_t* text) override { AppendWide(text, Length(text)); }

private:
    template <class In>
    static size_t Length(const In* text) {
        return text ? std::char_traits<In>::length(text) : 0;
    }

    // The text in this string's width; other widths go through the ANSI code page.
    template <class In>
    static Base Converted(const In* text, size_t count,
                          Str::SensitiveState state = Str::NotSensitive) {
        if constexpr (std::is_same_v<In, Char>)
            return Base(text, count, state);
        else
            return Base(VBasicString<In>(text, count, state));
    }

    // Appends text without changing this string's mark. Text of the other
    // width is converted through copies that are wiped when freed: nothing
    // tells whether it is a secret.
    template <class In>
    void AppendText(const In* text, size_t count) {
        if constexpr (std::is_same_v<In, Char>) {
            Base::Append(text, count);
        } else {
            const Base converted = Converted(text, count, Str::Sensitive);
            Base::Append(converted.c_str(), converted.GetLength());
        }
    }

    // Replaces text and state together: unlike assignment, a Set may drop sensitivity.
    template <class In>
    void Set(const In* text, size_t count, Str::SensitiveState state) {
        Base fresh = Converted(text, count, state);
        Base::Swap(fresh);
    }
};

using VUnicodeStringI = VBasicStringI<wchar_t>;
using VStringI = VBasicStringI<char>;
