#include "IniFileFormat.h"

#include <algorithm>
#include <cwchar>
#include <cwctype>

#include "VTextFile.h"

namespace {

constexpr size_t NumberFieldLength = 8;
constexpr size_t BinaryBytesPerLine = 32;
constexpr size_t BinaryReserveLimit = 64 * 1024;
constexpr size_t HeaderFrameLength = 5;  // kind, ':', two quotes and '='
constexpr size_t LineEndLength = 2;
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

// Fills a string whose final length is known beforehand, so that one entry
// costs one allocation, however many lines it has.
class EntryText {
public:
    EntryText(size_t length, Str::SensitiveState state)
        : text_(state), begin_(text_.GetBuffer(length)), cursor_(begin_) {}

    void Put(wchar_t character) { *cursor_++ = character; }
    void Put(const wchar_t* text, size_t count) {
        std::wmemcpy(cursor_, text, count);
        cursor_ += count;
    }
    void Put(const VUnicodeString& text) { Put(text.c_str(), text.GetLength()); }
    void Put(std::wstring_view text) { Put(text.data(), text.size()); }
    void PutLineEnd() { Put(L"\r\n", LineEndLength); }

    // The header line: as the pattern "K:\"%1\"=%2" formats it (%2 being a
    // number field "%2!08x!" for D, B and Z), composed here directly because
    // the system's formatter costs more than the write.
    void PutHeader(wchar_t kind, std::wstring_view name) {
        Put(kind);
        Put(L":\"", 2);
        Put(name);
        Put(L"\"=", 2);
    }
    void PutNumberField(uint32_t value) {
        for (int shift = 28; shift >= 0; shift -= 4) Put(LowerHexDigits[(value >> shift) & 15]);
    }

    VUnicodeString Finish() {
        text_.ReleaseBuffer(static_cast<size_t>(cursor_ - begin_));
        return std::move(text_);
    }

private:
    VUnicodeString text_;
    wchar_t* begin_;
    wchar_t* cursor_;
};

size_t HeaderLength(std::wstring_view name, size_t fieldLength) {
    return HeaderFrameLength + name.size() + fieldLength + LineEndLength;
}

VUnicodeString FormatNumberEntry(wchar_t kind, std::wstring_view name, uint32_t value) {
    EntryText text(HeaderLength(name, NumberFieldLength), Str::NotSensitive);
    text.PutHeader(kind, name);
    text.PutNumberField(value);
    text.PutLineEnd();
    return text.Finish();
}

// ---- reading ----

int HexDigitValue(wchar_t character) {
    if (character >= L'0' && character <= L'9') return character - L'0';
    if (character >= L'a' && character <= L'f') return character - L'a' + 10;
    if (character >= L'A' && character <= L'F') return character - L'A' + 10;
    return -1;
}

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
    const wchar_t* closingQuote = std::wmemchr(name, L'"', static_cast<size_t>(end - name));
    if (!closingQuote || closingQuote + 1 == end || closingQuote[1] != L'=') return false;
    header.kind = kind;
    header.name = name;
    header.nameLength = static_cast<size_t>(closingQuote - name);
    header.field = closingQuote + 2;
    header.fieldLength = static_cast<size_t>(end - header.field);
    return true;
}

// Appends the pairs of one binary data line. White space may stand before
// any pair; a pair is two hexadecimal digits of either case. False for a line
// with no pair, a lone digit, any other character, or more than missing bytes.
bool ParseBinaryLine(const wchar_t* line, size_t length, size_t missing, std::vector<uint8_t>& bytes) {
    size_t pairs = 0;
    size_t i = 0;
    for (;;) {
        while (i < length && IsWhiteSpace(line[i])) ++i;
        if (i == length) break;
        const int high = HexDigitValue(line[i]);
        if (high < 0 || i + 1 == length) return false;
        const int low = HexDigitValue(line[i + 1]);
        if (low < 0 || pairs == missing) return false;
        bytes.push_back(static_cast<uint8_t>(high * 16 + low));
        ++pairs;
        i += 2;
    }
    return pairs != 0;
}

}  // namespace

VUnicodeString FormatIniDwordEntry(std::wstring_view name, uint32_t value) {
    return FormatNumberEntry(L'D', name, value);
}

VUnicodeString FormatIniStringEntry(std::wstring_view name, const VUnicodeString& text) {
    EntryText entry(HeaderLength(name, text.GetLength()), text.GetSensitiveState());
    entry.PutHeader(L'S', name);
    entry.Put(text);
    entry.PutLineEnd();
    return entry.Finish();
}

VUnicodeString FormatIniBinaryEntry(std::wstring_view name, const uint8_t* bytes, size_t length) {
    const size_t lines = (length + BinaryBytesPerLine - 1) / BinaryBytesPerLine;
    EntryText entry(HeaderLength(name, NumberFieldLength) + 3 * length + LineEndLength * lines, Str::NotSensitive);
    entry.PutHeader(L'B', name);
    entry.PutNumberField(static_cast<uint32_t>(length));
    entry.PutLineEnd();
    for (size_t start = 0; start < length; start += BinaryBytesPerLine) {
        const size_t end = std::min(length, start + BinaryBytesPerLine);
        for (size_t i = start; i < end; ++i) entry.Put(ByteTexts.text[bytes[i]], 3);
        entry.PutLineEnd();
    }
    return entry.Finish();
}

VUnicodeString FormatIniMultiStringEntry(std::wstring_view name, const VArray<VUnicodeString>& strings) {
    size_t length = HeaderLength(name, NumberFieldLength);
    bool sensitive = false;
    for (const VUnicodeString& string : strings) {
        length += 1 + string.GetLength() + LineEndLength;
        sensitive = sensitive || string.IsSensitive();
    }
    EntryText entry(length, sensitive ? Str::Sensitive : Str::NotSensitive);
    entry.PutHeader(L'Z', name);
    entry.PutNumberField(static_cast<uint32_t>(strings.GetCount()));
    entry.PutLineEnd();
    for (const VUnicodeString& string : strings) {
        entry.Put(L' ');
        entry.Put(string);
        entry.PutLineEnd();
    }
    return entry.Finish();
}

bool VIniFileEntryReader::Next(std::wstring_view& name, VIniFileDataPtr& value) {
    if (!ended_ && !ReadEntry(value)) ended_ = true;
    name = name_;
    return !ended_;
}

bool VIniFileEntryReader::ReadEntry(VIniFileDataPtr& value) {
    EntryHeader header;
    if (!file_.ReadLine(line_) || !ParseHeader(line_.c_str(), line_.GetLength(), header)) return false;
    // Taken now: the header points into line_, which data lines overwrite.
    name_.assign(header.name, header.nameLength);
    if (header.kind == L'S') {
        value = arena_.Make<VIniFileDataString>(header.field, header.fieldLength);
        return true;
    }
    uint32_t number = 0;
    if (!ParseNumberField(header.field, header.fieldLength, number)) return false;
    if (header.kind == L'D') {
        value = arena_.Make<VIniFileDataDword>(number);
        return true;
    }
    if (header.kind == L'B') {
        std::vector<uint8_t> bytes;
        if (!ReadBinaryLines(number, bytes)) return false;
        value = arena_.Make<VIniFileDataBinary>(std::move(bytes));
        return true;
    }
    VArray<VUnicodeString> strings;
    if (!ReadStringLines(number, strings)) return false;
    value = arena_.Make<VIniFileDataStringSz>(std::move(strings));
    return true;
}

// The count comes from the file and may be damaged: the buffer is sized from
// it only up to a bound, and beyond that grows with what the lines hold.
bool VIniFileEntryReader::ReadBinaryLines(uint32_t count, std::vector<uint8_t>& bytes) {
    bytes.reserve(std::min<size_t>(count, BinaryReserveLimit));
    while (bytes.size() < count) {
        if (!file_.ReadLine(line_)) return false;
        if (!ParseBinaryLine(line_.c_str(), line_.GetLength(), count - bytes.size(), bytes)) return false;
    }
    return true;
}

bool VIniFileEntryReader::ReadStringLines(uint32_t count, VArray<VUnicodeString>& strings) {
    for (uint32_t i = 0; i < count; ++i) {
        if (!file_.ReadLine(line_) || line_.IsEmpty() || line_.c_str()[0] != L' ') return false;
        strings.Add(VUnicodeString(line_.c_str() + 1, line_.GetLength() - 1));
    }
    return true;
}
