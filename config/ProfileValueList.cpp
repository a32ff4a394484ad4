#include "ProfileValueList.h"

#include <typeinfo>

bool ProfileValueList::SetFromText(IProfileDataSource& source, const char*) {
    return ExchangeNotSupported(source.GetLastErrorParams());
}

bool ProfileValueList::Save(VProfileKey& key, bool force) {
    bool saved = true;
    for (size_t i = 0; i < GetMemberCount(); ++i) saved = GetMember(i).Save(key, force) && saved;
    return saved;
}

bool ProfileValueList::IsChanged() const {
    for (size_t i = 0; i < GetMemberCount(); ++i)
        if (GetMember(i).IsChanged()) return true;
    return false;
}

void ProfileValueList::Commit() {
    for (size_t i = 0; i < GetMemberCount(); ++i) GetMember(i).Commit();
}

void ProfileValueList::Revert() {
    for (size_t i = 0; i < GetMemberCount(); ++i) GetMember(i).Revert();
}

void ProfileValueList::CopyFrom(const VProfileData& other) {
    if (typeid(other) != typeid(*this)) throw std::bad_cast();
    const auto& list = static_cast<const ProfileValueList&>(other);
    // Sessions made with different protocol tables have different parts.
    if (list.GetMemberCount() != GetMemberCount()) throw std::bad_cast();
    for (size_t i = 0; i < GetMemberCount(); ++i) GetMember(i).CopyFrom(list.GetMember(i));
}

bool ProfileValueList::GetVariant(VARIANT&, VReportMessageParams& report) const {
    return ExchangeNotSupported(report);
}

bool ProfileValueList::SetVariant(const VARIANT&, VReportMessageParams& report) {
    return ExchangeNotSupported(report);
}

bool ProfileValueList::IsModified() const {
    for (size_t i = 0; i < GetMemberCount(); ++i)
        if (GetMember(i).IsModified()) return true;
    return false;
}
