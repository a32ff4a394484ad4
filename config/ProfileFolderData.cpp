#include "ProfileFolderData.h"

#include <algorithm>
#include <iterator>
#include <vector>

#include "SessionConfig.h"

namespace {

struct Child {
    VUnicodeString name;
    bool isSession;
    bool placed = false;
};

// The children of folderKey, sorted by name without regard to case.
std::vector<Child> ListChildren(VProfileKey& folderKey) {
    std::vector<Child> children;
    VProfileKeyIterator iterator(folderKey, false);
    VUnicodeString name;
    while (iterator.Next(name)) {
        if (name == ProfileFolderData::ValueName) continue;
        VProfileKey child(folderKey, name, false);
        uint32_t isSession = 0;
        const bool marked =
            child.GetDword(SessionConfig::IsSessionName, isSession) && isSession != 0;
        children.push_back({name, marked});
    }
    std::sort(children.begin(), children.end(),
              [](const Child& a, const Child& b) { return a.name.CompareNoCase(b.name) < 0; });
    return children;
}

// The names of the children of one kind: those listed, in the order of the
// two lists (the own list first), then the others.
VStringArray Ordered(std::vector<Child>& children, bool sessions, const VStringArray& own,
                     const VStringArray& other) {
    VStringArray ordered;
    const auto take = [&](const VUnicodeString& name) {
        for (Child& child : children) {
            if (child.placed || child.isSession != sessions || !child.name.EqualsNoCase(name))
                continue;
            child.placed = true;
            ordered.Add(child.name);
        }
    };
    for (const VUnicodeString& name : own) take(name);
    for (const VUnicodeString& name : other) take(name);
    for (const Child& child : children) take(child.name);
    return ordered;
}

}  // namespace

ProfileFolderData::ProfileFolderData() : ProfileValueList(ValueName) {}

void ProfileFolderData::Load(VProfileKey& folderKey) {
    const ProfileFolderData defaults;
    {
        VProfileKey dataKey(folderKey, ValueName, false);
        IsExpanded.Load(dataKey, defaults.IsExpanded.Get());
        FolderList.Load(dataKey, defaults.FolderList.Get());
        SessionList.Load(dataKey, defaults.SessionList.Get());
    }
    std::vector<Child> children = ListChildren(folderKey);
    const VStringArray folders = FolderList.Get();
    const VStringArray sessions = SessionList.Get();
    FolderList.Set(Ordered(children, false, folders, sessions));
    SessionList.Set(Ordered(children, true, sessions, folders));
}

bool ProfileFolderData::Save(VProfileKey& folderKey, bool force) {
    if (!force && !IsChanged() && !IsModified()) return true;
    VProfileKey dataKey(folderKey, ValueName, true);
    if (!dataKey.IsOpen()) {
        folderKey.GetLastErrorParams() = dataKey.GetLastErrorParams();
        return false;
    }
    bool saved = ProfileValueList::Save(dataKey, force);
    if (dataKey.WasWritten() && !dataKey.Flush()) saved = false;
    if (!saved) folderKey.GetLastErrorParams() = dataKey.GetLastErrorParams();
    return saved;
}

bool ProfileFolderData::Equals(const ProfileFolderData& other) const {
    return SameTableValue(IsExpanded, other.IsExpanded) &&
           SameTableValue(FolderList, other.FolderList) &&
           SameTableValue(SessionList, other.SessionList);
}

VProfileData& ProfileFolderData::GetMember(size_t index) {
    VProfileData* const members[] = {&IsExpanded, &FolderList, &SessionList};
    if (index >= std::size(members)) throw VContainerOutOfRange();
    return *members[index];
}
