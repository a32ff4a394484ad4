// Time zones: the rules' edge cases, the database lookup, and every zone of
// the system's database around its transitions over decades, against the
// system's own conversion (SystemTimeToTzSpecificLocalTime).
#include <gtest/gtest.h>

#include <windows.h>

#include <cstdio>
#include <limits>
#include <map>
#include <set>
#include <string>

#include "ConfigMessages.h"
#include "TimeZoneDatabase.h"
#include "VTimeZoneI.h"

namespace {

constexpr uint64_t Minute = 600000000;
constexpr uint64_t Day = Minute * 60 * 24;

uint64_t Count(const FILETIME& time) {
    return (uint64_t{time.dwHighDateTime} << 32) | time.dwLowDateTime;
}
FILETIME Time(uint64_t count) {
    return {static_cast<DWORD>(count), static_cast<DWORD>(count >> 32)};
}

uint64_t Utc(WORD year, WORD month, WORD day, WORD hour = 0, WORD minute = 0) {
    const SYSTEMTIME time{year, month, 0, day, hour, minute, 0, 0};
    FILETIME fileTime;
    EXPECT_TRUE(SystemTimeToFileTime(&time, &fileTime));
    return Count(fileTime);
}

SYSTEMTIME Rule(WORD month, WORD occurrence, WORD hour, WORD year = 0) {
    return {year, month, 0 /* Sunday */, occurrence, hour, 0, 0, 0};
}

TIME_ZONE_INFORMATION Zone(LONG bias, SYSTEMTIME daylightStart, SYSTEMTIME standardStart,
                           LONG standardBias = 0) {
    TIME_ZONE_INFORMATION zone{};
    zone.Bias = bias;
    zone.StandardBias = standardBias;
    zone.DaylightBias = -60;
    zone.DaylightDate = daylightStart;
    zone.StandardDate = standardStart;
    return zone;
}

TEST(TimeZones, RulesGiveTheDaylightStateAndOffset) {
    const TIME_ZONE_INFORMATION central = Zone(-60, Rule(3, 5, 2), Rule(10, 5, 3));
    const TIME_ZONE_INFORMATION southern = Zone(-600, Rule(10, 1, 2), Rule(4, 1, 3));
    const TIME_ZONE_INFORMATION once =
        Zone(300, {2024, 3, 0, 10, 2, 0, 0, 0}, {2024, 11, 0, 3, 2, 0, 0, 0});
    const struct {
        const char* what;
        TIME_ZONE_INFORMATION zone;
        uint64_t utc;
        int state;
        LONG offset;
    } cases[] = {
        {"31 March 2024 is a Sunday, never examined: the 24th starts", central,
         Utc(2024, 3, 24, 0, 59), 0, -60},
        {"daylight time from 02:00 standard time on the 24th", central, Utc(2024, 3, 24, 1), 1,
         -120},
        {"last Sunday of March 2023 is the 26th", central, Utc(2023, 3, 26, 0, 59), 0, -60},
        {"... from 02:00 standard time", central, Utc(2023, 3, 26, 1), 1, -120},
        {"standard time returns at 03:00 daylight time", central, Utc(2023, 10, 29, 0, 59), 1,
         -120},
        {"... which is 01:00 UTC", central, Utc(2023, 10, 29, 1), 0, -60},
        {"no daylight rules: bias plus standard bias", Zone(-330, Rule(0, 0, 0), Rule(0, 0, 0), 5),
         Utc(2024, 7, 1), -1, -325},
        {"southern zone in January", southern, Utc(2024, 1, 15), 1, -660},
        {"southern zone in July", southern, Utc(2024, 7, 15), 0, -600},
        {"southern standard time from 03:00 daylight time on 7 April", southern,
         Utc(2024, 4, 6, 15, 59), 1, -660},
        {"... which is 16:00 UTC the day before", southern, Utc(2024, 4, 6, 16), 0, -600},
        {"absolute rules in their year", once, Utc(2024, 6, 1), 1, 240},
        {"absolute rules in a later year", once, Utc(2025, 6, 1), 0, 300},
    };
    for (const auto& c : cases) {
        const VTimeZone zone(c.zone);
        const FILETIME utc = Time(c.utc);
        int state = 99;
        LONG offset = 99;
        EXPECT_TRUE(zone.GetDaylightState(&utc, state) && zone.GetOffset(&utc, offset)) << c.what;
        EXPECT_EQ(state, c.state) << c.what;
        EXPECT_EQ(offset, c.offset) << c.what;
    }

    // Without a time, now: the machine's zone as the system reports it.
    TIME_ZONE_INFORMATION machine{};
    const DWORD machineState = GetTimeZoneInformation(&machine);
    LONG offset = 0;
    ASSERT_TRUE(VTimeZone().GetOffset(nullptr, offset));
    EXPECT_EQ(offset,
              machine.Bias + (machineState == TIME_ZONE_ID_DAYLIGHT ? machine.DaylightBias
                                                                    : machine.StandardBias));
}

TEST(TimeZones, ConversionsBeyondTheFileTimeRangeFail) {
    const VTimeZone west(Zone(300, Rule(3, 2, 2), Rule(11, 1, 2)));
    const VTimeZone east(Zone(-600, Rule(10, 1, 2), Rule(4, 1, 3)));
    const FILETIME untouched = Time(12345);
    const struct {
        const char* what;
        const VTimeZone& zone;
        bool toLocal;
        uint64_t from;
    } cases[] = {
        {"UTC just after the origin, west of UTC", west, true, 1},
        {"local time just after the origin, east of UTC", east, false, 1},
        {"UTC at the end of the range, east of UTC", east, true,
         std::numeric_limits<uint64_t>::max()},
        {"local time at the end of the range, west of UTC", west, false,
         std::numeric_limits<uint64_t>::max() - Minute},
    };
    for (const auto& c : cases) {
        FILETIME result = untouched;
        EXPECT_FALSE(c.toLocal ? c.zone.UtcToLocal(Time(c.from), result)
                               : c.zone.LocalToUtc(Time(c.from), result))
            << c.what;
        EXPECT_EQ(Count(result), Count(untouched)) << c.what;
    }
}

TEST(TimeZones, TheDatabaseFindsZonesByKeyName) {
    VTimeZone zone(Zone(1, Rule(0, 0, 0), Rule(0, 0, 0)));
    VReportMessageParams report;
    ASSERT_TRUE(FindTimeZone(VUnicodeString(L"AUS Eastern Standard Time"), zone, report));
    EXPECT_EQ(zone.GetInformation().Bias, -600);
    EXPECT_STREQ(zone.GetInformation().StandardName, L"AUS Eastern Standard Time");
    EXPECT_EQ(zone.GetInformation().DaylightDate.wMonth, 10);

    for (const wchar_t* unknown :
         {L"Atlantis Standard Time", L"W. Europe Standard Time\\Dynamic DST"}) {
        const VTimeZone before = zone;
        EXPECT_FALSE(FindTimeZone(VUnicodeString(unknown), zone, report)) << unknown;
        EXPECT_EQ(report.GetMessageCode(), CONFIG_TIME_ZONE_UNKNOWN);
        EXPECT_EQ(zone.GetInformation().Bias, before.GetInformation().Bias);
    }
    ASSERT_TRUE(FindTimeZone(VUnicodeString(), zone, report));
    EXPECT_EQ(zone.GetInformation().Bias, VTimeZone().GetInformation().Bias);
}

// The system's local time for utc in zone.
bool SystemLocal(const TIME_ZONE_INFORMATION& zone, uint64_t utc, uint64_t& local) {
    const FILETIME utcTime = Time(utc);
    SYSTEMTIME utcDate;
    SYSTEMTIME localDate;
    FILETIME localTime;
    if (!FileTimeToSystemTime(&utcTime, &utcDate) ||
        !SystemTimeToTzSpecificLocalTime(&zone, &utcDate, &localDate) ||
        !SystemTimeToFileTime(&localDate, &localTime))
        return false;
    local = Count(localTime);
    return true;
}

// Whether the rule picks the month's last day in year, as the system does
// and we deliberately do not.
bool TransitionOnLastDay(const SYSTEMTIME& rule, WORD year) {
    if (rule.wYear != 0 || rule.wDay != 5) return false;
    const FILETIME lastDay =
        Time(Utc(rule.wMonth == 12 ? year + 1 : year, rule.wMonth % 12 + 1, 1) - Day);
    SYSTEMTIME date;
    return FileTimeToSystemTime(&lastDay, &date) && date.wDayOfWeek == rule.wDayOfWeek;
}

class Sweep {
public:
    // Compares ours with the system's at utc; true when both agree.
    bool Compare(const TIME_ZONE_INFORMATION& information, ITimeZone& zone, uint64_t utc) {
        ++instants_;
        uint64_t expected = 0;
        const FILETIME utcTime = Time(utc);
        FILETIME local;
        FILETIME back;
        FILETIME again;
        int state = 0;
        if (!SystemLocal(information, utc, expected)) {
            ADD_FAILURE() << "the system cannot convert " << utc;
            return false;
        }
        if (!zone.UtcToLocal(utcTime, local) || !zone.GetDaylightState(&utcTime, state) ||
            Count(local) != expected)
            return false;
        // The state shows in the offset whenever the two biases differ.
        const int64_t daylightShift =
            -int64_t{information.Bias + information.DaylightBias} * int64_t{Minute};
        if (information.DaylightBias != information.StandardBias && state != -1 &&
            state != (static_cast<int64_t>(expected - utc) == daylightShift ? 1 : 0))
            return false;
        // Local time read back gives a UTC time of that same local time.
        EXPECT_TRUE(zone.LocalToUtc(local, back) && zone.UtcToLocal(back, again) &&
                    Count(again) == Count(local))
            << "local time " << Count(local) << " read back";
        return true;
    }

    // The instants around one rule's transitions in year: each day of its
    // month and two on either side, and every half hour of a day where ours
    // or the system's offset changes.
    void AroundRule(const TIME_ZONE_INFORMATION& information, ITimeZone& zone,
                    const SYSTEMTIME& rule, WORD year, const std::string& key) {
        std::set<uint64_t> changedDays;
        int64_t previous[2] = {0, 0};
        bool first = true;
        const uint64_t end =
            Utc(rule.wMonth == 12 ? year + 1 : year, rule.wMonth % 12 + 1, 1) + 2 * Day;
        for (uint64_t utc = Utc(year, rule.wMonth, 1) - 2 * Day; utc <= end; utc += Day) {
            Check(information, zone, utc, key);
            uint64_t system = 0;
            FILETIME ours{};
            SystemLocal(information, utc, system);
            zone.UtcToLocal(Time(utc), ours);
            const int64_t offsets[2] = {static_cast<int64_t>(system - utc),
                                        static_cast<int64_t>(Count(ours) - utc)};
            if (!first && (offsets[0] != previous[0] || offsets[1] != previous[1]))
                changedDays.insert(utc - Day);
            std::copy(offsets, offsets + 2, previous);
            first = false;
        }
        for (uint64_t day : changedDays)
            for (uint64_t utc = day; utc <= day + Day; utc += 30 * Minute)
                Check(information, zone, utc, key);
        if (TransitionOnLastDay(rule, year)) lastDayMonths_.insert(key);
    }

    void Check(const TIME_ZONE_INFORMATION& information, ITimeZone& zone, uint64_t utc,
               const std::string& key) {
        if (Compare(information, zone, utc)) return;
        ++disagreements_;
        disagreeingMonths_.insert(key);
    }

    long instants_ = 0;
    long disagreements_ = 0;
    std::set<std::string> disagreeingMonths_;
    std::set<std::string> lastDayMonths_;
};

TEST(TimeZones, EveryDatabaseZoneAgreesWithTheSystemSaveOnTheLastDayOfAMonth) {
    constexpr WORD firstYear = 1980;
    constexpr WORD lastYear = 2039;
    VArray<VUnicodeString> names;
    VReportMessageParams report;
    ASSERT_TRUE(GetTimeZoneNames(names, report)) << report.GetText();
    ASSERT_GT(names.GetCount(), 50u);
    Sweep sweep;
    int withDaylightTime = 0;
    for (const VUnicodeString& name : names) {
        VTimeZone found;
        ASSERT_TRUE(FindTimeZone(name, found, report)) << report.GetText();
        const TIME_ZONE_INFORMATION& information = found.GetInformation();
        const VRefPtr<ITimeZone> zone = VRefPtr<ITimeZone>::Adopt(new VTimeZoneI(found));
        const std::string zoneKey(VString(name).c_str());
        const bool daylightTime =
            information.DaylightDate.wMonth != 0 && information.StandardDate.wMonth != 0;
        withDaylightTime += daylightTime;
        for (WORD year = firstYear; year <= lastYear; ++year) {
            if (!daylightTime) {
                for (WORD month : {1, 7})
                    sweep.Check(information, *zone, Utc(year, month, 1), zoneKey);
                continue;
            }
            for (const SYSTEMTIME& rule : {information.DaylightDate, information.StandardDate})
                sweep.AroundRule(
                    information, *zone, rule, year,
                    zoneKey + " " + std::to_string(year) + "-" + std::to_string(rule.wMonth));
        }
    }
    std::printf(
        "%zu zones (%d with daylight saving time), %u-%u: %ld instants compared; %ld disagree, in "
        "%zu months; "
        "%zu months have their transition on the last day, which is never examined\n",
        names.GetCount(), withDaylightTime, firstYear, lastYear, sweep.instants_,
        sweep.disagreements_, sweep.disagreeingMonths_.size(), sweep.lastDayMonths_.size());
    EXPECT_EQ(sweep.disagreeingMonths_, sweep.lastDayMonths_);
}

}  // namespace
