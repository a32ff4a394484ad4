#include "VProfileTimeSz.h"

#include <cstdint>

namespace {

struct FieldRange {
    uint64_t lowest;
    uint64_t highest;
};

// Year, month, day, hour, minute, second, milliseconds: the order of the text.
constexpr FieldRange TimeFields[] = {{1601, 30827}, {1, 12}, {1, 31}, {0, 23},
                                     {0, 59},       {0, 59}, {0, 999}};
constexpr size_t TimeFieldCount = sizeof(TimeFields) / sizeof(TimeFields[0]);

}  // namespace

bool VProfileTimeSz::FormatTime(const FILETIME& time, VUnicodeString& text) {
    SYSTEMTIME parts;
    if (!FileTimeToSystemTime(&time, &parts)) return false;
    return text.FormatPositional(L"%1!04d!:%2!02d!:%3!02d!:%4!02d!:%5!02d!:%6!02d!:%7!03d!",
                                 int{parts.wYear}, int{parts.wMonth}, int{parts.wDay},
                                 int{parts.wHour}, int{parts.wMinute}, int{parts.wSecond},
                                 int{parts.wMilliseconds});
}

bool VProfileTimeSz::ParseTime(const VUnicodeString& text, FILETIME& time) {
    WORD fields[TimeFieldCount];
    size_t start = 0;
    for (size_t field = 0; field < TimeFieldCount; ++field) {
        const size_t colon = text.Find(L':', start);
        const bool last = field + 1 == TimeFieldCount;
        // Every field but the last ends at a colon; the last one at the end.
        if (last != (colon == VUnicodeString::npos)) return false;
        uint64_t number = 0;
        if (!text.Mid(start, last ? VUnicodeString::npos : colon - start).ParseUnsigned(number))
            return false;
        if (number < TimeFields[field].lowest || number > TimeFields[field].highest) return false;
        fields[field] = static_cast<WORD>(number);
        start = colon + 1;
    }
    SYSTEMTIME parts{};
    parts.wYear = fields[0];
    parts.wMonth = fields[1];
    parts.wDay = fields[2];
    parts.wHour = fields[3];
    parts.wMinute = fields[4];
    parts.wSecond = fields[5];
    parts.wMilliseconds = fields[6];
    FILETIME converted;
    if (!SystemTimeToFileTime(&parts, &converted)) return false;
    time = converted;
    return true;
}
