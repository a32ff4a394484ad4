// The structured values and time stamps: stored layouts and texts, round trips, damage.
#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <tuple>

#include "ColorScheme.h"
#include "ConfigMessages.h"
#include "CustomColors.h"
#include "IniTestStore.h"
#include "StateText.h"
#include "VListViewState.h"
#include "VLogFont.h"
#include "VMarginData.h"
#include "VPaneState.h"
#include "VProfile2.h"
#include "VProfileTimeSz.h"
#include "VTabStateList.h"
#include "VWindowPlacement.h"

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

class StructuredValueTest : public ::testing::Test {
protected:
    StructuredValueTest() {
        placed_.flags = WPF_RESTORETOMAXIMIZED;
        placed_.showCmd = SW_SHOWMINIMIZED;
        placed_.ptMaxPosition = {-8, -8};
        placed_.rcNormalPosition = {100, 50, 900, 650};
        font_.lfItalic = TRUE;
        colors_.colors[0] = RGB(1, 2, 3);
        colors_.colors[15] = RGB(250, 128, 0);
        scheme_.background = RGB(0, 0, 64);
        scheme_.ansi[9] = RGB(255, 85, 85);
        margins_.margins = {2000, 1500, 2000, 1500};
        margins_.units = PSD_INHUNDREDTHSOFMILLIMETERS;
        tabs_.groups.Add(VPaneState{true, 1, 0});
        tabs_.groups.Add(VPaneState{false, -1, 300});
        EXPECT_TRUE(VListViewState::Parse(L"1,0;200,80,120;0,2,1", listView_));
    }

    template <class Value>
    void ExpectRoundTrip(const Value& value) {
        SCOPED_TRACE(VString(value.GetName()).c_str());
        EXPECT_TRUE(Value(value).Save(*store_.OpenKey(), true));
        Value loaded(value.GetName());
        EXPECT_TRUE(loaded.Load(*store_.OpenKey()));
        EXPECT_EQ(loaded.Get(), value.Get());
    }

    VBinaryBlock StoredBlock(const wchar_t* name) {
        VBinaryBlock block;
        EXPECT_TRUE(VProfileBinary::ReadBlock(*store_.OpenKey(), name, block));
        return block;
    }

    template <class Value, class Damage>
    void ExpectRefused(Value value, Damage damage) {
        SCOPED_TRACE(VString(value.GetName()).c_str());
        VBinaryBlock block;
        ASSERT_TRUE(VProfileValueTraits<typename Value::Value>::ToStored(value.Get(), block));
        damage(block);
        const typename Value::Value before = value.Get();
        auto key = store_.OpenKey();
        ASSERT_TRUE(key->SetBinary(value.GetName(), block.data(), uint32_t(block.size())));
        EXPECT_FALSE(value.Load(*key) || !(value.Get() == before));
        EXPECT_EQ(key->GetLastErrorParams().GetMessageCode(), DWORD{CONFIG_VALUE_NOT_CONVERTIBLE});
    }

    static uint32_t Dword(const VBinaryBlock& block, size_t offset) {
        uint32_t value = 0;
        std::memcpy(&value, block.data() + offset, sizeof value);
        return value;
    }

    VWindowPlacement placed_;
    VLogFont font_{L"Lucida Console", -13, FW_BOLD};
    CustomColors colors_;
    ColorScheme scheme_;
    VMarginData margins_;
    VTabStateList tabs_;
    VListViewState listView_;
    IniTestStore store_;
};

TEST_F(StructuredValueTest, EveryKindRoundTripsAndIsStoredAsTheSystemsLayout) {
    const auto kinds = std::make_tuple(
        VProfileWindowPlacement(L"Window Placement", placed_),
        VProfileLogFont(L"Normal Font v2", font_), VProfileCustomColors(L"Custom Colors", colors_),
        VProfileColorScheme(L"Color Scheme", scheme_),
        VProfileMarginData(L"Page Margins", margins_),
        VProfileExplorerFrameState(L"Remote ExplorerFrame State", VPaneState{true, 1000, 200}),
        VProfileTabStateList(L"Termwright Tab State V2", tabs_),
        VProfileListViewState(L"Traywell Agent Keys ListView State", listView_));
    std::apply([this](const auto&... value) { (ExpectRoundTrip(value), ...); }, kinds);

    const struct {
        const wchar_t* name;
        size_t size;
        std::initializer_list<std::pair<size_t, uint32_t>> dwords;  // offset, value
    } layouts[] = {
        {L"Window Placement", sizeof(WINDOWPLACEMENT),
         {{0, sizeof(WINDOWPLACEMENT)}, {8, SW_SHOWMINIMIZED}, {28, 100}, {40, 650}}},
        {L"Normal Font v2", sizeof(LOGFONTW), {{0, static_cast<uint32_t>(-13)}, {16, FW_BOLD}}},
        {L"Custom Colors", 64, {{0, 0x00030201}, {60, 0x000080FA}}},
        {L"Color Scheme", 84, {{0, 84}, {8, RGB(0, 0, 64)}, {20 + 9 * 4, RGB(255, 85, 85)}}},
        {L"Page Margins", 20, {{4, 1500}, {16, PSD_INHUNDREDTHSOFMILLIMETERS}}},
    };
    for (const auto& layout : layouts) {
        SCOPED_TRACE(layout.name);
        const VBinaryBlock block = StoredBlock(layout.name);
        ASSERT_EQ(block.size(), layout.size);
        for (const auto& [offset, value] : layout.dwords) EXPECT_EQ(Dword(block, offset), value);
    }
    const VBinaryBlock font = StoredBlock(L"Normal Font v2");
    EXPECT_EQ(font[20], TRUE);
    EXPECT_EQ(std::memcmp(font.data() + 28, L"Lucida Console", 15 * sizeof(wchar_t)), 0);
    EXPECT_TRUE(store_.StoredText(L"Remote ExplorerFrame State") == L"1,1000,200" &&
                store_.StoredText(L"Termwright Tab State V2") == L"1,1,0;0,-1,300;" &&
                store_.StoredText(L"Traywell Agent Keys ListView State") ==
                    L"1,0;200,80,120;0,2,1");
}

TEST_F(StructuredValueTest, DamagedBlocksAreRefused) {
    const VProfileWindowPlacement placement(L"Window Placement", placed_);
    ExpectRefused(placement, [](VBinaryBlock& b) { b[0] = 40; });  // the length field
    ExpectRefused(placement, [](VBinaryBlock& b) { b[8] = SW_MAX + 1; });
    ExpectRefused(placement, [](VBinaryBlock& b) { b.pop_back(); });

    const VProfileLogFont font(L"Normal Font v2", font_);
    ExpectRefused(font, [](VBinaryBlock& b) {  // no terminator in the face name
        for (size_t offset = 28; offset < b.size(); offset += 2) b[offset] = 'A';
    });
    ExpectRefused(font, [](VBinaryBlock& b) { b.resize(b.size() - 2); });

    ExpectRefused(VProfileCustomColors(L"Custom Colors", colors_),
                  [](VBinaryBlock& b) { b[63] = 0x01; });
    const VProfileColorScheme scheme(L"Color Scheme", scheme_);
    ExpectRefused(scheme, [](VBinaryBlock& b) { b[0] = 80; });
    ExpectRefused(scheme, [](VBinaryBlock& b) { b[7] = 0xFF; });

    const VProfileMarginData margins(L"Page Margins", margins_);
    ExpectRefused(margins, [](VBinaryBlock& b) { b[16] = 2; });     // other units
    ExpectRefused(margins, [](VBinaryBlock& b) { b[3] = 0x80; });  // negative
}

TEST_F(StructuredValueTest, AFaceNameEndsAtItsTerminatorAndIsCutToThirtyOneUnits) {
    VLogFont untidy = font_;
    untidy.lfFaceName[20] = L'x';
    EXPECT_EQ(untidy, font_);
    VBinaryBlock tidyBlock, untidyBlock;
    ASSERT_TRUE(VProfileValueTraits<VLogFont>::ToStored(font_, tidyBlock));
    ASSERT_TRUE(VProfileValueTraits<VLogFont>::ToStored(untidy, untidyBlock));
    EXPECT_EQ(untidyBlock, tidyBlock) << "what follows the terminator is not stored";

    VLogFont longName(L"A face name that is longer than thirty-one units", 10);
    EXPECT_EQ(wcslen(longName.lfFaceName), 31u);
}

TEST_F(StructuredValueTest, StateTextsParseAsWrittenAndMalformedOnesAreRefused) {
    for (const wchar_t* text : {L"1,-1,200", L"1,1000,200", L"1,0,-1", L"0,1000,200"}) {
        VPaneState state;
        ASSERT_TRUE(VPaneState::Parse(text, state)) << text;
        EXPECT_EQ(state.Format(), text);
    }
    for (const wchar_t* text : {L"1,1,0;", L"1,1,0;0,-1,-1;", L""}) {
        VTabStateList tabs;
        ASSERT_TRUE(VTabStateList::Parse(text, tabs)) << text;
        EXPECT_EQ(tabs.Format(), text);
    }
    VArray<int> numbers;
    EXPECT_TRUE(StateText::ParseIntegers(L"2147483647,-2147483648", numbers) &&
                numbers == VArray<int>({INT_MAX, INT_MIN}));
    EXPECT_FALSE(StateText::ParseIntegers(L"2147483648", numbers)) << "beyond an int, not wrapped round";
    VListViewState empty;
    EXPECT_TRUE(VListViewState::Parse(L"", empty) && empty.IsEmpty());

    const VPaneState before{false, 7, 8};
    for (const wchar_t* text : {L"", L"1,2", L"1,2,3,4", L"2,0,0", L"1,-2,0", L"1,0,-2", L"1, 0,0",
                                L"1,0,x", L"1,,0", L"1,0,99999999999", L"1;0;0"}) {
        VPaneState state = before;
        EXPECT_FALSE(VPaneState::Parse(text, state) || !(state == before)) << text;
    }
    for (const wchar_t* text : {L"1,1,0;1,1,0", L";", L"1,1,0;;", L"1,1;", L"1,1,0,"}) {
        VTabStateList tabs;
        tabs.groups.Add(before);
        EXPECT_FALSE(VTabStateList::Parse(text, tabs) || tabs.groups.GetCount() != 1u) << text;
    }
    for (const wchar_t* text :
         {L"1,0;200,80;0,0", L"1,0;200,80;0,2", L"1,0;200,80;0", L"2,1;200,80;0,1",
          L"-2,1;200,80;0,1", L"0,2;200,80;0,1", L"0,1;-5,80;0,1", L"0,1;;", L"0,1;200;0;",
          L"0;200;0", L"0,1,2;200;0"}) {
        VListViewState refused;
        EXPECT_FALSE(VListViewState::Parse(text, refused) || !refused.IsEmpty()) << text;
    }

    auto key = store_.OpenKey();
    ASSERT_TRUE(key->SetString(L"Remote ExplorerFrame State", L"garbage"));
    VProfileExplorerFrameState damaged(L"Remote ExplorerFrame State", VPaneState{true, 5, 6});
    EXPECT_FALSE(damaged.Load(*key) || !(damaged.Get() == VPaneState{true, 5, 6}));
}

TEST(TimeTextTest, TimesAreWrittenWithFixedWidthsReadWithLooserOnesAndInvalidTextsChangeNothing) {
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
        SCOPED_TRACE(c.written);
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

    const FILETIME before = TimeOf(2000, 1, 1, 0, 0, 0, 0);
    const wchar_t* const invalid[] = {
        L"2018:02:30:00:00:00:000",  // within the field bounds, but no such day
        L"1600:12:31:23:59:59:999", L"30828:01:01:00:00:00:000", L"2018:00:01:00:00:00:000",
        L"2018:13:01:00:00:00:000", L"2018:01:00:00:00:00:000", L"2018:01:32:00:00:00:000",
        L"2018:01:01:24:00:00:000", L"2018:01:01:00:60:00:000", L"2018:01:01:00:00:60:000",
        L"2018:01:01:00:00:00:1000",
        L"2018:01:01:00:00:00", L"2018:01:01:00:00:00:000:0", L"2018:01::00:00:00:000",
        L"2018:-1:01:00:00:00:000", L"2018:1-:01:00:00:00:000", L"2018:01:01:00:00:00:000x",
        L"2018:01:01:00:00:00:99999999999999999999", L""};
    for (const wchar_t* text : invalid) {
        FILETIME time = before;
        EXPECT_FALSE(VProfileTimeSz::ParseTime(text, time) || !SameTime(time, before)) << text;
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
