// A tree of folders and sessions below "Sessions", written, read back and damaged.
#include <gtest/gtest.h>

#include "ProfileFolderData.h"
#include "SessionConfig.h"
#include "SessionStore.h"

namespace {

class SessionTree : public SessionStore {
protected:
    void ExpectFolder(const wchar_t* path, bool expanded, const VStringArray& folders,
                      const VStringArray& sessions) {
        ProfileFolderData data;
        data.Load(Key(path, true));
        EXPECT_TRUE(data.IsExpanded.Get() == expanded && data.FolderList.Get() == folders &&
                    data.SessionList.Get() == sessions)
            << path;
    }
};

// A damaged folder record loses its order but no folder or session.
TEST_P(SessionTree, FoldersReadBackInTheirOrderAndADamagedRecordLosesOnlyItsOrder) {
    for (const wchar_t* path :
         {L"Linux\\web", L"Linux\\db", L"Linux\\Old\\legacy", L"router", L"Default"}) {
        SessionConfig session(nullptr, path);
        session.GetRemoteHostConfig().SetHostname(path);
        ASSERT_TRUE(session.Save(*SessionConfig::OpenKey(Open()->GetRootKey(), path, true), false));
    }
    Key(L"Sessions\\Windows");
    for (const bool root : {true, false}) {
        ProfileFolderData data;
        data.IsExpanded.Set(!root);
        data.FolderList.Set(root ? VStringArray{L"Windows", L"Linux"} : VStringArray{L"Old"});
        data.SessionList.Set(root ? VStringArray{L"router", L"Default"}
                                  : VStringArray{L"web", L"db"});
        ASSERT_TRUE(data.Save(Key(root ? L"Sessions" : L"Sessions\\Linux"), false));
    }
    ExpectFolder(L"Sessions", false, {L"Windows", L"Linux"}, {L"router", L"Default"});
    ExpectFolder(L"Sessions\\Linux", true, {L"Old"}, {L"web", L"db"});
    ExpectFolder(L"Sessions\\Linux\\Old", true, {}, {L"legacy"});
    ExpectFolder(L"Sessions\\Windows", true, {}, {});

    VProfileKey& data = Key(L"Sessions\\__FolderData__");
    data.SetString(L"Session List", L"router");  // a text where a list belongs
    data.SetMultiString(L"Folder List", {L"Gone", L"router", L"Linux"});
    Key(L"Sessions\\Linux\\__FolderData__").SetDword(L"Folder List", 3);
    ExpectFolder(L"Sessions", false, {L"Linux", L"Windows"}, {L"router", L"Default"});
    ExpectFolder(L"Sessions\\Linux", true, {L"Old"}, {L"web", L"db"});
    ProfileFolderData root;
    root.Load(Key(L"Sessions", true));
    EXPECT_TRUE(root.IsChanged()) << "the next save writes the lists mended";
    ASSERT_TRUE(root.Save(Key(L"Sessions"), false));
    VStringArray sessions;
    EXPECT_TRUE(Key(L"Sessions\\__FolderData__", true).GetMultiString(L"Session List", sessions));
    EXPECT_EQ(sessions, (VStringArray{L"router", L"Default"}));
}

INSTANTIATE_TEST_SUITE_P(BackEnds, SessionTree,
                         ::testing::Values(RegistryBackEnd(), IniFileBackEnd()), BackEndName);

}  // namespace
