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
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "VContainers.h"
#include "VIniFileArena.h"
#include "VIniFileData.h"
#include "VString.h"

class VTextFile;

// The lines of one entry as the writer puts them in a file. The text is
// sensitive when the content is (value names are never secret).
VUnicodeString FormatIniDwordEntry(std::wstring_view name, uint32_t value);
VUnicodeString FormatIniStringEntry(std::wstring_view name, const VUnicodeString& text);
VUnicodeString FormatIniBinaryEntry(std::wstring_view name, const uint8_t* bytes, size_t length);
VUnicodeString FormatIniMultiStringEntry(std::wstring_view name, const VArray<VUnicodeString>& strings);

// Reads the entries of a values file opened for reading, in file order.
class VIniFileEntryReader {
public:
    // file is read from its current position; values are made in arena.
    // Both must outlive the reader.
    VIniFileEntryReader(VTextFile& file, VIniFileArena& arena) : file_(file), arena_(arena) {}

    // The next entry: its name (possibly empty; the caller decides what an
    // empty name means), valid until the next call, and its value. False at
    // the end of the file and at the first entry that breaks the format; once
    // false, always false, since nothing after a damaged entry can be trusted
    // to be where it seems.
    bool Next(std::wstring_view& name, VIniFileDataPtr& value);

private:
    bool ReadEntry(VIniFileDataPtr& value);
    bool ReadBinaryLines(uint32_t count, std::vector<uint8_t>& bytes);
    bool ReadStringLines(uint32_t count, VArray<VUnicodeString>& strings);

    VTextFile& file_;
    VIniFileArena& arena_;
    VUnicodeString line_;  // reused, so that reading makes no string per line
    std::wstring name_;    // the same for names
    bool ended_ = false;
};
