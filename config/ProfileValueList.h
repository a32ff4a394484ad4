// ProfileValueList: a configuration object that is itself one typed value
// made of typed values (a session, its terminal block, a firewall, a
// connection part), so that it saves, compares, accepts and reverts as a
// whole through the operations of VProfileData. A derived class lists its
// members; every member lives in the same profile key.
//
// A list is used by one thread at a time.
#pragma once

#include <cstddef>

#include "VProfileData.h"

class ProfileValueList : public VProfileData {
public:
    using VProfileData::VProfileData;

    virtual size_t GetMemberCount() const = 0;
    // The member of index (below GetMemberCount).
    virtual VProfileData& GetMember(size_t index) = 0;
    const VProfileData& GetMember(size_t index) const {
        return const_cast<ProfileValueList*>(this)->GetMember(index);
    }

    // A whole object has no text form: CONFIG_EXCHANGE_NOT_SUPPORTED, false.
    bool SetFromText(IProfileDataSource& source, const char* text) override;
    // Saves every member (what changed or is modified, or all when force),
    // all of them even after a failure; false when one failed, with the
    // reason in the key's record.
    bool Save(VProfileKey& key, bool force) override;
    bool IsChanged() const override;  // some member changed
    void Commit() override;
    void Revert() override;
    // Member by member. other must be of this object's own class, else
    // std::bad_cast.
    void CopyFrom(const VProfileData& other) override;
    // A whole object is not exchanged as a variant: CONFIG_EXCHANGE_NOT_SUPPORTED.
    bool GetVariant(VARIANT& variant, VReportMessageParams& report) const override;
    bool SetVariant(const VARIANT& variant, VReportMessageParams& report) override;
    bool IsModified() const override;  // some member is modified
};
