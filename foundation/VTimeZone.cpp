#include "VTimeZone.h"

#include <limits>

namespace {

constexpr uint64_t UnitsPerMinute = 600000000;  // file-time units of 100 ns
constexpr uint64_t UnitsPerDay = UnitsPerMinute * 60 * 24;
constexpr WORD DaysPerWeek = 7;
constexpr WORD OriginWeekday = 1;  // 1 January 1601 was a Monday (Sunday is 0)

uint64_t ToCount(const FILETIME& time) {
    return (static_cast<uint64_t>(time.dwHighDateTime) << 32) | time.dwLowDateTime;
}

FILETIME ToFileTime(uint64_t count) {
    return {static_cast<DWORD>(count), static_cast<DWORD>(count >> 32)};
}

bool ToCount(const SYSTEMTIME& time, uint64_t& count) {
    FILETIME fileTime;
    if (!SystemTimeToFileTime(&time, &fileTime)) return false;
    count = ToCount(fileTime);
    return true;
}

// count moved by minutes; false when that leaves the unsigned 64-bit range.
bool AddMinutes(uint64_t count, int64_t minutes, uint64_t& result) {
    const uint64_t distance =
        static_cast<uint64_t>(minutes < 0 ? -minutes : minutes) * UnitsPerMinute;
    if (minutes < 0 ? count < distance : count > std::numeric_limits<uint64_t>::max() - distance)
        return false;
    result = minutes < 0 ? count - distance : count + distance;
    return true;
}

// From the first of the month to the first of the next, in whole days.
bool DaysInMonth(WORD year, WORD month, WORD& days) {
    SYSTEMTIME first{};
    first.wYear = year;
    first.wMonth = month;
    first.wDay = 1;
    SYSTEMTIME next = first;
    next.wYear = month == 12 ? year + 1 : year;
    next.wMonth = month == 12 ? 1 : month + 1;
    uint64_t start = 0;
    uint64_t end = 0;
    if (!ToCount(first, start) || !ToCount(next, end)) return false;
    days = static_cast<WORD>((end - start) / UnitsPerDay);
    return true;
}

// The moment a start rule names in year (an absolute rule names its own).
bool Transition(const SYSTEMTIME& rule, WORD year, uint64_t& moment) {
    if (rule.wYear != 0) return ToCount(rule, moment);
    SYSTEMTIME day = rule;
    day.wYear = year;
    day.wDay = 1;
    uint64_t first = 0;
    WORD days = 0;
    if (!ToCount(day, first) || !DaysInMonth(year, rule.wMonth, days)) return false;
    const WORD firstWeekday =
        static_cast<WORD>((first / UnitsPerDay + OriginWeekday) % DaysPerWeek);
    // The walk stops before the month's last day on purpose: a rule of the
    // last Sunday in a month whose last day is a Sunday picks the Sunday
    // before. The family's other programs keep zones the same way, and their
    // clocks must agree with ours.
    WORD found = 0;
    WORD seen = 0;
    for (WORD date = 1; date < days; ++date) {
        if ((firstWeekday + date - 1) % DaysPerWeek != rule.wDayOfWeek) continue;
        found = date;
        if (++seen == rule.wDay) break;
    }
    if (found == 0) return false;  // no such weekday: the rule is damaged
    day.wDay = found;
    return ToCount(day, moment);
}

uint64_t Now() {
    FILETIME now;
    GetSystemTimeAsFileTime(&now);
    return ToCount(now);
}

}  // namespace

VTimeZone::VTimeZone() : information_{} {
    if (GetTimeZoneInformation(&information_) == TIME_ZONE_ID_INVALID) information_ = {};
}

bool VTimeZone::GetDaylightState(const FILETIME* utc, int& state) const {
    return GetDaylightStateAt(utc ? ToCount(*utc) : Now(), state);
}

bool VTimeZone::GetDaylightStateAt(uint64_t utc, int& state) const {
    const TIME_ZONE_INFORMATION& zone = information_;
    if (zone.DaylightDate.wMonth == 0 || zone.StandardDate.wMonth == 0) {
        state = -1;
        return true;
    }
    uint64_t standardClock = 0;
    SYSTEMTIME date;
    if (!AddMinutes(utc, -static_cast<int64_t>(zone.Bias) - zone.StandardBias, standardClock))
        return false;
    const FILETIME standardTime = ToFileTime(standardClock);
    if (!FileTimeToSystemTime(&standardTime, &date)) return false;

    uint64_t daylightStart = 0;
    uint64_t standardStartOnDaylightClock = 0;
    uint64_t standardStart = 0;
    if (!Transition(zone.DaylightDate, date.wYear, daylightStart) ||
        !Transition(zone.StandardDate, date.wYear, standardStartOnDaylightClock) ||
        !AddMinutes(standardStartOnDaylightClock,
                    static_cast<int64_t>(zone.DaylightBias) - zone.StandardBias, standardStart))
        return false;

    if (daylightStart <= standardStart)  // northern: daylight time within the year
        state = daylightStart <= standardClock && standardClock < standardStart ? 1 : 0;
    else  // southern: standard time within the year
        state = standardStart <= standardClock && standardClock < daylightStart ? 0 : 1;
    return true;
}

LONG VTimeZone::OffsetFor(int state) const {
    return information_.Bias + (state == 1 ? information_.DaylightBias : information_.StandardBias);
}

bool VTimeZone::GetOffset(const FILETIME* utc, LONG& minutes) const {
    int state = 0;
    if (!GetDaylightState(utc, state)) return false;
    minutes = OffsetFor(state);
    return true;
}

bool VTimeZone::Shift(const FILETIME& time, uint64_t stateAt, int64_t direction,
                      FILETIME& result) const {
    int state = 0;
    uint64_t shifted = 0;
    if (!GetDaylightStateAt(stateAt, state) ||
        !AddMinutes(ToCount(time), direction * OffsetFor(state), shifted))
        return false;
    result = ToFileTime(shifted);
    return true;
}

bool VTimeZone::UtcToLocal(const FILETIME& utc, FILETIME& local) const {
    return Shift(utc, ToCount(utc), -1, local);
}

bool VTimeZone::LocalToUtc(const FILETIME& local, FILETIME& utc) const {
    uint64_t asStandardTime = 0;
    return AddMinutes(ToCount(local),
                      static_cast<int64_t>(information_.Bias) + information_.StandardBias,
                      asStandardTime) &&
           Shift(local, asStandardTime, 1, utc);
}
