// The life of a typed value against real INI-file keys, former names included.
#include <gtest/gtest.h>

#include <typeinfo>

#include "ConfigMessages.h"
#include "IniTestStore.h"
#include "TestValues.h"
#include "VProfile.h"
#include "VProfile2.h"
#include "VProfileKeySource.h"
#include "VProfileSz.h"

namespace {

using VProfileString = VProfile2<VUnicodeString, VProfileSz>;

class TypedValueStateTest : public ::testing::Test {
protected:
    IniTestStore store_;
};

TEST_F(TypedValueStateTest, OnlyEditedOrAcceptedValuesAreWrittenAndOnlyOnce) {
    VProfile<unsigned long> timeout(L"Timeout", 180);
    VProfileString title(L"Title", L"a");
    VProfile<bool> minimize(L"Minimize To Tray", false);
    minimize.Set(true);
    minimize.Revert();
    minimize.Commit();
    EXPECT_FALSE(minimize.IsModified()) << "committing no change marks nothing";
    {
        auto key = store_.OpenKey();
        for (VProfileData* value : std::initializer_list<VProfileData*>{&timeout, &title, &minimize})
            EXPECT_TRUE(value->Save(*key, false));
        EXPECT_FALSE(key->WasWritten());
    }
    EXPECT_EQ(store_.ValuesFile(), "");

    timeout.Set(240);  // edited
    EXPECT_TRUE(timeout.IsChanged() && !timeout.IsModified());
    timeout.Commit();  // accepted
    EXPECT_TRUE(!timeout.IsChanged() && timeout.IsModified() && timeout.GetSaved() == 240u);
    title.Set(L"A");  // edited only; texts compare with case

    auto key = store_.OpenKey();
    EXPECT_TRUE(timeout.Save(*key, false));  // stored
    EXPECT_TRUE(title.Save(*key, false) && key->WasWritten() && !timeout.IsModified());
    key->ClearWritten();
    EXPECT_TRUE(timeout.Save(*key, false));
    EXPECT_FALSE(key->WasWritten()) << "a stored value is written once";
    EXPECT_TRUE(minimize.Save(*key, true));
    EXPECT_TRUE(key->WasWritten()) << "forced";
    key.reset();
    EXPECT_EQ(store_.StoredNumber(L"Timeout"), 240u);
    EXPECT_EQ(store_.StoredText(L"Title"), VUnicodeString(L"A"));
    EXPECT_EQ(store_.StoredNumber(L"Minimize To Tray"), 0u);
}

TEST_F(TypedValueStateTest, CopiesKeepEveryFlagAssignmentKeepsItsOwnModifiedAndCopyFromItsKind) {
    VProfileString source(L"Answerback", L"old");
    source.Set(L"new");
    source.Commit();
    source.SetUserFlag(false);

    const VProfileString copy(source);
    EXPECT_TRUE(copy.IsModified() && !copy.GetUserFlag());

    VProfileString target(L"Other", L"x");
    target = source;
    EXPECT_TRUE(target.GetName() == L"Answerback" && !target.GetUserFlag());
    EXPECT_FALSE(target.IsModified()) << "assignment keeps the target's pending-save state";

    VProfile<int> modifiedTarget(L"Rows", 1);
    modifiedTarget.Set(2);
    modifiedTarget.Commit();
    modifiedTarget = VProfile<int>(L"Cols", 80);
    EXPECT_TRUE(modifiedTarget.IsModified());

    VProfile<unsigned short> port(L"Port", 22);
    VProfile<unsigned short> other(L"Other Port", 2222);
    other.Set(8022);
    port.CopyFrom(other);
    EXPECT_TRUE(port.Get() == 8022 && port.GetSaved() == 22) << "only the current value is copied";

    VProfile<short> differentType(L"Port", 1);
    EXPECT_THROW(port.CopyFrom(differentType), std::bad_cast);
}

TEST_F(TypedValueStateTest, LoadingMakesTheValueUnchangedAndAbsentValuesKeepTheDefault) {
    {
        auto key = store_.OpenKey();
        key->SetDword(L"Timeout", 30);
        key->SetDword(L"Log File", 7);  // another kind reads as absent
    }
    auto key = store_.OpenKey();
    VProfile<unsigned long> timeout(L"Timeout", 180);
    timeout.Set(5);
    timeout.Commit();
    ASSERT_TRUE(timeout.Load(*key));
    EXPECT_TRUE(timeout.Get() == 30u && timeout.GetSaved() == 30u && !timeout.IsModified());

    VProfileString logFile(L"Log File", L"log.txt");
    EXPECT_FALSE(logFile.Load(*key) || logFile.Get() != L"log.txt");
    EXPECT_EQ(key->GetLastErrorParams().GetMessageCode(), static_cast<DWORD>(CONFIG_VALUE_ABSENT));

    VProfile<unsigned long> retries(L"Retries", 1);
    retries.Set(2);
    EXPECT_FALSE(retries.Load(*key, 300));
    EXPECT_TRUE(retries.Get() == 300u && retries.GetSaved() == 300u && !retries.IsModified());
}

TEST_F(TypedValueStateTest, ScalarsAreWidenedOnWritingAndNarrowedOnReading) {
    VProfile<short> offset(L"Offset", -2);
    VProfile<int> position(L"Position", -100);
    VProfile<unsigned char> alpha(L"Alpha", 200);
    VProfile<bool> blink(L"Blink", true);
    {
        auto key = store_.OpenKey();
        for (VProfileData* value :
             std::initializer_list<VProfileData*>{&offset, &position, &alpha, &blink})
            EXPECT_TRUE(value->Save(*key, true));
    }
    EXPECT_TRUE(store_.StoredNumber(L"Offset") == 0xFFFFFFFEu &&
                store_.StoredNumber(L"Position") == static_cast<uint32_t>(-100) &&
                store_.StoredNumber(L"Alpha") == 200u && store_.StoredNumber(L"Blink") == 1u);

    auto key = store_.OpenKey();
    key->SetDword(L"Alpha", 0x1FF);
    key->SetDword(L"Blink", 2);
    VProfile<short> offsetRead(L"Offset");
    VProfile<int> positionRead(L"Position");
    VProfile<unsigned char> alphaRead(L"Alpha");
    VProfile<bool> blinkRead(L"Blink", false);
    ASSERT_TRUE(offsetRead.Load(*key) && positionRead.Load(*key) && alphaRead.Load(*key) &&
                blinkRead.Load(*key));
    EXPECT_TRUE(offsetRead.Get() == -2 && positionRead.Get() == -100 && alphaRead.Get() == 0xFF);
    EXPECT_TRUE(blinkRead.Get()) << "a switch stored as 2 is true";
}

TEST_F(TypedValueStateTest, SetFromTextParsesNumbersAndReadsSwitchesAndTextsFromTheSource) {
    auto key = store_.OpenKey();
    key->SetDword(L"Blink", 1);
    key->SetString(L"Title", L"stored");
    VProfileKeySource source(*key);

    VProfile<unsigned long> color(L"Color", 0, 16);
    color.Set(1);
    color.Commit();
    EXPECT_TRUE(color.SetFromText(source, "ff8000"));
    EXPECT_TRUE(color.Get() == 0xFF8000u && color.GetSaved() == 0xFF8000u && !color.IsModified());

    VProfile<bool> blink(L"Blink", false);
    EXPECT_TRUE(blink.SetFromText(source, "0") && blink.Get()) << "a switch ignores the text";
    VProfile<bool> absentSwitch(L"Absent Switch", true);
    EXPECT_FALSE(absentSwitch.SetFromText(source, "0"));

    VProfileString title(L"Title", L"x");
    EXPECT_TRUE(title.SetFromText(source, "default") && title.Get() == L"stored");
    VProfileString absent(L"Absent", L"x");
    EXPECT_TRUE(absent.SetFromText(source, "default") && absent.GetSaved() == L"default");
    VProfileKey missingKey(*key, L"No Such Key", false);
    VProfileKeySource failing(missingKey);
    VProfileString unreadable(L"Title", L"x");
    EXPECT_FALSE(unreadable.SetFromText(failing, "default"))
        << "only an absent value takes the default";
    EXPECT_EQ(failing.GetLastErrorParams().GetMessageCode(),
              static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
    EXPECT_EQ(unreadable.Get(), L"x");
}

TEST_F(TypedValueStateTest, ANumberUnderItsFormerNameMovesAtTheNextSaveThePresentNameWins) {
    store_.OpenKey()->SetDword(L"Enable 80/132 Column Switching", 1);
    VProfile<bool> switching(L"Enable 80-132 Column Switching", false);
    ASSERT_TRUE(
        switching.LoadWithFormerName(*store_.OpenKey(), L"Enable 80/132 Column Switching", false));
    EXPECT_TRUE(switching.Get() && switching.IsModified()) << "to be saved under its new name";

    EXPECT_FALSE(switching.Save(*store_.OpenKey(true), false));
    EXPECT_TRUE(switching.IsModified()) << "a failed write loses nothing: it is tried again";
    EXPECT_TRUE(switching.Save(*store_.OpenKey(), false) && !switching.IsModified());
    EXPECT_TRUE(store_.StoredNumber(L"Enable 80-132 Column Switching") == 1u &&
                !store_.StoredNumber(L"Enable 80/132 Column Switching"));

    {
        auto key = store_.OpenKey();
        key->SetDword(L"Keep Alive", 30);
        key->SetDword(L"Old Keep Alive", 60);
    }
    auto key = store_.OpenKey();
    VProfile<unsigned long> keepAlive(L"Keep Alive", 0);
    EXPECT_TRUE(keepAlive.LoadWithFormerName(*key, L"Old Keep Alive", 5) &&
                keepAlive.Get() == 30u && !keepAlive.IsModified());
    key->ClearWritten();
    EXPECT_TRUE(keepAlive.Save(*key, false));
    EXPECT_FALSE(key->WasWritten()) << "nothing to move";

    VProfile<unsigned long> retries(L"Retry Attempts", 1);
    retries.Set(3);
    EXPECT_FALSE(retries.LoadWithFormerName(*key, L"Old Retry Attempts", 20));
    EXPECT_TRUE(retries.Get() == 20u && retries.GetSaved() == 20u && !retries.IsModified());
}

TEST_F(TypedValueStateTest, ATextFoundUnderItsFormerNameIsBlankedThereAtTheNextSave) {
    store_.OpenKey()->SetString(L"Local Shell Command Pre-connect", L"net use x:");

    VProfileString command(L"Local Shell Command Pre-connect V2");
    {
        auto key = store_.OpenKey();
        ASSERT_TRUE(command.LoadWithFormerName(*key, L"Local Shell Command Pre-connect", L"") &&
                    command.Get() == L"net use x:");
        EXPECT_TRUE(command.Save(*key, false));
    }
    EXPECT_TRUE(store_.StoredText(L"Local Shell Command Pre-connect V2") == L"net use x:" &&
                store_.StoredText(L"Local Shell Command Pre-connect") == VUnicodeString())
        << "moved, and blanked as older versions expect";

    auto key = store_.OpenKey();
    EXPECT_TRUE(key->DeleteValue(L"Local Shell Command Pre-connect V2"));
    VProfileString again(L"Local Shell Command Pre-connect V2");
    EXPECT_FALSE(again.LoadWithFormerName(*key, L"Local Shell Command Pre-connect", L"default"));
    EXPECT_TRUE(again.Get() == L"default" && !again.IsModified()) << "a blank is no value";
}

TEST_F(TypedValueStateTest, OnlyAKeyThatHoldsTheFormerNameLosesIt) {
    VProfile<unsigned long> number(L"New Number", 0);
    VProfileString text(L"New Text");
    {
        auto key = store_.OpenKey();
        key->SetDword(L"Old Number", 7);
        key->SetString(L"Old Text", L"seven");
        ASSERT_TRUE(number.LoadWithFormerName(*key, L"Old Number", 0) &&
                    text.LoadWithFormerName(*key, L"Old Text", L""));
    }
    VProfile<unsigned long> numberCopy(number);
    VProfileString textCopy(text);
    for (const wchar_t* subkey : {L"Copy", L"Original"}) {
        SCOPED_TRACE(testing::PrintToString(std::wstring(subkey)));
        const bool copy = subkey[0] == L'C';
        {
            auto key = store_.OpenKey();
            VProfileKey other(*key, subkey, true);
            EXPECT_TRUE((copy ? numberCopy : number).Save(other, false))
                << other.GetLastErrorParams().GetMessageCode();
            EXPECT_TRUE((copy ? textCopy : text).Save(other, false));
        }
        VProfileKey other(*store_.OpenKey(), subkey, false);
        EXPECT_EQ(ReadAllValues(*other.GetPrivateKey()),
                  (TestValues{{L"New Number", D(7)}, {L"New Text", S(L"seven")}}))
            << "nothing under the former names";
    }
}

}  // namespace
