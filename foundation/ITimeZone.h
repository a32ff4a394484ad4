// One time zone's arithmetic: daylight state, offset and conversions between
// UTC and the zone's local time, whatever the machine's own zone is.
#pragma once

#include <windows.h>

#include <unknwn.h>

class ITimeZone : public IUnknown {
public:
    // -1 when the zone has no daylight saving time, 0 standard time, 1
    // daylight time, at utc (now when null). False when a date of the
    // computation cannot be converted; state is then untouched.
    virtual bool GetDaylightState(const FILETIME* utc, int& state) const = 0;
    // The minutes to subtract from UTC to get local time at utc (now when null).
    virtual bool GetOffset(const FILETIME* utc, LONG& minutes) const = 0;
    // False when the result would fall below zero or beyond 64 bits, or a
    // date cannot be converted; the output is then untouched.
    virtual bool UtcToLocal(const FILETIME& utc, FILETIME& local) const = 0;
    virtual bool LocalToUtc(const FILETIME& local, FILETIME& utc) const = 0;

protected:
    virtual ~ITimeZone() = default;
};
