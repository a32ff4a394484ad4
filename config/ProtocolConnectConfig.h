// ProtocolConnectConfig: the connection part of a protocol described as data
// (ConnectPartDefinition): its values, each a number or a text of the
// session's key, and how the command line names them. The protocol table
// gives one definition per protocol (Confkit's GetConnectProtocolTable).
//
// Used by one thread at a time; reference-counted atomically.
#pragma once

#include <cstddef>
#include <vector>

#include "ConnectConfig.h"
#include "SessionValueKinds.h"

// One value of a connection part.
struct ConnectPartValue {
    const wchar_t* name;    // value name in the session's key
    const wchar_t* option;  // the command-line option that names it, or null
    bool isNumber;          // a 32-bit number, else a text
    unsigned long number;   // a number's default
    const wchar_t* text;    // a text's default
};

constexpr ConnectPartValue PartNumber(const wchar_t* name, const wchar_t* option,
                                      unsigned long defaultValue) {
    return {name, option, true, defaultValue, L""};
}
constexpr ConnectPartValue PartText(const wchar_t* name, const wchar_t* option,
                                    const wchar_t* defaultValue) {
    return {name, option, false, 0, defaultValue};
}

struct ConnectPartDefinition {
    const wchar_t* protocolName;
    // Connects to the remote host's "Hostname" (named last on the command
    // line), through its firewall.
    bool usesHost;
    // The option that names the remote host's user, or null when the
    // protocol logs in by itself.
    const wchar_t* userOption;
    const ConnectPartValue* values;
    size_t valueCount;
};

class ProtocolConnectConfig final : public ConnectConfig {
public:
    // The part of definition (which must outlive it), with its defaults.
    explicit ProtocolConnectConfig(const ConnectPartDefinition& definition);

    IClonable* Clone() const override { return new ProtocolConnectConfig(*this); }
    void Load(ProfileLoadKey& from) override;
    // The remote host's firewall for a protocol that uses the host, else "None".
    VUnicodeString GetFirewallName(const RemoteHostConfig& host) const override;
    // "/PROTOCOL <name>", the user's option and name (expanded), each value's
    // option and value, then the host: for example
    // /PROTOCOL SSH2 /L alice /P 22 example.org
    VUnicodeString GetArguments(const RemoteHostConfig& host) const override;
    bool Equals(const ConnectConfig& other) const override;

    const ConnectPartDefinition& GetDefinition() const { return *definition_; }
    // The value of the definition's row index: a number, or a text.
    VProfile<unsigned long>* GetNumber(size_t index);
    SessionKind::Text* GetText(size_t index);

    size_t GetMemberCount() const override { return definition_->valueCount; }
    VProfileData& GetMember(size_t index) override;
    using ProfileValueList::GetMember;

private:
    const ConnectPartDefinition* definition_;
    std::vector<VProfile<unsigned long>> numbers_;
    std::vector<SessionKind::Text> texts_;
    // Per row of the definition: its index in numbers_ or texts_, as its kind says.
    std::vector<size_t> slots_;
};
