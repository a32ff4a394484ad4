// Options renamed between versions: the value is read under its present name,
// else under its former one, and the next save moves it to the present name
// and blanks the former one. Against real INI-file keys.
#include <gtest/gtest.h>

#include "IniTestStore.h"
#include "VProfile.h"
#include "VProfile2.h"
#include "VProfileSz.h"
#include "VTabStateList.h"

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
    EXPECT_TRUE(switching.Get());
    EXPECT_TRUE(switching.IsModified()) << "so that the next save writes the present name";

    EXPECT_FALSE(switching.Save(*store_.OpenKey(true), false));
    EXPECT_TRUE(switching.IsModified()) << "a failed move is tried again";
    EXPECT_TRUE(switching.Save(*store_.OpenKey(), false));
    EXPECT_FALSE(switching.IsModified());
    EXPECT_EQ(store_.StoredNumber(L"Enable 80-132 Column Switching"), 1u);
    EXPECT_EQ(store_.StoredNumber(L"Enable 80/132 Column Switching"), std::nullopt)
        << "the former value is gone";
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
    EXPECT_EQ(keepAlive.Get(), 30u);
    EXPECT_FALSE(keepAlive.IsModified());
    key->ClearWritten();
    EXPECT_TRUE(keepAlive.Save(*key, false));
    EXPECT_FALSE(key->WasWritten()) << "nothing to move";

    VProfile<unsigned long> retries(L"Retry Attempts", 1);
    retries.Set(3);
    EXPECT_FALSE(retries.LoadWithFormerName(*key, L"Old Retry Attempts", 20));
    EXPECT_EQ(retries.Get(), 20u);
    EXPECT_EQ(retries.GetSaved(), 20u);
    EXPECT_FALSE(retries.IsModified());
}

TEST_F(FormerNameTest, ATextFoundUnderItsFormerNameIsBlankedThereAtTheNextSave) {
    store_.OpenKey()->SetString(L"Local Shell Command Pre-connect", L"net use x:");

    VProfileString command(L"Local Shell Command Pre-connect V2");
    {
        auto key = store_.OpenKey();
        ASSERT_TRUE(command.LoadWithFormerName(*key, L"Local Shell Command Pre-connect", L""));
        EXPECT_EQ(command.Get(), L"net use x:");
        EXPECT_TRUE(command.Save(*key, false));
    }
    EXPECT_EQ(store_.StoredText(L"Local Shell Command Pre-connect V2"),
              VUnicodeString(L"net use x:"));
    EXPECT_EQ(store_.StoredText(L"Local Shell Command Pre-connect"), VUnicodeString())
        << "blanked, as older versions expect";

    // The blank former value no longer counts: with the present value gone,
    // the default is taken rather than the blank.
    auto key = store_.OpenKey();
    EXPECT_TRUE(key->DeleteValue(L"Local Shell Command Pre-connect V2"));
    VProfileString again(L"Local Shell Command Pre-connect V2");
    EXPECT_FALSE(again.LoadWithFormerName(*key, L"Local Shell Command Pre-connect", L"default"));
    EXPECT_EQ(again.Get(), L"default");
    EXPECT_FALSE(again.IsModified());
}

// The former name is blanked (or, for a number, removed) only where it is
// stored: a copy of the value, or the value saved into another key (a
// session saved under a new name), must not write or fail on it there.
TEST_F(FormerNameTest, OnlyAKeyThatHoldsTheFormerNameLosesIt) {
    {
        auto key = store_.OpenKey();
        key->SetDword(L"Old Number", 7);
        key->SetString(L"Old Text", L"seven");
    }
    VProfile<unsigned long> number(L"New Number", 0);
    VProfileString text(L"New Text");
    {
        auto key = store_.OpenKey();
        ASSERT_TRUE(number.LoadWithFormerName(*key, L"Old Number", 0));
        ASSERT_TRUE(text.LoadWithFormerName(*key, L"Old Text", L""));
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
        EXPECT_TRUE(other.GetDword(L"New Number", stored));
        EXPECT_EQ(stored, 7u);
        EXPECT_TRUE(other.GetString(L"New Text", storedText));
        EXPECT_EQ(storedText, L"seven");
        VProfileKeyIterator values(other, true);
        size_t count = 0;
        while (values.Next(storedText)) ++count;
        EXPECT_EQ(count, 2u) << "nothing under the former names";
    }
}

TEST_F(FormerNameTest, TheOlderTabStateIsConvertedIntoTheNewerForm) {
    store_.OpenKey()->SetString(L"Termwright Tab State", L"1,-1,200");

    VTabStateList defaults;
    ASSERT_TRUE(VTabStateList::Parse(L"1,1,0;", defaults));
    VProfileTabStateList tabs(L"Termwright Tab State V2", defaults);
    {
        auto key = store_.OpenKey();
        ASSERT_TRUE(tabs.LoadWithFormerName(*key, L"Termwright Tab State", defaults));
        ASSERT_EQ(tabs.Get().groups.GetCount(), 1u);
        EXPECT_EQ(tabs.Get().groups[0].size, 200);
        EXPECT_TRUE(tabs.Save(*key, false));
    }
    EXPECT_EQ(store_.StoredText(L"Termwright Tab State V2"), VUnicodeString(L"1,-1,200;"));
    EXPECT_EQ(store_.StoredText(L"Termwright Tab State"), VUnicodeString());
}

}  // namespace
