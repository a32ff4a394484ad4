#include "VProfileData.h"

#include "ConfigMessages.h"

VProfileData& VProfileData::operator=(const VProfileData& other) {
    name_ = other.name_;
    userFlag_ = other.userFlag_;
    return *this;
}

bool VProfileData::ExchangeNotSupported(VReportMessageParams& report) const {
    report.Set(CONFIG_EXCHANGE_NOT_SUPPORTED, name_);
    return false;
}

bool VProfileData::NotConvertible(VReportMessageParams& report) const {
    report.Set(CONFIG_VALUE_NOT_CONVERTIBLE, name_);
    return false;
}

bool VProfileData::ReadVariantFrom(IProfileDataSource& source, VARIANT& variant,
                                   VReportMessageParams& report) const {
    if (source.Read(name_, variant)) return true;
    if (&report != &source.GetLastErrorParams()) report = source.GetLastErrorParams();
    return false;
}

bool VProfileData::GetVariantAs(VARIANT&, const VUnicodeString&, VARTYPE,
                                VReportMessageParams& report) const {
    return ExchangeNotSupported(report);
}

bool VProfileData::WriteAs(IProfileDataSink& sink, const VUnicodeString&, VARTYPE) const {
    return ExchangeNotSupported(sink.GetLastErrorParams());
}

bool VProfileData::SetVariantAs(const VARIANT&, VUnicodeString&, VARTYPE,
                                VReportMessageParams& report) {
    return ExchangeNotSupported(report);
}

bool VProfileData::ReadAs(IProfileDataSource&, VUnicodeString&, VARTYPE,
                          VReportMessageParams& report) {
    return ExchangeNotSupported(report);
}

bool VProfileData::Write(IProfileDataSink& sink) const {
    return WriteVariantTo(sink, [this](VARIANT& variant, VReportMessageParams& report) {
        return GetVariant(variant, report);
    });
}

bool VProfileData::Read(IProfileDataSource& source) {
    return ReadVariantFrom(source, source.GetLastErrorParams(),
                           [this](const VARIANT& variant, VReportMessageParams& report) {
                               return SetVariant(variant, report);
                           });
}
