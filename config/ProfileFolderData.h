// ProfileFolderData: what the session tree shows of one folder below
// "Sessions" (the "Sessions" key itself included): whether the folder is
// open, and the order of its child folders and sessions. It is kept in the
// folder's reserved subkey "__FolderData__" (a key, so that the folder
// itself holds no values: in the INI files a key with a values file reads as
// a session), as the values "Is Expanded", "Folder List" and "Session List".
//
// The lists only order what the folder holds. Loading checks them against
// the folder's subkeys: a child is a session when its "Is Session" is set,
// else a folder; listed names that are gone are dropped, children found in
// the wrong list move to the right one, and children not listed (a damaged
// or missing folder data) are added after the listed ones, by name. So a
// damaged value loses the order and nothing else.
//
// Used by one thread at a time.
#pragma once

#include "ProfileValueList.h"
#include "SessionValueKinds.h"

class ProfileFolderData : public ProfileValueList {
public:
    static constexpr wchar_t ValueName[] = L"__FolderData__";

    ProfileFolderData();

    // Reads the folder data of folderKey and checks it against the folder's
    // children as above. A folder data value the key lacks, or holds as
    // another kind, takes its default; a folder key that is not open holds
    // no children.
    void Load(VProfileKey& folderKey);
    // Writes the values that changed (all with force) into folderKey's
    // "__FolderData__", creating it, and flushes. False, with the reason in
    // folderKey's record, when that fails.
    bool Save(VProfileKey& folderKey, bool force) override;

    bool Equals(const ProfileFolderData& other) const;

    size_t GetMemberCount() const override { return 3; }
    VProfileData& GetMember(size_t index) override;
    using ProfileValueList::GetMember;

    SessionKind::Flag IsExpanded{L"Is Expanded", true};  // chosen: a folder opens expanded
    SessionKind::TextList FolderList{L"Folder List"};
    SessionKind::TextList SessionList{L"Session List"};
};
