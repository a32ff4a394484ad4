#include "SessionConfig.h"

#include <iterator>
#include <mutex>

#include "ConfigMessages.h"
#include "VAddressIPv4.h"
#include "VAddressIPv6.h"

namespace {

using Owner = SessionConfig;

// "Is Session" and the terminal block, then the table's values.
constexpr VProfileData& (*Members[])(Owner&) = {
    [](Owner& session) -> VProfileData& { return session.IsSession; },
    [](Owner& session) -> VProfileData& { return session.Terminal; },
    SESSION_OPTIONS(PROFILE_TABLE_ROW)};

constexpr size_t TableMemberCount = std::size(Members);

template <class Kind>
void SetProvider(Kind&, IPassphraseProvider*) {}
void SetProvider(SessionSecret& secret, IPassphraseProvider* provider) {
    secret.SetPassphraseProvider(provider);
}

// The last part of a path ("web" of "Linux\web").
VUnicodeString LastPart(const VUnicodeString& path) {
    size_t start = path.GetLength();
    while (start > 0 && path[start - 1] != L'\\') --start;
    return path.Mid(start);
}

}  // namespace

SessionConfig::SessionConfig(VProfileKey* key, const VUnicodeString& path, SessionMode mode,
                             const ConnectProtocolTable* protocols, IPassphraseProvider* provider)
    : SessionConfig(Prototype(protocols)) {
    SetName(LastPart(path));
    path_ = path;
    mode_ = mode;
#define SESSION_OPTION_PROVIDER(member, kind, name, value, form) SetProvider(member, provider);
    SESSION_OPTIONS(SESSION_OPTION_PROVIDER)
#undef SESSION_OPTION_PROVIDER
    Load(key);
}

SessionConfig::SessionConfig(const ConnectProtocolTable* protocols)
    : ProfileValueList(VUnicodeString()),
      mode_(SessionMode::Terminal),
      common_(new CommonConfig(VRefPtr<RemoteHostConfig>::Adopt(new RemoteHostConfig).Get())),
      protocols_(protocols) {
    if (protocols_)
        for (const ConnectProtocolTableElement& element : *protocols_)
            parts_.emplace_back(element.createPart());
}

const SessionConfig& SessionConfig::Prototype(const ConnectProtocolTable* protocols) {
    static std::mutex mutex;
    static std::vector<std::unique_ptr<const SessionConfig>> prototypes;
    const std::lock_guard<std::mutex> lock(mutex);
    for (const auto& prototype : prototypes)
        if (prototype->protocols_ == protocols) return *prototype;
    prototypes.push_back(std::unique_ptr<const SessionConfig>(new SessionConfig(protocols)));
    return *prototypes.back();
}

const SessionConfig& SessionConfig::Defaults() { return Prototype(nullptr); }

void SessionConfig::Load(VProfileKey* key) {
    // A key saved whole holds nearly every value, and listing them would
    // only cost; one saved with what changed holds few. A value that users
    // leave alone tells which: the key holds it only when it was saved whole.
    // (A wrong guess costs time, never a value.)
    uint32_t ignored = 0;
    const bool savedWhole =
        key && key->GetDword(Terminal.DumbTerminalIgnoresCrlf.GetName(), ignored);
    ProfileLoadKey from(key, !savedWhole);
    // Asked of the key itself: the file back end answers it from the file's
    // existence, not from a value.
    IsSession.Load(from.Get(), false);
    // Whatever the key held, this object is a session; the saved value keeps
    // what the key said.
    IsSession.Set(true);
    Terminal.Load(from);
    const SessionConfig& defaults = Defaults();
    SESSION_OPTIONS(PROFILE_TABLE_LOAD)
    GetRemoteHostConfig().Load(from);
    for (VClonedRef<ConnectConfig>& part : parts_) part->Load(from);
    ResolveProtocol();
    stored_ = from.Get().IsOpen();
}

bool SessionConfig::Save(VProfileKey& key, bool force) {
    key.ClearWritten();
    bool saved = ProfileValueList::Save(key, force);
    // The file back end writes at the flush; its failure is the save's.
    if (key.WasWritten() && !key.Flush()) saved = false;
    stored_ = stored_ || saved;
    return saved;
}

std::unique_ptr<VProfileKey> SessionConfig::OpenKey(VProfileKey& root, const VUnicodeString& path,
                                                    bool create) {
    return ProfileLoadKey::OpenBelow(root, SessionsKeyName, path, create);
}

bool SessionConfig::IsDefaultSession() const {
    return GetName() == DefaultSessionName && path_ == DefaultSessionName;
}

SessionKind::Text& SessionConfig::ModeProtocolName() {
    return mode_ == SessionMode::Transfer ? TransferProtocolName : ProtocolName;
}

const SessionKind::Text& SessionConfig::ModeProtocolName() const {
    return const_cast<SessionConfig*>(this)->ModeProtocolName();
}

VUnicodeString SessionConfig::GetProtocolName() const {
    if (!protocols_) return ModeProtocolName().Get();
    if (currentProtocol_ < 0) return VUnicodeString();
    return (*protocols_)[static_cast<size_t>(currentProtocol_)].name;
}

void SessionConfig::SetProtocolName(const VUnicodeString& name) {
    ModeProtocolName().Set(name);
    ResolveProtocol();
}

void SessionConfig::ResolveProtocol() {
    if (!protocols_) {
        currentProtocol_ = -1;
        return;
    }
    SessionKind::Text& name = ModeProtocolName();
    if (!IsKnownProtocolName(*protocols_, mode_, name.Get())) {
        // Emptied, so that the session is saved with the default it now uses.
        TraceUnknownProtocol(name.Get());
        VUnicodeString emptied = name.Get();
        emptied.Empty();
        name.Set(emptied);
    }
    currentProtocol_ = FindProtocolIndex(*protocols_, mode_, name.Get());
}

ConnectConfigPtr SessionConfig::GetCurrentConnectConfig() const {
    if (currentProtocol_ < 0) return ConnectConfigPtr();
    return GetConnectConfig(static_cast<size_t>(currentProtocol_));
}

ConnectConfigPtr SessionConfig::GetConnectConfig(size_t index) const {
    if (index >= parts_.size()) throw VContainerOutOfRange();
    return ConnectConfigPtr(parts_[index].Get());
}

VUnicodeString SessionConfig::GetCommandLineForm() const {
    const ConnectConfigPtr part = GetCurrentConnectConfig();
    const RemoteHostConfig& host = GetRemoteHostConfig();
    const VUnicodeString arguments = part ? part->GetArguments(host) : VUnicodeString();
    // Nothing to connect to: the client opens the session by its path, as
    // the clients name sessions (the name alone does not find one in a folder).
    if (arguments.IsEmpty()) return VUnicodeString(L"/S \"") + path_ + L"\"";
    VUnicodeString line;
    const VUnicodeString firewall = part->GetFirewallName(host);
    if (!firewall.IsEmpty() && !firewall.EqualsNoCase(RemoteHostConfig::NoFirewall)) {
        line = L"/FIREWALL ";
        line += QuoteArgument(firewall);
        line += L" ";
    }
    line += arguments;
    return line;
}

bool SessionConfig::GetMonitorListenAddress(VRefPtr<IInternetAddress>& address,
                                            VReportMessageParams& report) const {
    const VUnicodeString& text = MonitorListenAddress.Get();
    const VRefPtr<IInternetAddress> candidates[] = {
        VRefPtr<IInternetAddress>::Adopt(new VAddressIPv4),
        VRefPtr<IInternetAddress>::Adopt(new VAddressIPv6)};
    for (const VRefPtr<IInternetAddress>& candidate : candidates) {
        if (!candidate->SetFromText(text.c_str())) continue;
        address = candidate;
        return true;
    }
    report.Set(CONFIG_ADDRESS_INVALID, text, MonitorListenAddress.GetName());
    return false;
}

bool SessionConfig::Equals(const SessionConfig& other) const {
    bool same = IsSession.Get() == other.IsSession.Get() &&
                Terminal.Equals(other.Terminal) SESSION_OPTIONS(PROFILE_TABLE_SAME) &&
                GetRemoteHostConfig().Equals(other.GetRemoteHostConfig()) &&
                parts_.size() == other.parts_.size() && currentProtocol_ == other.currentProtocol_;
    for (size_t i = 0; same && i < parts_.size(); ++i) same = parts_[i]->Equals(*other.parts_[i]);
    return same;
}

size_t SessionConfig::GetMemberCount() const { return TableMemberCount + 1 + parts_.size(); }

VProfileData& SessionConfig::GetMember(size_t index) {
    if (index < TableMemberCount) return Members[index](*this);
    if (index == TableMemberCount) return GetRemoteHostConfig();
    index -= TableMemberCount + 1;
    if (index >= parts_.size()) throw VContainerOutOfRange();
    return *parts_[index];
}
