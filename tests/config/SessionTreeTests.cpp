// A tree of folders and sessions below "Sessions", with its folder data,
// written and read back against both back ends, and damaged.
#include <gtest/gtest.h>

#include "ProfileFolderData.h"
#include "SessionConfig.h"
#include "SessionStore.h"

namespace {

class SessionTree : public SessionStore {
protected:
    // Sessions\Linux\web, \db and \Old\legacy; Sessions\router and \Default;
    // the folders Windows (empty) and Linux\Old.
    void SetUp() override {
        SessionStore::SetUp();
        for (const wchar_t* path :
             {L"Linux\\web", L"Linux\\db", L"Linux\\Old\\legacy", L"router", L"Default"}) {
            SessionConfig session(nullptr, path);
            session.GetRemoteHostConfig().SetHostname(path);
            ASSERT_TRUE(
                session.Save(*SessionConfig::OpenKey(Open()->GetRootKey(), path, true), false));
        }
        Key(L"Sessions\\Windows");
        WriteFolder(L"Sessions", false, {L"Windows", L"Linux"}, {L"router", L"Default"});
        WriteFolder(L"Sessions\\Linux", true, {L"Old"}, {L"web", L"db"});
    }

    void WriteFolder(const wchar_t* path, bool expanded, const VStringArray& folders,
                     const VStringArray& sessions) {
        ProfileFolderData data;
        data.IsExpanded.Set(expanded);
        data.FolderList.Set(folders);
        data.SessionList.Set(sessions);
        ASSERT_TRUE(data.Save(Key(path), false));
    }

    ProfileFolderData Read(const wchar_t* path) {
        ProfileFolderData data;
        data.Load(Key(path, true));
        return data;
    }

    void ExpectFolder(const wchar_t* path, bool expanded, const VStringArray& folders,
                      const VStringArray& sessions) {
        const ProfileFolderData data = Read(path);
        EXPECT_EQ(data.IsExpanded.Get(), expanded) << VString(VUnicodeString(path)).c_str();
        EXPECT_EQ(data.FolderList.Get(), folders) << VString(VUnicodeString(path)).c_str();
        EXPECT_EQ(data.SessionList.Get(), sessions) << VString(VUnicodeString(path)).c_str();
    }
};

TEST_P(SessionTree, FoldersReadBackInTheirOrderAndSessionsAsSaved) {
    ExpectFolder(L"Sessions", false, {L"Windows", L"Linux"}, {L"router", L"Default"});
    ExpectFolder(L"Sessions\\Linux", true, {L"Old"}, {L"web", L"db"});
    ExpectFolder(L"Sessions\\Linux\\Old", true, {}, {L"legacy"});
    ExpectFolder(L"Sessions\\Windows", true, {}, {});
    const auto store = Open(true);
    const SessionConfig legacy(
        SessionConfig::OpenKey(store->GetRootKey(), L"Linux\\Old\\legacy", false).get(),
        L"Linux\\Old\\legacy");
    EXPECT_TRUE(legacy.IsMarkedAsSession());
    EXPECT_EQ(legacy.GetRemoteHostConfig().GetHostname(), L"Linux\\Old\\legacy");
}

TEST_P(SessionTree, ADamagedFolderDataLosesItsOrderButNoFolderOrSession) {
    VProfileKey& data = Key(L"Sessions\\__FolderData__");
    data.SetString(L"Session List", L"router");  // a text where a list belongs
    data.SetMultiString(L"Folder List", {L"Gone", L"router", L"Linux"});
    Key(L"Sessions\\Linux\\__FolderData__").SetDword(L"Folder List", 3);
    ExpectFolder(L"Sessions", false, {L"Linux", L"Windows"}, {L"router", L"Default"});
    ExpectFolder(L"Sessions\\Linux", true, {L"Old"}, {L"web", L"db"});
    ProfileFolderData root = Read(L"Sessions");
    EXPECT_TRUE(root.IsChanged()) << "the next save writes the lists mended";
    ASSERT_TRUE(root.Save(Key(L"Sessions"), false));
    VStringArray sessions;
    EXPECT_TRUE(Key(L"Sessions\\__FolderData__", true).GetMultiString(L"Session List", sessions));
    EXPECT_EQ(sessions, (VStringArray{L"router", L"Default"}));
}

INSTANTIATE_TEST_SUITE_P(BackEnds, SessionTree,
                         ::testing::Values(RegistryBackEnd(), IniFileBackEnd()), BackEndName);

}  // namespace
