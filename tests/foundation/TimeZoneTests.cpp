// Time zones, every zone of the database checked against SystemTimeToTzSpecificLocalTime.
#include <gtest/gtest.h>

#include <windows.h>

#include <cstdio>
#include <set>
#include <string>
#include <tuple>

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
    const WORD yearOf = static_cast<WORD>(year + month / 13), monthOf = (month - 1) % 12 + 1;
    const SYSTEMTIME time{yearOf, monthOf, 0, day, hour, minute, 0, 0};
    FILETIME fileTime{};
    EXPECT_TRUE(SystemTimeToFileTime(&time, &fileTime));
    return Count(fileTime);
}

TIME_ZONE_INFORMATION Zone(LONG bias, WORD daylightMonth, WORD daylightWeek, WORD standardMonth,
                           WORD standardWeek, WORD year = 0) {
    TIME_ZONE_INFORMATION zone{};
    zone.Bias = bias;
    zone.DaylightBias = -60;
    zone.DaylightDate = {year, daylightMonth, 0, daylightWeek, 2, 0, 0, 0};
    zone.StandardDate = {year, standardMonth, 0, standardWeek, 3, 0, 0, 0};
    return zone;
}

TEST(TimeZones, RulesGiveTheDaylightStateOffsetAndConversions) {
    TIME_ZONE_INFORMATION none = Zone(-330, 0, 0, 0, 0);
    none.StandardBias = 5;
    const std::tuple<const char*, TIME_ZONE_INFORMATION, uint64_t, int, LONG> cases[] = {
        // what, zone, when, daylight state, offset
        {"no daylight rules", none, Utc(2024, 7, 1), -1, -325},
        {"absolute rules, their year", Zone(300, 3, 10, 11, 3, 2024), Utc(2024, 6, 1), 1, 240},
        {"absolute rules, a later year", Zone(300, 3, 10, 11, 3, 2024), Utc(2025, 6, 1), 0, 300}};
    for (const auto& [what, zone, when, daylight, minutes] : cases) {
        const FILETIME utc = Time(when);
        int state = 99;
        LONG offset = 99;
        EXPECT_TRUE(VTimeZone(zone).GetDaylightState(&utc, state) &&
                    VTimeZone(zone).GetOffset(&utc, offset));
        EXPECT_TRUE(state == daylight && offset == minutes) << what;
    }
    const VTimeZone west(Zone(300, 3, 2, 11, 1)), east(Zone(-600, 10, 1, 4, 1));
    FILETIME result = Time(12345);
    EXPECT_FALSE(west.UtcToLocal(Time(1), result) || east.LocalToUtc(Time(1), result) ||
                 east.UtcToLocal(Time(~0ull), result) ||
                 west.LocalToUtc(Time(~0ull - Minute), result));
    EXPECT_EQ(Count(result), 12345u);
    TIME_ZONE_INFORMATION machine{};
    const bool daylight = GetTimeZoneInformation(&machine) == TIME_ZONE_ID_DAYLIGHT;
    LONG offset = 0;
    EXPECT_TRUE(VTimeZone().GetOffset(nullptr, offset));
    EXPECT_EQ(offset, machine.Bias + (daylight ? machine.DaylightBias : machine.StandardBias));
}

TEST(TimeZones, TheDatabaseFindsZonesByKeyName) {
    VTimeZone zone(Zone(1, 0, 0, 0, 0));
    VReportMessageParams report;
    ASSERT_TRUE(FindTimeZone(VUnicodeString(L"AUS Eastern Standard Time"), zone, report));
    EXPECT_STREQ(zone.GetInformation().StandardName, L"AUS Eastern Standard Time");
    for (const wchar_t* unknown :
         {L"Atlantis Standard Time", L"W. Europe Standard Time\\Dynamic DST"}) {
        EXPECT_FALSE(FindTimeZone(VUnicodeString(unknown), zone, report));
        EXPECT_TRUE(report.GetMessageCode() == CONFIG_TIME_ZONE_UNKNOWN &&
                    zone.GetInformation().Bias == -600);
    }
    ASSERT_TRUE(FindTimeZone(VUnicodeString(), zone, report));
    EXPECT_EQ(zone.GetInformation().Bias, VTimeZone().GetInformation().Bias);
}

bool Agree(const TIME_ZONE_INFORMATION& zone, ITimeZone& ours, uint64_t utc,
           std::pair<uint64_t, uint64_t>& offsets) {
    const FILETIME utcTime = Time(utc);
    SYSTEMTIME utcDate, localDate;
    FILETIME system{}, local{}, back, again;
    int state = 0;
    const bool converted = FileTimeToSystemTime(&utcTime, &utcDate) &&
                           SystemTimeToTzSpecificLocalTime(&zone, &utcDate, &localDate) &&
                           SystemTimeToFileTime(&localDate, &system) &&
                           ours.UtcToLocal(utcTime, local) &&
                           ours.GetDaylightState(&utcTime, state);
    offsets = {Count(system) - utc, Count(local) - utc};
    if (!converted || offsets.first != offsets.second) return false;
    EXPECT_TRUE(ours.LocalToUtc(local, back) && ours.UtcToLocal(back, again) &&
                Count(again) == Count(local));
    const bool daylightShown =
        offsets.first == 0 - uint64_t(zone.Bias + zone.DaylightBias) * Minute;
    return zone.DaylightBias == zone.StandardBias || state == -1 || state == daylightShown;
}

// The system takes the month's last day when the rule's weekday falls there; we do not.
TEST(TimeZones, EveryDatabaseZoneAgreesWithTheSystemSaveOnTheLastDayOfAMonth) {
    constexpr WORD firstYear = 1980, lastYear = 2039;
    VArray<VUnicodeString> names;
    VReportMessageParams report;
    ASSERT_TRUE(GetTimeZoneNames(names, report)) << report.GetText();
    long instants = 0, withDaylightTime = 0;
    std::set<std::string> disagreeingMonths, lastDayMonths;
    for (const VUnicodeString& name : names) {
        VTimeZone found;
        ASSERT_TRUE(FindTimeZone(name, found, report)) << report.GetText();
        const TIME_ZONE_INFORMATION& zone = found.GetInformation();
        const VRefPtr<ITimeZone> ours = VRefPtr<ITimeZone>::Adopt(new VTimeZoneI(found));
        const SYSTEMTIME rules[] = {zone.DaylightDate, zone.StandardDate};
        const bool daylightTime = rules[0].wMonth != 0 && rules[1].wMonth != 0;
        withDaylightTime += daylightTime;
        for (WORD year = firstYear; year <= lastYear; ++year) {
            for (const SYSTEMTIME& rule : rules) {
                const std::string month = std::string(VString(name).c_str()) + " " +
                                          std::to_string(year) + "-" + std::to_string(rule.wMonth);
                std::pair<uint64_t, uint64_t> offsets, previous;
                const auto check = [&](uint64_t utc) {
                    ++instants;
                    if (!Agree(zone, *ours, utc, offsets)) disagreeingMonths.insert(month);
                };
                if (!daylightTime) {
                    check(Utc(year, 1 + 6 * (&rule - rules), 1));  // January and July
                    continue;
                }
                std::set<uint64_t> changedDays;
                const uint64_t first = Utc(year, rule.wMonth, 1) - 2 * Day;
                for (uint64_t utc = first; utc <= Utc(year, rule.wMonth + 1, 3); utc += Day) {
                    check(utc);
                    if (utc != first && offsets != previous) changedDays.insert(utc - Day);
                    previous = offsets;
                }
                for (uint64_t day : changedDays)
                    for (uint64_t utc = day; utc <= day + Day; utc += 30 * Minute) check(utc);
                const FILETIME lastDay = Time(Utc(year, rule.wMonth + 1, 1) - Day);
                SYSTEMTIME date;
                if (rule.wYear == 0 && rule.wDay == 5 && FileTimeToSystemTime(&lastDay, &date) &&
                    date.wDayOfWeek == rule.wDayOfWeek)
                    lastDayMonths.insert(month);
            }
        }
    }
    std::printf(
        "%zu zones (%ld with daylight saving time), %u-%u: %ld instants compared; %zu "
        "months disagree, %zu have their transition on the last day\n",
        names.GetCount(), withDaylightTime, firstYear, lastYear, instants, disagreeingMonths.size(),
        lastDayMonths.size());
    EXPECT_GT(names.GetCount(), 50u);
    EXPECT_EQ(disagreeingMonths, lastDayMonths);
}

}  // namespace
