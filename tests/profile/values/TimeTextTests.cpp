// Time stamps kept as "year:month:day:hour:minute:second:milliseconds" text.
#include <gtest/gtest.h>

#include "ConfigMessages.h"
#include "IniTestStore.h"
#include "VProfile2.h"
#include "VProfileTimeSz.h"

namespace {

using VProfileTime = VProfile2<FILETIME, VProfileTimeSz>;

FILETIME TimeOf(WORD year, WORD month, WORD day, WORD hour, WORD minute, WORD second,
                WORD milliseconds) {
    const SYSTEMTIME parts{year, month, 0, day, hour, minute, second, milliseconds};
    FILETIME time{};
    EXPECT_TRUE(SystemTimeToFileTime(&parts, &time));
    return time;
}

bool SameTime(const FILETIME& a, const FILETIME& b) { return CompareFileTime(&a, &b) == 0; }

TEST(TimeTextTest, TimesAreWrittenWithFixedWidthFieldsAndReadWithLooserOnes) {
    const struct {
        FILETIME time;
        const wchar_t* written;
        const wchar_t* alsoRead;
    } cases[] = {
        {TimeOf(2018, 2, 28, 13, 5, 9, 42), L"2018:02:28:13:05:09:042",
         L"2018:02 :28:13:05:09:042 "},  // trailing blanks
        {TimeOf(2018, 2, 3, 4, 5, 6, 7), L"2018:02:03:04:05:06:007", L"2018:2:3:4:5:6:7"},
        {TimeOf(1601, 1, 1, 0, 0, 0, 0), L"1601:01:01:00:00:00:000", L"1601:1:1:0:0:0:0"},
        {TimeOf(30827, 12, 31, 23, 59, 59, 999), L"30827:12:31:23:59:59:999",
         L"30827:12:31:23:59:59:999"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(VString(VUnicodeString(c.written)).c_str());
        VUnicodeString text;
        ASSERT_TRUE(VProfileTimeSz::FormatTime(c.time, text));
        EXPECT_EQ(text, c.written);
        for (const wchar_t* read : {c.written, c.alsoRead}) {
            FILETIME time{};
            EXPECT_TRUE(VProfileTimeSz::ParseTime(read, time) && SameTime(time, c.time));
        }
    }

    VUnicodeString text = L"kept";
    EXPECT_FALSE(VProfileTimeSz::FormatTime(FILETIME{0xFFFFFFFF, 0x80000000}, text) ||
                 text != L"kept");
}

TEST(TimeTextTest, InvalidTextsLeaveTheTimeAsItWas) {
    const FILETIME before = TimeOf(2000, 1, 1, 0, 0, 0, 0);
    const wchar_t* const invalid[] = {
        L"2018:02:30:00:00:00:000",  // within the field bounds, but no such day
        // each field one past its bounds
        L"1600:12:31:23:59:59:999", L"30828:01:01:00:00:00:000", L"2018:00:01:00:00:00:000",
        L"2018:13:01:00:00:00:000", L"2018:01:00:00:00:00:000", L"2018:01:32:00:00:00:000",
        L"2018:01:01:24:00:00:000", L"2018:01:01:00:60:00:000", L"2018:01:01:00:00:60:000",
        L"2018:01:01:00:00:00:1000",
        // fields: six, eight, empty, signed, "-" inside, trailing, overflow; nothing
        L"2018:01:01:00:00:00", L"2018:01:01:00:00:00:000:0", L"2018:01::00:00:00:000",
        L"2018:-1:01:00:00:00:000", L"2018:1-:01:00:00:00:000", L"2018:01:01:00:00:00:000x",
        L"2018:01:01:00:00:00:99999999999999999999", L""};
    for (const wchar_t* text : invalid) {
        FILETIME time = before;
        EXPECT_FALSE(VProfileTimeSz::ParseTime(text, time) || !SameTime(time, before))
            << VString(VUnicodeString(text)).c_str();
    }
}

TEST(TimeTextTest, ATimeValueRoundTripsThroughItsTextAndRefusesWhatHasNone) {
    IniTestStore store;
    const FILETIME stamp = TimeOf(2024, 7, 14, 9, 30, 0, 500);
    EXPECT_TRUE(VProfileTime(L"FWX Update Prompt Date", stamp).Save(*store.OpenKey(), true));
    EXPECT_EQ(store.StoredText(L"FWX Update Prompt Date"),
              VUnicodeString(L"2024:07:14:09:30:00:500"));

    const FILETIME other = TimeOf(1999, 12, 31, 0, 0, 0, 0);
    VProfileTime loaded(L"FWX Update Prompt Date", other);
    auto key = store.OpenKey();
    EXPECT_TRUE(loaded.Load(*key) && SameTime(loaded.Get(), stamp));

    ASSERT_TRUE(key->SetString(L"FWX Update Prompt Date", L"2018:02:30:00:00:00:000"));
    VProfileTime refused(L"FWX Update Prompt Date", other);
    EXPECT_FALSE(refused.Load(*key) || !SameTime(refused.Get(), other));
    EXPECT_EQ(key->GetLastErrorParams().GetMessageCode(), DWORD{CONFIG_VALUE_NOT_CONVERTIBLE});

    key->ClearWritten();
    VProfileTime unwritable(L"Unwritable Date", FILETIME{0xFFFFFFFF, 0x80000000});
    EXPECT_FALSE(unwritable.Save(*key, true));
    EXPECT_EQ(key->GetLastErrorParams().GetMessageCode(), DWORD{CONFIG_VALUE_NOT_CONVERTIBLE});
    EXPECT_FALSE(key->WasWritten());
}

}  // namespace
