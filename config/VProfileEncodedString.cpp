#include "VProfileEncodedString.h"

namespace {

struct EscapePair {
    wchar_t character;
    wchar_t letter;
};

constexpr EscapePair Escapes[] = {{L'\\', L'\\'}, {L'\r', L'r'}, {L'\n', L'n'}, {L'\t', L't'}};

const EscapePair* EscapeOfCharacter(wchar_t character) {
    for (const EscapePair& escape : Escapes)
        if (escape.character == character) return &escape;
    return nullptr;
}

const EscapePair* EscapeOfLetter(wchar_t letter) {
    for (const EscapePair& escape : Escapes)
        if (escape.letter == letter) return &escape;
    return nullptr;
}

}  // namespace

// Both build the result in the buffer of a string of the input's sensitivity,
// so that a secret never passes through a plain copy.
VUnicodeString VProfileEncodedSz::Encode(const VUnicodeString& text) {
    VUnicodeString stored(text.GetSensitiveState());
    wchar_t* out = stored.GetBuffer(2 * text.GetLength());
    size_t length = 0;
    for (const wchar_t* in = text.c_str(), *end = in + text.GetLength(); in < end; ++in) {
        if (const EscapePair* escape = EscapeOfCharacter(*in)) {
            out[length++] = L'\\';
            out[length++] = escape->letter;
        } else {
            out[length++] = *in;
        }
    }
    stored.ReleaseBuffer(length);
    return stored;
}

VUnicodeString VProfileEncodedSz::Decode(const VUnicodeString& stored) {
    VUnicodeString text(stored.GetSensitiveState());
    wchar_t* out = text.GetBuffer(stored.GetLength());
    const wchar_t* in = stored.c_str();
    const wchar_t* const end = in + stored.GetLength();
    size_t length = 0;
    while (in < end) {
        const EscapePair* escape = in[0] == L'\\' && in + 1 < end ? EscapeOfLetter(in[1]) : nullptr;
        if (escape) {
            out[length++] = escape->character;
            in += 2;
        } else {
            out[length++] = *in++;
        }
    }
    text.ReleaseBuffer(length);
    return text;
}

bool VProfileEncodedSz::ReadValue(VProfileKey& key, const VUnicodeString& name,
                                  VUnicodeString& out) {
    VUnicodeString stored(out.GetSensitiveState());
    if (!key.GetString(name, stored)) return false;
    out = Decode(stored);
    return true;
}

bool VProfileEncodedSz::WriteValue(VProfileKey& key, const VUnicodeString& name,
                                   const VUnicodeString& value) {
    return key.SetString(name, Encode(value));
}
