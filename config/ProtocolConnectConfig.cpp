#include "ProtocolConnectConfig.h"

#include <string>

#include "NoneConfig.h"

ProtocolConnectConfig::ProtocolConnectConfig(const ConnectPartDefinition& definition)
    : ConnectConfig(definition.protocolName), definition_(&definition) {
    for (size_t i = 0; i < definition.valueCount; ++i) {
        const ConnectPartValue& row = definition.values[i];
        if (row.isNumber) {
            slots_.push_back(numbers_.size());
            numbers_.emplace_back(row.name, row.number);
        } else {
            slots_.push_back(texts_.size());
            texts_.emplace_back(row.name, row.text);
        }
    }
}

void ProtocolConnectConfig::Load(ProfileLoadKey& from) {
    for (size_t i = 0; i < definition_->valueCount; ++i) {
        const ConnectPartValue& row = definition_->values[i];
        VProfileData& member = GetMember(i);
        if (row.isNumber)
            numbers_[slots_[i]].Load(from.For(member.GetName()), row.number);
        else
            texts_[slots_[i]].Load(from.For(member.GetName()), VUnicodeString(row.text));
    }
}

VUnicodeString ProtocolConnectConfig::GetFirewallName(const RemoteHostConfig& host) const {
    return definition_->usesHost ? host.GetFirewallName()
                                 : VUnicodeString(NoneConfig::ProtocolName);
}

VUnicodeString ProtocolConnectConfig::GetArguments(const RemoteHostConfig& host) const {
    VUnicodeString arguments(L"/PROTOCOL ");
    arguments += QuoteArgument(GetProtocolName());
    const auto add = [&](const wchar_t* option, const VUnicodeString& value) {
        if (!option || value.IsEmpty()) return;
        arguments += L" ";
        arguments += option;
        arguments += L" ";
        arguments += QuoteArgument(value);
    };
    if (definition_->usesHost) add(definition_->userOption, host.GetUsername(true));
    for (size_t i = 0; i < definition_->valueCount; ++i) {
        const ConnectPartValue& row = definition_->values[i];
        add(row.option, row.isNumber
                            ? VUnicodeString(std::to_wstring(numbers_[slots_[i]].Get()).c_str())
                            : texts_[slots_[i]].Get());
    }
    if (definition_->usesHost && !host.GetHostname().IsEmpty()) {
        arguments += L" ";
        arguments += QuoteArgument(host.GetHostname());
    }
    return arguments;
}

bool ProtocolConnectConfig::Equals(const ConnectConfig& other) const {
    const auto* part = dynamic_cast<const ProtocolConnectConfig*>(&other);
    if (!part || part->definition_ != definition_) return false;
    for (size_t i = 0; i < definition_->valueCount; ++i) {
        const bool same = definition_->values[i].isNumber
                              ? SameTableValue(numbers_[slots_[i]], part->numbers_[slots_[i]])
                              : SameTableValue(texts_[slots_[i]], part->texts_[slots_[i]]);
        if (!same) return false;
    }
    return true;
}

VProfile<unsigned long>* ProtocolConnectConfig::GetNumber(size_t index) {
    return index < definition_->valueCount && definition_->values[index].isNumber
               ? &numbers_[slots_[index]]
               : nullptr;
}

SessionKind::Text* ProtocolConnectConfig::GetText(size_t index) {
    return index < definition_->valueCount && !definition_->values[index].isNumber
               ? &texts_[slots_[index]]
               : nullptr;
}

VProfileData& ProtocolConnectConfig::GetMember(size_t index) {
    if (index >= definition_->valueCount) throw VContainerOutOfRange();
    if (definition_->values[index].isNumber) return numbers_[slots_[index]];
    return texts_[slots_[index]];
}
