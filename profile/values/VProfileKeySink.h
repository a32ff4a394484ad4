// VProfileKeySink: a serialisation sink that writes each value handed to it
// into a profile key, in the kind that fits its variant. With
// VProfileKeySource it copies typed values from one store to another (the
// registry into a tree of INI files, a profile into an export folder).
//
//   VT_BSTR                                string value
//   VT_I1 VT_UI1 VT_I2 VT_UI2 VT_I4 VT_UI4
//   VT_INT VT_UINT                         32-bit number (signed types sign-
//                                          extended, as VProfile<T> writes them)
//   VT_BOOL                                32-bit number, 1 or 0
//   VT_ARRAY | VT_BSTR, VT_ARRAY | VT_VARIANT  multi-string value
//   VT_ARRAY | VT_UI1                      binary value
// Any other variant is refused with CONFIG_EXCHANGE_NOT_SUPPORTED.
//
// The key must outlive the sink. Used by one thread at a time.
#pragma once

#include "IProfileDataSink.h"
#include "VProfileStore.h"

class VProfileKeySink : public IProfileDataSink {
public:
    explicit VProfileKeySink(VProfileKey& key) : key_(key) {}

    // False when the variant has no kind above, or the key's write fails (its
    // record is then copied into this sink's).
    bool Write(const VUnicodeString& name, const VARIANT& value) override;
    VReportMessageParams& GetLastErrorParams() override { return report_; }

private:
    bool Written(bool succeeded);

    VProfileKey& key_;
    VReportMessageParams report_;
};
