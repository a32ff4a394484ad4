// VProfileKeySource: a serialisation source that reads values from a profile
// key, whatever their kind: a 32-bit number as VT_UI4, a string as VT_BSTR, a
// multi-string as VT_ARRAY | VT_BSTR and a binary value as VT_ARRAY | VT_UI1,
// the forms VProfileKeySink writes back.
//
// The key must outlive the source. Used by one thread at a time.
#pragma once

#include "IProfileDataSource.h"
#include "VProfileStore.h"

class VProfileKeySource : public IProfileDataSource {
public:
    explicit VProfileKeySource(VProfileKey& key) : key_(key) {}

    // False, with CONFIG_VALUE_ABSENT and the name in GetLastErrorParams, when
    // the key holds no value of that name; on another failure the key's record.
    bool Read(const VUnicodeString& name, VARIANT& value) override;
    VReportMessageParams& GetLastErrorParams() override { return report_; }

private:
    VProfileKey& key_;
    VReportMessageParams report_;
};
