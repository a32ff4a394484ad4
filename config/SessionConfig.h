// SessionConfig: one saved session, a key below "Sessions" in a tree of
// folders (the registry's HKEY_CURRENT_USER\SOFTWARE\Quillon\Sessions\...,
// or <configuration folder>\Sessions\<folder>\<name>.ini). It holds, in this
// order: "Is Session", the terminal block (TerminalConfig), the values of
// SessionOptionTable.h, the remote host with two further common parts
// (CommonConfig), one connection part per protocol of the protocol table
// with the index of the session's own, and whether it was read from a store.
// Every value lives in the session's own key.
//
// "Is Session" tells a session's key from a folder's: once loaded it is
// always true, while its saved value keeps what the key held (false when
// absent), so a save marks a key that was not yet marked.
//
// A copy (clone) shares every string buffer with its source, sensitivity
// included, and holds its own copies of the common and connection parts.
// A session is used by one thread at a time; its reference count changes
// atomically, so handles may be released on any thread.
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "CommonConfig.h"
#include "ConnectProtocolTable.h"
#include "IInternetAddress.h"
#include "IPassphraseProvider.h"
#include "ISessionConfig.h"
#include "ProfileValueList.h"
#include "SessionOptionTable.h"
#include "TerminalConfig.h"
#include "TimeZoneDatabase.h"

class SessionConfig final : public VUnknown<ISessionConfig>, public ProfileValueList {
public:
    static constexpr wchar_t SessionsKeyName[] = L"Sessions";
    static constexpr wchar_t IsSessionName[] = L"Is Session";
    static constexpr wchar_t DefaultSessionName[] = L"Default";

    // The session at path below "Sessions" (folders separated by "\"; its
    // name is the last part), read from key for mode: a null key gives every
    // default. Connection parts come from protocols (null: the session has
    // none, and connects by its name; a table given must live as long as the
    // process, as GetConnectProtocolTable's does); its secrets are sealed and
    // opened through provider (null: with the user's Windows logon).
    SessionConfig(VProfileKey* key, const VUnicodeString& path,
                  SessionMode mode = SessionMode::Terminal,
                  const ConnectProtocolTable* protocols = nullptr,
                  IPassphraseProvider* provider = nullptr);
    SessionConfig(const SessionConfig& other) = default;
    SessionConfig& operator=(const SessionConfig&) = delete;

    // A copy as above, with one reference (the caller's).
    IClonable* Clone() const override { return new SessionConfig(*this); }

    // Reads every member again from key (null: the defaults), in the order
    // above. A value the key lacks, or holds as another kind, takes its
    // default. Values found under an older name are written under the newer
    // one by the next Save, which blanks the older; a pre-connect command
    // moves at once (RemoteHostConfig).
    void Load(VProfileKey* key);
    // Writes every member that changed or is modified (all with force) to
    // key, then flushes it. False, with the reason in key's record, when a
    // write or the flush failed; the others are written all the same.
    bool Save(VProfileKey& key, bool force) override;

    // The key of the session at path below root's "Sessions" key; create
    // makes it and its folders. Not open (IsOpen) when it cannot be.
    static std::unique_ptr<VProfileKey> OpenKey(VProfileKey& root, const VUnicodeString& path,
                                                bool create);

    const VUnicodeString& GetSessionName() const override { return GetName(); }
    const VUnicodeString& GetSessionPath() const override { return path_; }
    bool IsDefaultSession() const override;
    // Whether the key it was read from marked it as a session.
    bool IsMarkedAsSession() const { return IsSession.GetSaved(); }
    // Read from a key of a store, or saved to one.
    bool IsStored() const { return stored_; }
    SessionMode GetMode() const { return mode_; }

    // The protocol of the mode's name value when the protocol table has it
    // for the mode, else the default (an unknown name is emptied when it is
    // read or set); without a table, the stored name as it stands.
    VUnicodeString GetProtocolName() const override;
    // Stores name as the mode's protocol name and makes its part current.
    void SetProtocolName(const VUnicodeString& name);
    // The index of the session's protocol in the table; -1 for none.
    int GetCurrentProtocolIndex() const { return currentProtocol_; }
    // The part of the session's protocol; null when it has none.
    ConnectConfigPtr GetCurrentConnectConfig() const;
    // One part per element of the protocol table, in its order.
    size_t GetConnectConfigCount() const { return parts_.size(); }
    // VContainerOutOfRange beyond the count.
    ConnectConfigPtr GetConnectConfig(size_t index) const;

    // "/FIREWALL <name> " when the current part goes through a firewall,
    // then the part's arguments; /S "<path>" for a session without a part to
    // connect with.
    VUnicodeString GetCommandLineForm() const override;

    RemoteHostConfig& GetRemoteHostConfig() const { return *common_->GetRemoteHostConfig(); }
    CommonConfig& GetCommonConfig() const { return *common_; }

    // "Monitor Listen Address" as an IPv4 or IPv6 address with its port (a
    // new reference in address). False, with CONFIG_ADDRESS_INVALID in
    // report, when the text is neither.
    bool GetMonitorListenAddress(VRefPtr<IInternetAddress>& address,
                                 VReportMessageParams& report) const;

    // The zone that "Time Zone" names (empty: the computer's own). False,
    // with CONFIG_TIME_ZONE_UNKNOWN in report, for a name the computer's
    // time-zone database lacks.
    bool GetTimeZone(VTimeZone& zone, VReportMessageParams& report) const {
        return FindTimeZone(TimeZone.Get(), zone, report);
    }

    // Every value equal (terminal block, common and connection parts included).
    bool Equals(const SessionConfig& other) const;

    size_t GetMemberCount() const override;
    VProfileData& GetMember(size_t index) override;
    using ProfileValueList::GetMember;

    // The members, in declaration order.
    VProfile<bool> IsSession{IsSessionName, true};
    TerminalConfig Terminal;
    SESSION_OPTIONS(PROFILE_TABLE_MEMBER)

private:
    // Every value with its default, and the parts of protocols; nothing read.
    explicit SessionConfig(const ConnectProtocolTable* protocols);
    // A session of protocols' parts holding every default, made once per
    // table: each new session starts as a copy of it, which shares its
    // names and defaults rather than making them anew. Any thread.
    static const SessionConfig& Prototype(const ConnectProtocolTable* protocols);
    // The defaults of every value: a load takes them from here.
    static const SessionConfig& Defaults();

    SessionKind::Text& ModeProtocolName();
    const SessionKind::Text& ModeProtocolName() const;
    // Makes the mode's protocol current. A name the table does not know for
    // the mode is traced and emptied, and the default taken.
    void ResolveProtocol();

    VUnicodeString path_;
    SessionMode mode_;
    VClonedRef<CommonConfig> common_;
    const ConnectProtocolTable* protocols_;
    std::vector<VClonedRef<ConnectConfig>> parts_;
    int currentProtocol_ = -1;
    bool stored_ = false;
};
