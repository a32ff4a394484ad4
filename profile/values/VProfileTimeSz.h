// The storage kind of a time stamp kept as text in a string value, and the
// value type it serves, FILETIME (VProfile2<FILETIME, VProfileTimeSz>).
//
// The text is "year:month:day:hour:minute:second:milliseconds", written with
// four, two, two, two, two, two and three digits ("2018:02:28:13:05:09:042")
// and read back with any number of digits per field. The day of the week is
// not stored. The time is taken as it is: a FILETIME in UTC stays in UTC.
#pragma once

#include "VProfileSz.h"
#include "VProfileValueTraits.h"

class VProfileTimeSz : public VProfileSz {
public:
    using VProfileSz::VProfileSz;

    // The text form of time. False (text unchanged) when FileTimeToSystemTime
    // refuses the time (one past the year 30827).
    static bool FormatTime(const FILETIME& time, VUnicodeString& text);
    // The time that text gives. The text must split at ":" into exactly seven
    // unsigned decimal fields (no sign, nothing but white space after the
    // digits, no overflow), within year 1601-30827, month 1-12, day 1-31,
    // hour 0-23, minute 0-59, second 0-59, milliseconds 0-999, and must make
    // a real date (SystemTimeToFileTime refuses 30 February). False, with time
    // unchanged, otherwise.
    static bool ParseTime(const VUnicodeString& text, FILETIME& time);
};

template <>
struct VProfileValueTraits<FILETIME> {
    using Stored = VUnicodeString;
    static bool ToStored(const FILETIME& value, Stored& out) {
        return VProfileTimeSz::FormatTime(value, out);
    }
    static bool FromStored(const Stored& in, FILETIME& value) {
        return VProfileTimeSz::ParseTime(in, value);
    }
    static bool Equal(const FILETIME& a, const FILETIME& b) {
        return a.dwLowDateTime == b.dwLowDateTime && a.dwHighDateTime == b.dwHighDateTime;
    }
};
