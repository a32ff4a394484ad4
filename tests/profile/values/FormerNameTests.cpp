// Options renamed between versions: read under the former name, moved at the next save.
#include <gtest/gtest.h>

#include "IniTestStore.h"
#include "VProfile.h"
#include "VProfile2.h"
#include "VProfileSz.h"

namespace {

using VProfileString = VProfile2<VUnicodeString, VProfileSz>;

class FormerNameTest : public ::testing::Test {
protected:
    IniTestStore store_;
};

TEST_F(FormerNameTest, ANumberFoundUnderItsFormerNameMovesAtTheNextSaveThatSucceeds) {
    store_.OpenKey()->SetDword(L"Enable 80/132 Column Switching", 1);
    VProfile<bool> switching(L"Enable 80-132 Column Switching", false);
    ASSERT_TRUE(
        switching.LoadWithFormerName(*store_.OpenKey(), L"Enable 80/132 Column Switching", false));
    EXPECT_TRUE(switching.Get() && switching.IsModified()) << "the next save writes the present name";

    EXPECT_FALSE(switching.Save(*store_.OpenKey(true), false));
    EXPECT_TRUE(switching.IsModified()) << "a failed move is tried again";
    EXPECT_TRUE(switching.Save(*store_.OpenKey(), false));
    EXPECT_FALSE(switching.IsModified());
    EXPECT_TRUE(store_.StoredNumber(L"Enable 80-132 Column Switching") == 1u &&
                !store_.StoredNumber(L"Enable 80/132 Column Switching"));
}

TEST_F(FormerNameTest, ThePresentNameWinsAndNeitherGivesTheDefault) {
    {
        auto key = store_.OpenKey();
        key->SetDword(L"Keep Alive", 30);
        key->SetDword(L"Old Keep Alive", 60);
    }
    auto key = store_.OpenKey();
    VProfile<unsigned long> keepAlive(L"Keep Alive", 0);
    EXPECT_TRUE(keepAlive.LoadWithFormerName(*key, L"Old Keep Alive", 5));
    EXPECT_TRUE(keepAlive.Get() == 30u && !keepAlive.IsModified());
    key->ClearWritten();
    EXPECT_TRUE(keepAlive.Save(*key, false));
    EXPECT_FALSE(key->WasWritten()) << "nothing to move";

    VProfile<unsigned long> retries(L"Retry Attempts", 1);
    retries.Set(3);
    EXPECT_FALSE(retries.LoadWithFormerName(*key, L"Old Retry Attempts", 20));
    EXPECT_TRUE(retries.Get() == 20u && retries.GetSaved() == 20u && !retries.IsModified());
}

TEST_F(FormerNameTest, ATextFoundUnderItsFormerNameIsBlankedThereAtTheNextSave) {
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

// A copy, or the value saved into another key, must not touch the former name there.
TEST_F(FormerNameTest, OnlyAKeyThatHoldsTheFormerNameLosesIt) {
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
            EXPECT_TRUE((copy ? numberCopy : number).Save(other, false)) << other.GetLastErrorParams().GetMessageCode();
            EXPECT_TRUE((copy ? textCopy : text).Save(other, false));
        }
        auto key = store_.OpenKey();
        VProfileKey other(*key, subkey, false);
        uint32_t stored = 0;
        VUnicodeString storedText;
        EXPECT_TRUE(other.GetDword(L"New Number", stored) && stored == 7u);
        EXPECT_TRUE(other.GetString(L"New Text", storedText) && storedText == L"seven");
        VProfileKeyIterator values(other, true);
        size_t count = 0;
        while (values.Next(storedText)) ++count;
        EXPECT_EQ(count, 2u) << "nothing under the former names";
    }
}

}  // namespace
