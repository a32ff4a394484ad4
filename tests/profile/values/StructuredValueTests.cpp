// The structured values: their binary blocks laid out as the system's
// structures and their state texts, round trips through real INI-file keys,
// and the damaged blocks and texts that reading refuses.
#include <gtest/gtest.h>

#include <cstring>

#include "ColorScheme.h"
#include "ConfigMessages.h"
#include "CustomColors.h"
#include "IniTestStore.h"
#include "VListViewState.h"
#include "VLogFont.h"
#include "VMarginData.h"
#include "VPaneState.h"
#include "VTabStateList.h"
#include "VWindowPlacement.h"

namespace {

class StructuredValueTest : public ::testing::Test {
protected:
    // Saves value (forced), then loads it into a fresh value of the same kind
    // that starts from its default.
    template <class Value>
    typename Value::Value RoundTrip(const Value& value) {
        {
            Value copy(value);
            EXPECT_TRUE(copy.Save(*store_.OpenKey(), true));
        }
        Value loaded(value.GetName());
        EXPECT_TRUE(loaded.Load(*store_.OpenKey()));
        return loaded.Get();
    }

    VBinaryBlock StoredBlock(const wchar_t* name) {
        VBinaryBlock block;
        EXPECT_TRUE(VProfileBinary::ReadBlock(*store_.OpenKey(), name, block));
        return block;
    }

    // Stores block under the value's name and expects the load to refuse it,
    // leaving the value as it was.
    template <class Value>
    void ExpectRefused(Value& value, const VBinaryBlock& block) {
        const typename Value::Value before = value.Get();
        auto key = store_.OpenKey();
        ASSERT_TRUE(
            key->SetBinary(value.GetName(), block.data(), static_cast<uint32_t>(block.size())));
        EXPECT_FALSE(value.Load(*key));
        EXPECT_EQ(key->GetLastErrorParams().GetMessageCode(),
                  static_cast<DWORD>(CONFIG_VALUE_NOT_CONVERTIBLE));
        EXPECT_TRUE(value.Get() == before);
    }

    template <class Value>
    static VBinaryBlock BlockOf(const Value& value) {
        VBinaryBlock block;
        EXPECT_TRUE(VProfileValueTraits<typename Value::Value>::ToStored(value.Get(), block));
        return block;
    }

    static uint32_t Dword(const VBinaryBlock& block, size_t offset) {
        uint32_t value = 0;
        std::memcpy(&value, block.data() + offset, sizeof value);
        return value;
    }

    IniTestStore store_;
};

TEST_F(StructuredValueTest, AWindowPlacementIsTheSystemsStructure) {
    VWindowPlacement placed;
    placed.flags = WPF_RESTORETOMAXIMIZED;
    placed.showCmd = SW_SHOWMINIMIZED;
    placed.ptMaxPosition = {-8, -8};
    placed.rcNormalPosition = {100, 50, 900, 650};
    const VProfileWindowPlacement placement(L"Window Placement", placed);
    EXPECT_EQ(RoundTrip(placement), placed);

    const VBinaryBlock block = StoredBlock(L"Window Placement");
    ASSERT_EQ(block.size(), sizeof(WINDOWPLACEMENT));
    EXPECT_EQ(Dword(block, 0), sizeof(WINDOWPLACEMENT));
    EXPECT_EQ(Dword(block, 8), static_cast<uint32_t>(SW_SHOWMINIMIZED));
    EXPECT_EQ(Dword(block, 28), 100u);
    EXPECT_EQ(Dword(block, 40), 650u);

    VProfileWindowPlacement damaged(L"Window Placement", placed);
    VBinaryBlock wrong = block;
    wrong[0] = 40;  // the length field
    ExpectRefused(damaged, wrong);
    wrong = block;
    wrong[8] = SW_MAX + 1;
    ExpectRefused(damaged, wrong);
    wrong = block;
    wrong.pop_back();
    ExpectRefused(damaged, wrong);
}

TEST_F(StructuredValueTest, AFontIsTheSystemsLogFontWithAFaceNameEndingInZeros) {
    VLogFont font(L"Lucida Console", -13, FW_BOLD);
    font.lfItalic = TRUE;
    const VProfileLogFont normalFont(L"Normal Font v2", font);
    EXPECT_EQ(RoundTrip(normalFont), font);

    const VBinaryBlock block = StoredBlock(L"Normal Font v2");
    ASSERT_EQ(block.size(), sizeof(LOGFONTW));
    EXPECT_EQ(static_cast<int32_t>(Dword(block, 0)), -13);
    EXPECT_EQ(Dword(block, 16), static_cast<uint32_t>(FW_BOLD));
    EXPECT_EQ(block[20], TRUE);
    EXPECT_EQ(std::memcmp(block.data() + 28, L"Lucida Console", 15 * sizeof(wchar_t)), 0);

    // Whatever follows the face name's terminator is neither compared nor stored.
    VLogFont untidy = font;
    untidy.lfFaceName[20] = L'x';
    EXPECT_EQ(untidy, font);
    EXPECT_EQ(BlockOf(VProfileLogFont(L"f", untidy)), block);

    VProfileLogFont damaged(L"Normal Font v2", font);
    VBinaryBlock unterminated = block;
    for (size_t offset = 28; offset < block.size(); offset += 2) unterminated[offset] = 'A';
    ExpectRefused(damaged, unterminated);
    ExpectRefused(damaged, VBinaryBlock(block.begin(), block.end() - 2));

    VLogFont longName(L"A face name that is longer than thirty-one units", 10);
    EXPECT_EQ(wcslen(longName.lfFaceName), 31u);
}

TEST_F(StructuredValueTest, ColoursAreColorRefsAndRefuseAnythingElse) {
    CustomColors colors;
    colors.colors[0] = RGB(1, 2, 3);
    colors.colors[15] = RGB(250, 128, 0);
    const VProfileCustomColors custom(L"Custom Colors", colors);
    EXPECT_EQ(RoundTrip(custom), colors);
    const VBinaryBlock block = StoredBlock(L"Custom Colors");
    ASSERT_EQ(block.size(), 64u);
    EXPECT_EQ(Dword(block, 0), 0x00030201u);
    EXPECT_EQ(Dword(block, 60), 0x000080FAu);

    VProfileCustomColors damaged(L"Custom Colors", colors);
    VBinaryBlock notRgb = block;
    notRgb[63] = 0x01;  // a palette index, not an RGB value
    ExpectRefused(damaged, notRgb);

    ColorScheme scheme;
    scheme.background = RGB(0, 0, 64);
    scheme.ansi[9] = RGB(255, 85, 85);
    const VProfileColorScheme colorScheme(L"Color Scheme", scheme);
    EXPECT_EQ(RoundTrip(colorScheme), scheme);
    const VBinaryBlock schemeBlock = StoredBlock(L"Color Scheme");
    ASSERT_EQ(schemeBlock.size(), 84u);
    EXPECT_EQ(Dword(schemeBlock, 0), 84u);
    EXPECT_EQ(Dword(schemeBlock, 8), static_cast<uint32_t>(RGB(0, 0, 64)));
    EXPECT_EQ(Dword(schemeBlock, 20 + 9 * 4), static_cast<uint32_t>(RGB(255, 85, 85)));

    VProfileColorScheme damagedScheme(L"Color Scheme", scheme);
    VBinaryBlock wrongSize = schemeBlock;
    wrongSize[0] = 80;
    ExpectRefused(damagedScheme, wrongSize);
    VBinaryBlock badColour = schemeBlock;
    badColour[7] = 0xFF;  // top byte of the foreground
    ExpectRefused(damagedScheme, badColour);
}

TEST_F(StructuredValueTest, MarginsAreTheRectOfPageSetUpWithItsUnits) {
    VMarginData margins;
    margins.margins = {2000, 1500, 2000, 1500};
    margins.units = PSD_INHUNDREDTHSOFMILLIMETERS;
    const VProfileMarginData pageMargins(L"Page Margins", margins);
    EXPECT_EQ(RoundTrip(pageMargins), margins);
    const VBinaryBlock block = StoredBlock(L"Page Margins");
    ASSERT_EQ(block.size(), 20u);
    EXPECT_EQ(Dword(block, 4), 1500u);
    EXPECT_EQ(Dword(block, 16), static_cast<uint32_t>(PSD_INHUNDREDTHSOFMILLIMETERS));

    VProfileMarginData damaged(L"Page Margins", margins);
    VBinaryBlock otherUnits = block;
    otherUnits[16] = 2;
    ExpectRefused(damaged, otherUnits);
    VBinaryBlock negative = block;
    negative[3] = 0x80;
    ExpectRefused(damaged, negative);
}

TEST_F(StructuredValueTest, TheDefaultStateTextsOfTheOptionsParse) {
    for (const wchar_t* text : {L"1,-1,200", L"1,1000,200", L"1,0,-1"}) {
        VPaneState state;
        ASSERT_TRUE(VPaneState::Parse(text, state)) << VString(VUnicodeString(text)).c_str();
        EXPECT_EQ(state.Format(), text);
    }
    VPaneState state;
    ASSERT_TRUE(VPaneState::Parse(L"0,1000,200", state));
    EXPECT_FALSE(state.shown);
    EXPECT_EQ(state.position, 1000);
    EXPECT_EQ(state.size, 200);

    VTabStateList tabs;
    ASSERT_TRUE(VTabStateList::Parse(L"1,1,0;", tabs));
    ASSERT_EQ(tabs.groups.GetCount(), 1u);
    EXPECT_EQ(tabs.Format(), L"1,1,0;");
    ASSERT_TRUE(VTabStateList::Parse(L"1,1,0;0,-1,-1;", tabs));
    EXPECT_EQ(tabs.groups.GetCount(), 2u);
    EXPECT_EQ(tabs.Format(), L"1,1,0;0,-1,-1;");
    ASSERT_TRUE(VTabStateList::Parse(L"", tabs));
    EXPECT_TRUE(tabs.groups.IsEmpty());
}

TEST_F(StructuredValueTest, MalformedStateTextsAreRefused) {
    const VPaneState before{false, 7, 8};
    for (const wchar_t* text : {L"", L"1,2", L"1,2,3,4", L"2,0,0", L"1,-2,0", L"1,0,-2", L"1, 0,0",
                                L"1,0,x", L"1,,0", L"1,0,99999999999", L"1;0;0"}) {
        VPaneState state = before;
        EXPECT_FALSE(VPaneState::Parse(text, state)) << VString(VUnicodeString(text)).c_str();
        EXPECT_EQ(state, before);
    }
    for (const wchar_t* text : {L"1,1,0;1,1,0", L";", L"1,1,0;;", L"1,1;", L"1,1,0,"}) {
        VTabStateList tabs;
        tabs.groups.Add(before);
        EXPECT_FALSE(VTabStateList::Parse(text, tabs)) << VString(VUnicodeString(text)).c_str();
        EXPECT_EQ(tabs.groups.GetCount(), 1u);
    }
}

TEST_F(StructuredValueTest, AListViewStateKeepsWidthsOrderAndSorting) {
    VListViewState state;
    ASSERT_TRUE(VListViewState::Parse(L"1,0;200,80,120;0,2,1", state));
    EXPECT_EQ(state.sortColumn, 1);
    EXPECT_FALSE(state.sortAscending);
    EXPECT_EQ(state.widths, (VArray<int>{200, 80, 120}));
    EXPECT_EQ(state.order, (VArray<int>{0, 2, 1}));

    const VProfileListViewState agentKeys(L"Traywell Agent Keys ListView State", state);
    EXPECT_EQ(RoundTrip(agentKeys), state);
    EXPECT_EQ(store_.StoredText(L"Traywell Agent Keys ListView State"),
              VUnicodeString(L"1,0;200,80,120;0,2,1"));

    ASSERT_TRUE(VListViewState::Parse(L"", state));
    EXPECT_TRUE(state.IsEmpty());
    EXPECT_EQ(state.Format(), L"");

    const VListViewState before = VListViewState();
    for (const wchar_t* text :
         {L"1,0;200,80;0,0", L"1,0;200,80;0,2", L"1,0;200,80;0", L"2,1;200,80;0,1",
          L"-2,1;200,80;0,1", L"0,2;200,80;0,1", L"0,1;-5,80;0,1", L"0,1;;", L"0,1;200;0;",
          L"0;200;0", L"0,1,2;200;0"}) {
        VListViewState refused = before;
        EXPECT_FALSE(VListViewState::Parse(text, refused)) << VString(VUnicodeString(text)).c_str();
        EXPECT_EQ(refused, before);
    }
}

TEST_F(StructuredValueTest, StateValuesRoundTripThroughTheirTexts) {
    const VProfileExplorerFrameState frame(L"Remote ExplorerFrame State",
                                           VPaneState{true, 1000, 200});
    EXPECT_EQ(RoundTrip(frame), (VPaneState{true, 1000, 200}));
    VTabStateList tabs;
    tabs.groups.Add(VPaneState{true, 1, 0});
    tabs.groups.Add(VPaneState{false, -1, 300});
    const VProfileTabStateList termTabs(L"Termwright Tab State V2", tabs);
    EXPECT_EQ(RoundTrip(termTabs), tabs);

    auto key = store_.OpenKey();
    ASSERT_TRUE(key->SetString(L"Remote ExplorerFrame State", L"garbage"));
    VProfileExplorerFrameState damaged(L"Remote ExplorerFrame State", VPaneState{true, 5, 6});
    EXPECT_FALSE(damaged.Load(*key));
    EXPECT_EQ(damaged.Get(), (VPaneState{true, 5, 6}));
}

}  // namespace
