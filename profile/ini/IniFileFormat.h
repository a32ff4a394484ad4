// The entry format of INI-file values files, reader and writer side by side.
//
// One entry per value: a header line, then for B and Z the lines that carry
// the data. Every line the writer makes ends with CR LF:
//     D:"Port"=00000016                  a dword, 8 lower-case hex digits
//     S:"Host"=example.org               a string, verbatim to the line end
//     B:"Data"=00000003                  a byte count, then lines of " xx"
//      0a ff 10                          pairs, 32 to a line
//     Z:"Commands"=00000002              a string count, then one line per
//      first                             string: a space and the string
//      second
// A name runs from the first double quote to the next; there is no escape,
// so names never hold a double quote.
//
// Both sides work on a whole file's text in memory: the writer appends entries
// to the text that is then written at once, and the reader walks the decoded
// text of a file once.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "VIniFileArena.h"
#include "VIniFileData.h"

// Appends the lines of one entry as the writer puts them in a file.
void AppendIniDwordEntry(VIniFileText& text, std::wstring_view name, uint32_t value);
void AppendIniStringEntry(VIniFileText& text, std::wstring_view name, std::wstring_view value);
void AppendIniBinaryEntry(VIniFileText& text, std::wstring_view name,
                          std::span<const uint8_t> bytes);
// The header of a Z entry of count strings; each string follows with
// AppendIniStringLine.
void AppendIniMultiStringHeader(VIniFileText& text, std::wstring_view name, size_t count);
void AppendIniStringLine(VIniFileText& text, std::wstring_view string);

// Cuts the next line out of [position, end) and moves position past it. A
// line ends at CR, at LF or at CR LF; the end is not part of it. A last line
// without end is a line; an empty remainder is none (false).
bool NextIniLine(const wchar_t*& position, const wchar_t* end, std::wstring_view& line);

// Reads the entries of a values file's decoded text, in file order.
class VIniFileEntryReader {
public:
    // The text [begin, end) and arena must outlive the reader and the values
    // it makes, which point into both.
    VIniFileEntryReader(const wchar_t* begin, const wchar_t* end, VIniFileArena& arena)
        : position_(begin), end_(end), arena_(arena) {}

    // The next entry: its name (possibly empty; the caller decides what an
    // empty name means), a view into the text, and its value. False at the end
    // of the text and at the first entry that breaks the format; once false,
    // always false, since nothing after a damaged entry can be trusted to be
    // where it seems.
    bool Next(std::wstring_view& name, VIniFileDataPtr& value);

private:
    bool ReadEntry(std::wstring_view& name, VIniFileDataPtr& value);
    bool ReadBinaryLines(uint32_t count, std::span<uint8_t> bytes);
    bool ReadStringLines(uint32_t count, std::wstring_view& lines);

    const wchar_t* position_;
    const wchar_t* end_;
    VIniFileArena& arena_;
    bool ended_ = false;
};
