// Typed values exchanged as OLE variants and through the profile-key sink and source.
#include <gtest/gtest.h>

#include "ConfigMessages.h"
#include "IniTestStore.h"
#include "VPaneState.h"
#include "VProfile.h"
#include "VProfile2.h"
#include "VProfileKeySink.h"
#include "VProfileKeySource.h"
#include "VProfileMultiSz.h"
#include "VProfileSz.h"
#include "VVariant.h"
#include "VWindowPlacement.h"

namespace {

using VProfileString = VProfile2<VUnicodeString, VProfileSz>;
using VProfileStrings = VProfile2<VStringArray, VProfileMultiSz>;

class NumberVariant : public VVariant {
public:
    NumberVariant(VARTYPE type, LONG value) {
        VVariant number;
        V_VT(&number.Get()) = VT_I4;
        V_I4(&number.Get()) = value;
        EXPECT_TRUE(ChangeTypeFrom(number.Get(), type));
    }
};

class TextVariant : public VVariant {
public:
    explicit TextVariant(const wchar_t* text) { SetText(text); }
};

void ExpectRefusal(VReportMessageParams& report, DWORD code, const wchar_t* name) {
    EXPECT_EQ(report.GetMessageCode(), code);
    EXPECT_EQ(report.GetArguments(), VStringArray{name});
}

LONGLONG NumberOut(const VProfileData& value, VARTYPE type) {
    VReportMessageParams report;
    VVariant variant, asNumber;
    EXPECT_TRUE(value.GetVariant(variant.Get(), report) && variant.GetType() == type);
    EXPECT_TRUE(asNumber.ChangeTypeFrom(variant.Get(), VT_I8));
    return V_I8(&asNumber.Get());
}

TEST(ScalarVariantTest, TheNarrowAndUnsignedKindsHandOutTheirOwnVariantType) {
    EXPECT_EQ(NumberOut(VProfile<short>(L"a", -300), VT_I2), -300);
    EXPECT_EQ(NumberOut(VProfile<unsigned short>(L"a", 60000), VT_UI2), 60000);
    EXPECT_EQ(NumberOut(VProfile<unsigned long>(L"a", 4000000000u), VT_UI4), 4000000000);
}

TEST(ScalarVariantTest, WhatEachScalarTakesInAndRefuses) {
    VProfile<int> rows(L"Rows", 24);
    VProfile<unsigned int> count(L"Count", 1);
    VProfile<unsigned char> alpha(L"Alpha", 10);
    VProfile<bool> blink(L"Blink", false);
    const struct {
        VProfileData* value;
        VARTYPE outType;
        VARTYPE inType;  // VT_BSTR takes text, VT_NULL nothing, else number
        LONG number;
        const wchar_t* text;
        bool taken;
        LONGLONG after;
    } cases[] = {
        {&rows, VT_INT, VT_I2, -5, nullptr, false, 24},
        {&rows, VT_INT, VT_R8, -5, nullptr, false, 24},
        {&rows, VT_INT, VT_BSTR, 0, L"-5", false, 24},
        {&rows, VT_INT, VT_BSTR, 0, L"42", true, 42},
        {&rows, VT_INT, VT_I4, -5, nullptr, true, -5},
        {&rows, VT_INT, VT_INT, -7, nullptr, true, -7},
        {&count, VT_UINT, VT_I2, -1, nullptr, false, 1},
        {&count, VT_UINT, VT_R8, 3, nullptr, true, 3},
        {&alpha, VT_UI1, VT_I4, 200, nullptr, false, 10},
        {&alpha, VT_UI1, VT_BSTR, 0, L"200", false, 10},
        {&alpha, VT_UI1, VT_I4, -1, nullptr, true, 255},  // the bits, as VariantChangeType copies them
        {&alpha, VT_UI1, VT_UI1, 200, nullptr, true, 200},
        {&blink, VT_BOOL, VT_I4, 5, nullptr, true, 1},
        {&blink, VT_BOOL, VT_BSTR, 0, L"perhaps", false, 1},
        {&blink, VT_BOOL, VT_NULL, 0, nullptr, false, 1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << VString(c.value->GetName()).c_str() << " from type "
                                        << c.inType << " " << c.number);
        VVariant in;
        if (c.inType == VT_BSTR)
            in.SetText(c.text);
        else if (c.inType == VT_NULL)
            V_VT(&in.Get()) = VT_NULL;
        else
            ASSERT_TRUE(in.ChangeTypeFrom(NumberVariant(VT_I4, c.number).Get(), c.inType));
        VReportMessageParams report;
        EXPECT_EQ(c.value->SetVariant(in.Get(), report), c.taken);
        if (!c.taken)
            ExpectRefusal(report, CONFIG_VALUE_NOT_CONVERTIBLE, c.value->GetName().c_str());
        EXPECT_EQ(NumberOut(*c.value, c.outType), c.after);
    }
}

TEST(ScalarVariantTest, TheTextExchangeIsNotSupportedByScalarsAndBlocks) {
    VProfile<int> rows(L"Rows", 24);
    VReportMessageParams report;
    VVariant variant;
    VUnicodeString text = L"unchanged";
    EXPECT_FALSE(rows.GetVariantAs(variant.Get(), L"5", VT_I4, report));
    ExpectRefusal(report, CONFIG_EXCHANGE_NOT_SUPPORTED, L"Rows");
    EXPECT_FALSE(rows.SetVariantAs(NumberVariant(VT_I4, 5).Get(), text, VT_BSTR, report) ||
                 text != L"unchanged");

    IniTestStore store;
    auto key = store.OpenKey();
    VProfileKeySink sink(*key);
    VProfileKeySource source(*key);
    EXPECT_FALSE(rows.WriteAs(sink, L"5", VT_I4));
    ExpectRefusal(sink.GetLastErrorParams(), CONFIG_EXCHANGE_NOT_SUPPORTED, L"Rows");
    EXPECT_FALSE(rows.ReadAs(source, text, VT_BSTR, report));
    EXPECT_FALSE(key->WasWritten());

    VProfileWindowPlacement placement(L"Window Placement");
    EXPECT_FALSE(placement.GetVariantAs(variant.Get(), L"5", VT_I4, report));
    ExpectRefusal(report, CONFIG_EXCHANGE_NOT_SUPPORTED, L"Window Placement");
}

TEST(TextVariantTest, TextsGoOutAsBstrAndAnyTypeConvertsOnTheWay) {
    VProfileString title(L"Title", L"12");
    VReportMessageParams report;
    VVariant variant;
    ASSERT_TRUE(title.GetVariant(variant.Get(), report));
    ASSERT_EQ(variant.GetType(), VT_BSTR);
    EXPECT_STREQ(V_BSTR(&variant.Get()), L"12");
    EXPECT_FALSE(title.GetVariantAs(variant.Get(), L"twelve", VT_I4, report));
    ExpectRefusal(report, CONFIG_VALUE_NOT_CONVERTIBLE, L"Title");

    VUnicodeString text;
    EXPECT_TRUE(title.SetVariantAs(NumberVariant(VT_I4, 7).Get(), text, VT_I4, report) &&
                text == L"7");
    EXPECT_FALSE(title.SetVariantAs(TextVariant(L"abc").Get(), text, VT_I4, report) || text != L"7")
        << "must pass through vt";
    EXPECT_TRUE(title.SetVariant(NumberVariant(VT_I2, -3).Get(), report) && title.Get() == L"-3");

    VProfileExplorerFrameState frame(L"Local ExplorerFrame State");
    EXPECT_TRUE(frame.SetVariant(TextVariant(L"0,300,150").Get(), report));
    EXPECT_FALSE(frame.SetVariant(TextVariant(L"0,300").Get(), report));
    ExpectRefusal(report, CONFIG_VALUE_NOT_CONVERTIBLE, L"Local ExplorerFrame State");
    EXPECT_EQ(frame.Get(), (VPaneState{false, 300, 150}));
}

TEST(ListVariantTest, ListsAndBlocksTravelAsSafeArrays) {
    VProfileStrings hosts(L"Hosts");
    VReportMessageParams report;
    SAFEARRAY* mixed = SafeArrayCreateVector(VT_VARIANT, 1, 2);
    LONG index[] = {1, 2};
    SafeArrayPutElement(mixed, &index[0], &TextVariant(L"a").Get());
    SafeArrayPutElement(mixed, &index[1], &NumberVariant(VT_I4, 5).Get());
    VVariant list;
    V_VT(&list.Get()) = VT_ARRAY | VT_VARIANT;
    V_ARRAY(&list.Get()) = mixed;
    ASSERT_TRUE(hosts.SetVariant(list.Get(), report));
    EXPECT_EQ(hosts.Get(), (VStringArray{L"a", L"5"}));
    EXPECT_FALSE(hosts.SetVariant(TextVariant(L"single").Get(), report));

    VVariant variant;
    VWindowPlacement placed;
    placed.rcNormalPosition = {10, 20, 300, 400};
    ASSERT_TRUE(VProfileWindowPlacement(L"Window Placement", placed).GetVariant(variant.Get(), report));
    EXPECT_EQ(variant.GetType(), VT_ARRAY | VT_UI1);
    VVariant shortBlock;
    shortBlock.SetBytes(VBinaryBlock(10, 0));
    VProfileWindowPlacement other(L"Transfer Window Placement");
    EXPECT_FALSE(other.SetVariant(shortBlock.Get(), report));
    ExpectRefusal(report, CONFIG_VALUE_NOT_CONVERTIBLE, L"Transfer Window Placement");
    EXPECT_TRUE(other.SetVariant(variant.Get(), report) && other.Get() == placed);
}

TEST(KeySerialisationTest, ValuesCopiedThroughTheSinkAndSourceArriveWhole) {
    VWindowPlacement placed;
    placed.showCmd = SW_SHOWMAXIMIZED;
    VProfile<int> position(L"X Position", -40), positionIn(L"X Position", 0);
    VProfile<unsigned short> port(L"Port", 8022), portIn(L"Port", 0);
    VProfile<bool> blink(L"Blink", true), blinkIn(L"Blink", false);
    VProfileString title(L"Title", L"tab \x263A"), titleIn(L"Title");
    VProfileStrings hosts(L"Hosts", VStringArray{L"alpha", L"beta"}), hostsIn(L"Hosts");
    VProfileWindowPlacement placement(L"Window Placement", placed),
        placementIn(L"Window Placement");
    const auto writeAll = [](IniTestStore& store, std::initializer_list<VProfileData*> values) {
        auto key = store.OpenKey();
        VProfileKeySink sink(*key);
        for (VProfileData* value : values)
            EXPECT_TRUE(value->Write(sink)) << VString(value->GetName()).c_str();
    };
    IniTestStore exported, reexported;
    writeAll(exported, {&position, &port, &blink, &title, &hosts, &placement});
    {
        auto key = exported.OpenKey();
        VProfileKeySource source(*key);
        for (VProfileData* value : std::initializer_list<VProfileData*>{
                 &positionIn, &portIn, &blinkIn, &titleIn, &hostsIn, &placementIn})
            EXPECT_TRUE(value->Read(source)) << VString(value->GetName()).c_str();
    }
    writeAll(reexported, {&positionIn, &portIn, &blinkIn, &titleIn, &hostsIn, &placementIn});
    EXPECT_EQ(reexported.ValuesFile(), exported.ValuesFile());
    EXPECT_EQ(placementIn.Get(), placed);
    EXPECT_TRUE(positionIn.IsChanged()) << "Read sets the current value only";
}

TEST(KeySerialisationTest, TheSinkAndSourceSayWhatTheyCannotDo) {
    IniTestStore store;
    auto key = store.OpenKey();
    VProfileKeySink sink(*key);
    EXPECT_FALSE(sink.Write(L"Ratio", NumberVariant(VT_R8, 2).Get()));
    ExpectRefusal(sink.GetLastErrorParams(), CONFIG_EXCHANGE_NOT_SUPPORTED, L"Ratio");
    EXPECT_FALSE(sink.Write(L"bad\"name", NumberVariant(VT_I4, 1).Get()));
    EXPECT_EQ(sink.GetLastErrorParams().GetMessageCode(), static_cast<DWORD>(ERROR_INVALID_NAME));

    VProfileKeySource source(*key);
    VProfile<unsigned long> absent(L"Absent", 9);
    EXPECT_FALSE(absent.Read(source));
    ExpectRefusal(source.GetLastErrorParams(), CONFIG_VALUE_ABSENT, L"Absent");

    VProfile<unsigned char> alpha(L"Alpha", 200);
    EXPECT_TRUE(alpha.Write(sink));
    VProfile<unsigned char> alphaIn(L"Alpha", 0);
    EXPECT_FALSE(alphaIn.Read(source));
    ExpectRefusal(source.GetLastErrorParams(), CONFIG_VALUE_NOT_CONVERTIBLE, L"Alpha");
}

}  // namespace
