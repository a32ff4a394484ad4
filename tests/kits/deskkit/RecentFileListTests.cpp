// The recent-session lists against a real INI-file store, written to the way
// a client program writes to it while Traywell runs.

#include <gtest/gtest.h>

#include <optional>
#include <stdexcept>
#include <vector>

#include "CommonUi.h"
#include "TempFolder.h"
#include "VIniFileStoreFactory.h"
#include "VProfileStore.h"
#include "VRecentFileList.h"

namespace {

constexpr wchar_t Section[] = L"Recent File List Termwright";

VProfileStoreFactory* g_factory = nullptr;
VProfileStoreFactory* TestFactory() { return g_factory; }

class RecentFileListTest : public testing::Test {
protected:
    RecentFileListTest() : factory_(folder_.Path(), VUnicodeString()) {
        g_factory = &factory_;
        CommonUiInit(nullptr, TestFactory);
    }
    ~RecentFileListTest() override {
        CommonUiInit(nullptr, nullptr);
        g_factory = nullptr;
    }

    // What a client program stores: entry value name to text (none: removed).
    void Store(std::initializer_list<std::pair<const wchar_t*, std::optional<const wchar_t*>>> values) {
        VProfileStore store(&factory_);
        VProfileKey key(store.GetRootKey(), Section, true);
        for (const auto& [name, text] : values) text ? key.SetString(name, *text) : key.DeleteValue(name);
    }

    // Every stored entry value from File0 to File9, empty where there is none.
    std::vector<VUnicodeString> Stored() {
        VProfileStore store(&factory_);
        VProfileKey key(store.GetRootKey(), Section, false);
        std::vector<VUnicodeString> texts;
        for (int index = 0; index < 10; ++index) {
            VUnicodeString name, text;
            name.FormatPositional(L"File%1!d!", index);
            key.GetString(name, text);
            texts.push_back(text);
        }
        return texts;
    }

    static std::vector<VUnicodeString> Entries(const VRecentFileList& list) {
        std::vector<VUnicodeString> entries;
        for (size_t index = 0; index < list.GetCount(); ++index) entries.push_back(list.GetEntry(index));
        return entries;
    }

    TempFolder folder_;
    VIniFileStoreFactory factory_;
};

using Texts = std::vector<VUnicodeString>;

}  // namespace

TEST_F(RecentFileListTest, ReadsDenselyWithoutRepeatsAndSeesLaterEntriesOnReload) {
    VRecentFileList list(0, Section, L"File%1!d!", 9, 30);
    EXPECT_EQ(list.GetCount(), 0u) << "no key yet is an empty list";
    EXPECT_EQ(list.GetLastErrorParams().GetMessageCode(), 0u);

    Store({{L"File0", L"web"}, {L"File1", L""}, {L"File2", L"R&D"}, {L"File3", L"WEB"}, {L"File5", L"db"},
           {L"File9", L"beyond the size"}});
    EXPECT_EQ(list.GetCount(), 0u) << "read only on Reload";
    ASSERT_TRUE(list.Reload());
    EXPECT_EQ(Entries(list), (Texts{L"web", L"R&D", L"db"}));
    EXPECT_EQ(list.GetEntry(8), L"");
    EXPECT_THROW(list.GetEntry(9), std::invalid_argument);
    EXPECT_THROW(list.AddToMostRecent(9), std::invalid_argument);

    VRecentFileList numberedFromOne(1, Section, L"File%1!d!", 2, 30);
    EXPECT_EQ(Entries(numberedFromOne), (Texts{L"R&D"}));
}

TEST_F(RecentFileListTest, MovingToTheTopRewritesTheStoredList) {
    Store({{L"File0", L"web"}, {L"File1", L"R&D"}, {L"File3", L"db"}, {L"File4", L"web"}});
    VRecentFileList list(0, Section, L"File%1!d!", 9, 30);
    ASSERT_TRUE(list.AddToMostRecent(2));
    const Texts expected{L"db", L"web", L"R&D"};
    EXPECT_EQ(Entries(list), expected);
    EXPECT_EQ(Stored(), (Texts{L"db", L"web", L"R&D", L"", L"", L"", L"", L"", L"", L""}));

    ASSERT_TRUE(list.AddToMostRecent(5)) << "an empty entry changes nothing";
    EXPECT_EQ(Entries(list), expected);
}

TEST_F(RecentFileListTest, AddingReadsWhatClientsStoredMeanwhileAndKeepsTheSize) {
    VRecentFileList list(0, Section, L"File%1!d!", 3, 30);
    ASSERT_TRUE(list.Add(L"a"));
    Store({{L"File0", L"b"}, {L"File1", L"a"}});  // a client opened "b" meanwhile
    ASSERT_TRUE(list.Add(L"c"));
    EXPECT_EQ(Entries(list), (Texts{L"c", L"b", L"a"}));
    ASSERT_TRUE(list.Add(L"d"));
    EXPECT_EQ(Entries(list), (Texts{L"d", L"c", L"b"}));
    EXPECT_EQ(Stored(), (Texts{L"d", L"c", L"b", L"", L"", L"", L"", L"", L"", L""}));
}

TEST_F(RecentFileListTest, DisplayNamesAreCutToTheirLength) {
    Store({{L"File0", L"short"}, {L"File1", L"exactly10!"}, {L"File2", L"longer than ten"}});
    const struct {
        int maxDisplayLength;
        Texts shown;
    } cases[] = {
        {10, {L"short", L"exactly10!", L"longer ..."}},
        {2, {L"sh", L"ex", L"lo"}},
        {0, {L"short", L"exactly10!", L"longer than ten"}},
    };
    for (const auto& test : cases) {
        VRecentFileList list(0, Section, L"File%1!d!", 9, test.maxDisplayLength);
        Texts shown;
        for (size_t index = 0; index < list.GetCount(); ++index) shown.push_back(list.GetDisplayName(index));
        EXPECT_EQ(shown, test.shown) << test.maxDisplayLength;
    }
}
