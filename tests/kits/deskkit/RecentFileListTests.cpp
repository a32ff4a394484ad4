// The recent-session lists on a real INI-file store that a client writes to meanwhile.

#include <gtest/gtest.h>

#include <stdexcept>
#include <vector>

#include "CommonUi.h"
#include "TempFolder.h"
#include "VIniFileStoreFactory.h"
#include "VProfileStore.h"
#include "VRecentFileList.h"

namespace {

constexpr wchar_t Section[] = L"Recent File List Termwright";
using Texts = std::vector<VUnicodeString>;

VProfileStoreFactory* g_factory = nullptr;
VProfileStoreFactory* TestFactory() { return g_factory; }

class RecentFileListTest : public testing::Test {
protected:
    RecentFileListTest() : factory_(folder_.Path(), VUnicodeString()) {
        g_factory = &factory_;
        CommonUiInit(nullptr, TestFactory);
    }
    ~RecentFileListTest() override { CommonUiInit(nullptr, nullptr); }

    // What a client program stores in File0, File1, ... (null: no value).
    void Store(std::initializer_list<const wchar_t*> texts) {
        VProfileStore store(&factory_);
        VProfileKey key(store.GetRootKey(), Section, true);
        int index = 0;
        for (const wchar_t* text : texts)
            text ? key.SetString(Name(index++), text) : key.DeleteValue(Name(index++));
    }

    Texts Stored() {
        VProfileStore store(&factory_);
        VProfileKey key(store.GetRootKey(), Section, false);
        Texts texts(10);
        for (int index = 0; index < 10; ++index) key.GetString(Name(index), texts[size_t(index)]);
        while (!texts.empty() && texts.back().IsEmpty()) texts.pop_back();
        return texts;
    }

    static VUnicodeString Name(int index) { return (L"File" + std::to_wstring(index)).c_str(); }

    TempFolder folder_;
    VIniFileStoreFactory factory_;
};

Texts Entries(const VRecentFileList& list,
              VUnicodeString (VRecentFileList::*get)(size_t) const = &VRecentFileList::GetEntry) {
    Texts entries;
    for (size_t index = 0; index < list.GetCount(); ++index) entries.push_back((list.*get)(index));
    return entries;
}

}  // namespace

TEST_F(RecentFileListTest, ReadsDenselyWithoutRepeatsAndCutsDisplayNames) {
    VRecentFileList list(0, Section, L"File%1!d!", 9, 30);
    EXPECT_EQ(list.GetCount(), 0u) << "no key yet is an empty list";
    Store({L"web", L"", L"R&D", L"WEB", nullptr, L"db", L"", L"", L"", L"beyond the size"});
    EXPECT_EQ(list.GetCount(), 0u) << "read only on Reload";
    ASSERT_TRUE(list.Reload());
    EXPECT_EQ(Entries(list), (Texts{L"web", L"R&D", L"db"}));
    EXPECT_EQ(list.GetEntry(8), L"");
    EXPECT_THROW(list.GetEntry(9), std::invalid_argument);
    EXPECT_THROW(list.AddToMostRecent(9), std::invalid_argument);
    EXPECT_EQ(Entries(VRecentFileList(1, Section, L"File%1!d!", 2, 30)), (Texts{L"R&D"}))
        << "numbered from 1";

    Store({L"short", L"exactly10!", L"longer than ten"});
    const struct {
        int maxDisplayLength;
        Texts shown;
    } cases[] = {
        {10, {L"short", L"exactly10!", L"longer ..."}},
        {2, {L"sh", L"ex", L"lo"}},
        {0, {L"short", L"exactly10!", L"longer than ten"}},
    };
    for (const auto& test : cases)
        EXPECT_EQ(Entries(VRecentFileList(0, Section, L"File%1!d!", 3, test.maxDisplayLength),
                          &VRecentFileList::GetDisplayName),
                  test.shown);
}

TEST_F(RecentFileListTest, MovingToTheTopReadsWhatClientsStoredMeanwhileAndKeepsTheSize) {
    Store({L"web", L"db", L"WEB"});
    VRecentFileList list(0, Section, L"File%1!d!", 3, 30);
    ASSERT_TRUE(list.AddToMostRecent(1));
    EXPECT_EQ(Entries(list), (Texts{L"db", L"web"}));
    EXPECT_EQ(Stored(), (Texts{L"db", L"web"})) << "the repeat in File2 is gone";
    Store({L"new", L"db", L"web"});  // a client opened "new" meanwhile
    ASSERT_TRUE(list.AddToMostRecent(1));
    EXPECT_EQ(Stored(), (Texts{L"web", L"new", L"db"}));
    ASSERT_TRUE(list.Add(L"more"));
    EXPECT_EQ(Stored(), (Texts{L"more", L"web", L"new"}));
    EXPECT_EQ(Entries(list), Stored());
}
