#include "IniFileFormat.h"

#include <algorithm>
#include <bit>
#include <cwchar>
#include <cwctype>

#include <emmintrin.h>

namespace {

constexpr size_t NumberFieldLength = 8;
constexpr size_t BinaryBytesPerLine = 32;
constexpr size_t HeaderFrameLength = 5;  // kind, ':', two quotes and '='
constexpr wchar_t LowerHexDigits[] = L"0123456789abcdef";

// " 00" to " ff": the texts that binary data lines are made of.
struct ByteTextTable {
    wchar_t text[256][3];
    constexpr ByteTextTable() : text{} {
        for (int byte = 0; byte < 256; ++byte) {
            text[byte][0] = L' ';
            text[byte][1] = LowerHexDigits[byte >> 4];
            text[byte][2] = LowerHexDigits[byte & 15];
        }
    }
};
constexpr ByteTextTable ByteTexts;

void Put(VIniFileText& text, std::wstring_view piece) {
    text.insert(text.end(), piece.begin(), piece.end());
}
void PutLineEnd(VIniFileText& text) { Put(text, L"\r\n"); }

// The header line: as the pattern "K:\"%1\"=%2" formats it (%2 being a number
// field "%2!08x!" for D, B and Z), composed here directly because the system's
// formatter costs more than the write.
void PutHeader(VIniFileText& text, wchar_t kind, std::wstring_view name) {
    const wchar_t frame[] = {kind, L':', L'"'};
    Put(text, std::wstring_view(frame, 3));
    Put(text, name);
    Put(text, L"\"=");
}

void PutNumberField(VIniFileText& text, uint32_t value) {
    wchar_t digits[NumberFieldLength];
    for (size_t i = 0; i < NumberFieldLength; ++i)
        digits[i] = LowerHexDigits[(value >> (28 - 4 * i)) & 15];
    Put(text, std::wstring_view(digits, NumberFieldLength));
}

void AppendNumberEntry(VIniFileText& text, wchar_t kind, std::wstring_view name, uint32_t value) {
    PutHeader(text, kind, name);
    PutNumberField(text, value);
    PutLineEnd(text);
}

// ---- reading ----

// The first of a or b in [begin, end), or end. Eight characters at a time:
// the reader passes over every character of a file this way, to find line
// ends and closing quotes.
const wchar_t* FindEither(const wchar_t* begin, const wchar_t* end, wchar_t a, wchar_t b) {
    const __m128i wantA = _mm_set1_epi16(static_cast<short>(a));
    const __m128i wantB = _mm_set1_epi16(static_cast<short>(b));
    for (; end - begin >= 8; begin += 8) {
        const __m128i eight = _mm_loadu_si128(reinterpret_cast<const __m128i*>(begin));
        const int found = _mm_movemask_epi8(
            _mm_or_si128(_mm_cmpeq_epi16(eight, wantA), _mm_cmpeq_epi16(eight, wantB)));
        if (found != 0) return begin + std::countr_zero(static_cast<unsigned>(found)) / 2;
    }
    while (begin < end && *begin != a && *begin != b) ++begin;
    return begin;
}

// Hexadecimal digits of either case by character; -1 for every other one.
struct HexDigitTable {
    signed char value[128];
    constexpr HexDigitTable() : value{} {
        for (int character = 0; character < 128; ++character) {
            value[character] = -1;
            if (character >= '0' && character <= '9')
                value[character] = static_cast<signed char>(character - '0');
            if (character >= 'a' && character <= 'f')
                value[character] = static_cast<signed char>(character - 'a' + 10);
            if (character >= 'A' && character <= 'F')
                value[character] = static_cast<signed char>(character - 'A' + 10);
        }
    }
};
constexpr HexDigitTable HexDigits;

int HexDigitValue(wchar_t character) { return character < 128 ? HexDigits.value[character] : -1; }

// The common case first: iswspace is a call into the runtime's tables.
bool IsWhiteSpace(wchar_t character) { return character == L' ' || std::iswspace(character); }

// A number field (D, and the counts of B and Z) must be exactly 8 characters.
// A character that is no hexadecimal digit counts as 255 instead of rejecting
// the entry - so a mistyped digit changes the number rather than losing the
// value and every value after it. The other programs of the family read
// files this way, so it is kept on purpose. The result keeps the low 32 bits.
bool ParseNumberField(const wchar_t* field, size_t length, uint32_t& value) {
    if (length != NumberFieldLength) return false;
    uint32_t accumulated = 0;
    for (size_t i = 0; i < NumberFieldLength; ++i) {
        const int digit = HexDigitValue(field[i]);
        accumulated = accumulated * 16 + static_cast<uint32_t>(digit >= 0 ? digit : 255);
    }
    value = accumulated;
    return true;
}

struct EntryHeader {
    wchar_t kind;
    const wchar_t* name;
    size_t nameLength;
    const wchar_t* field;
    size_t fieldLength;
};

bool ParseHeader(const wchar_t* line, size_t length, EntryHeader& header) {
    if (length < HeaderFrameLength) return false;
    const wchar_t kind = line[0];
    if (kind != L'D' && kind != L'S' && kind != L'B' && kind != L'Z') return false;
    if (line[1] != L':' || line[2] != L'"') return false;
    const wchar_t* name = line + 3;
    const wchar_t* end = line + length;
    const wchar_t* closingQuote = FindEither(name, end, L'"', L'"');
    if (closingQuote == end || closingQuote + 1 == end || closingQuote[1] != L'=') return false;
    header.kind = kind;
    header.name = name;
    header.nameLength = static_cast<size_t>(closingQuote - name);
    header.field = closingQuote + 2;
    header.fieldLength = static_cast<size_t>(end - header.field);
    return true;
}

// Puts the pairs of one binary data line at out, which has room for at least
// missing bytes; the number put. White space may stand before any pair; a pair
// is two hexadecimal digits of either case. 0 for a line with no pair, a lone
// digit, any other character, or more than missing bytes.
size_t ParseBinaryLine(std::wstring_view line, size_t missing, uint8_t* out) {
    size_t pairs = 0;
    size_t i = 0;
    const size_t length = line.size();
    for (;;) {
        int high = -1;
        // Digits first: most characters are, and iswspace is a call.
        while (i < length && (high = HexDigitValue(line[i])) < 0 && IsWhiteSpace(line[i])) ++i;
        if (i == length) break;
        if (high < 0 || i + 1 == length) return 0;
        const int low = HexDigitValue(line[i + 1]);
        if (low < 0 || pairs == missing) return 0;
        out[pairs++] = static_cast<uint8_t>(high * 16 + low);
        i += 2;
    }
    return pairs;
}

}  // namespace

void AppendIniDwordEntry(VIniFileText& text, std::wstring_view name, uint32_t value) {
    AppendNumberEntry(text, L'D', name, value);
}

void AppendIniStringEntry(VIniFileText& text, std::wstring_view name, std::wstring_view value) {
    PutHeader(text, L'S', name);
    Put(text, value);
    PutLineEnd(text);
}

void AppendIniBinaryEntry(VIniFileText& text, std::wstring_view name,
                          std::span<const uint8_t> bytes) {
    AppendNumberEntry(text, L'B', name, static_cast<uint32_t>(bytes.size()));
    for (size_t start = 0; start < bytes.size(); start += BinaryBytesPerLine) {
        const size_t end = std::min(bytes.size(), start + BinaryBytesPerLine);
        for (size_t i = start; i < end; ++i)
            Put(text, std::wstring_view(ByteTexts.text[bytes[i]], 3));
        PutLineEnd(text);
    }
}

void AppendIniMultiStringHeader(VIniFileText& text, std::wstring_view name, size_t count) {
    AppendNumberEntry(text, L'Z', name, static_cast<uint32_t>(count));
}

void AppendIniStringLine(VIniFileText& text, std::wstring_view string) {
    text.push_back(L' ');
    Put(text, string);
    PutLineEnd(text);
}

bool NextIniLine(const wchar_t*& position, const wchar_t* end, std::wstring_view& line) {
    if (position == end) return false;
    const wchar_t* stop = FindEither(position, end, L'\r', L'\n');
    line = std::wstring_view(position, static_cast<size_t>(stop - position));
    if (stop == end) {
        position = end;
    } else {
        position = stop + (*stop == L'\r' && stop + 1 < end && stop[1] == L'\n' ? 2 : 1);
    }
    return true;
}

bool VIniFileEntryReader::Next(std::wstring_view& name, VIniFileDataPtr& value) {
    if (!ended_ && !ReadEntry(name, value)) ended_ = true;
    return !ended_;
}

bool VIniFileEntryReader::ReadEntry(std::wstring_view& name, VIniFileDataPtr& value) {
    std::wstring_view line;
    EntryHeader header;
    if (!NextIniLine(position_, end_, line) || !ParseHeader(line.data(), line.size(), header))
        return false;
    name = std::wstring_view(header.name, header.nameLength);
    if (header.kind == L'S') {
        value =
            arena_.Make<VIniFileDataString>(std::wstring_view(header.field, header.fieldLength));
        return true;
    }
    uint32_t number = 0;
    if (!ParseNumberField(header.field, header.fieldLength, number)) return false;
    if (header.kind == L'D') {
        value = arena_.Make<VIniFileDataDword>(number);
        return true;
    }
    if (header.kind == L'B') {
        // The count comes from the file and may be damaged: a count that the
        // rest of the text cannot hold (two digits a byte) is refused before
        // any memory is taken for it.
        if (number > static_cast<size_t>(end_ - position_) / 2) return false;
        const std::span<uint8_t> bytes = arena_.AllocateBytes(number);
        if (!ReadBinaryLines(number, bytes)) return false;
        value = arena_.Make<VIniFileDataBinary>(std::span<const uint8_t>(bytes));
        return true;
    }
    std::wstring_view lines;
    if (!ReadStringLines(number, lines)) return false;
    value = arena_.Make<VIniFileDataStringSz>(lines, number);
    return true;
}

bool VIniFileEntryReader::ReadBinaryLines(uint32_t count, std::span<uint8_t> bytes) {
    size_t have = 0;
    std::wstring_view line;
    while (have < count) {
        if (!NextIniLine(position_, end_, line)) return false;
        const size_t pairs = ParseBinaryLine(line, count - have, bytes.data() + have);
        if (pairs == 0) return false;
        have += pairs;
    }
    return true;
}

bool VIniFileEntryReader::ReadStringLines(uint32_t count, std::wstring_view& lines) {
    const wchar_t* const first = position_;
    const wchar_t* lastEnd = first;
    std::wstring_view line;
    for (uint32_t i = 0; i < count; ++i) {
        if (!NextIniLine(position_, end_, line) || line.empty() || line[0] != L' ') return false;
        lastEnd = line.data() + line.size();
    }
    lines = std::wstring_view(first, static_cast<size_t>(lastEnd - first));
    return true;
}
