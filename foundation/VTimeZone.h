// A time zone as the system describes it (TIME_ZONE_INFORMATION), with the
// arithmetic done here rather than by the system, so that any zone can be
// used, not only the machine's own.
//
// Start rules: a month of 0 means no daylight saving time; a non-zero year
// makes the rule one absolute date; year 0 makes it recurring: the n-th
// (wDay, 5 = last) weekday (wDayOfWeek) of the month at the rule's time. The
// daylight start is a local standard time, the standard start a local
// daylight time, as the system's record defines them.
//
// A zone is a value: copy it freely; any thread may read it.
#pragma once

#include <windows.h>

#include <cstdint>

class VTimeZone {
public:
    // The machine's current zone (the record stays zero when the system
    // cannot tell it).
    VTimeZone();
    explicit VTimeZone(const TIME_ZONE_INFORMATION& information) : information_(information) {}

    const TIME_ZONE_INFORMATION& GetInformation() const { return information_; }

    // See ITimeZone for the contracts.
    bool GetDaylightState(const FILETIME* utc, int& state) const;
    bool GetOffset(const FILETIME* utc, LONG& minutes) const;
    bool UtcToLocal(const FILETIME& utc, FILETIME& local) const;
    // Reads local as standard time to choose the offset: a time in the hour
    // that the clocks repeat is taken as standard time, one in the hour that
    // they skip as daylight time.
    bool LocalToUtc(const FILETIME& local, FILETIME& utc) const;

private:
    bool GetDaylightStateAt(uint64_t utc, int& state) const;
    LONG OffsetFor(int state) const;
    // time moved by the offset in force at the UTC time stateAt: subtracted
    // (direction -1, UTC to local) or added (1, local to UTC).
    bool Shift(const FILETIME& time, uint64_t stateAt, int64_t direction, FILETIME& result) const;

    TIME_ZONE_INFORMATION information_;
};
