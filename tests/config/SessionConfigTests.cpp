// Sessions against both back ends of the store, then clones and their secrets.
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <tuple>
#include <vector>

#include "BlockRecorder.h"
#include "ProtocolConnectConfig.h"
#include "SessionConfig.h"
#include "SessionStore.h"
#include "VBlowfishString.h"
#include "VCommandSocket.h"
#include "VTcpSocket.h"

namespace {

constexpr wchar_t WebPath[] = L"Sessions\\Linux\\web";

VUnicodeString PlainText(const VProfileEncryptedString& value) {
    VUnicodeString plain(Str::Sensitive);
    VReportMessageParams report;
    EXPECT_TRUE(value.GetPlainText(plain, report)) << report.GetText();
    return plain;
}

class SessionConfigStore : public SessionStore {
protected:
    SessionConfig Loaded(const wchar_t* path, SessionMode mode = SessionMode::Terminal) {
        return SessionConfig(&Key(path, true), path + wcslen(L"Sessions\\"), mode, &protocols_,
                             provider_.Get());
    }

    VRefPtr<IPassphraseProvider> provider_ =
        VRefPtr<IPassphraseProvider>::Adopt(new VFixedPassphraseProvider(L"pass phrase"));
};

TEST_P(SessionConfigStore, ASavedSessionLoadsEqualInAFreshOneAndOpensWithItsCommandLine) {
    SessionConfig session(nullptr, L"Linux\\web", SessionMode::Terminal, &protocols_,
                          provider_.Get());
    VReportMessageParams report;
    session.Terminal.Emulation.Set(L"VT220");
    session.Terminal.XPosition.Set(-20);
    session.Terminal.NormalFontV2.Set(VLogFont(L"Consolas", -16));
    session.Description.Set(L"first\r\nsecond\tC:\\Logs");
    session.ScpShellPrompts.Set(L"Password:\r\nanswer");
    session.TimeZone.Set(L"Tokyo Standard Time");
    ASSERT_TRUE(session.LoginScript.SetPlainText(L"login:\r\nalice", report));
    session.SetProtocolName(L"ssh2");
    RemoteHostConfig& host = session.GetRemoteHostConfig();
    host.SetHostname(L"example.org");
    host.SetUsername(L"alice");
    host.SetFirewallName(L"corp proxy");
    auto* ssh2 = dynamic_cast<ProtocolConnectConfig*>(session.GetCurrentConnectConfig().Get());
    ASSERT_NE(ssh2, nullptr);
    ssh2->GetNumber(0)->Set(2222);
    ASSERT_TRUE(session.Save(Key(WebPath), false));

    const SessionConfig loaded = Loaded(WebPath);
    EXPECT_TRUE(loaded.Equals(session) && loaded.IsMarkedAsSession() &&
                loaded.GetProtocolName() == L"SSH2");
    EXPECT_EQ(PlainText(loaded.LoginScript), L"login:\r\nalice");
    VTimeZone zone;
    EXPECT_TRUE(loaded.GetTimeZone(zone, report)) << "a zone of the computer's database";
    EXPECT_EQ(loaded.GetCommandLineForm(),
              L"/FIREWALL \"corp proxy\" /PROTOCOL SSH2 /L alice /P 2222 example.org");
    EXPECT_EQ(StoredText(WebPath, L"Description"), L"first\\r\\nsecond\\tC:\\\\Logs")
        << "one line in the store";
    EXPECT_EQ(StoredText(WebPath, L"Login Script V3").Find(L"alice"), VUnicodeString::npos);
}

TEST_P(SessionConfigStore, ANullKeyAndAnEmptyOneGiveTheDefaults) {
    Key(L"Sessions\\empty");
    const SessionConfig fromNull(nullptr, L"empty", SessionMode::Terminal, &protocols_);
    const SessionConfig fromEmpty = Loaded(L"Sessions\\empty");
    EXPECT_TRUE(fromNull.Equals(fromEmpty) && !fromNull.IsStored() && fromEmpty.IsStored());
    VRefPtr<IInternetAddress> address;
    VReportMessageParams report;
    ASSERT_TRUE(fromNull.GetMonitorListenAddress(address, report));
    EXPECT_TRUE(address->IsAnyAddress() && address->ToUnicodeString(true) == L"0.0.0.0:22");
}

TEST_P(SessionConfigStore, IsSessionIsAlwaysSetWhileItsSavedValueKeepsWhatTheKeyHeld) {
    // "Is Session" as stored (-1: absent), and whether the key holds other values
    const std::pair<int, bool> cases[] = {{-1, false}, {-1, true}, {0, false},
                                          {0, true},   {1, false}, {2, true}};
    int index = 0;
    for (const auto& [stored, otherValues] : cases) {
        const std::wstring path = L"Sessions\\s" + std::to_wstring(index++);
        VProfileKey& key = Key(path.c_str());
        if (otherValues) key.SetString(L"Hostname", L"example.org");
        if (stored >= 0) key.SetDword(SessionConfig::IsSessionName, stored);
        SessionConfig session = Loaded(path.c_str());
        EXPECT_TRUE(session.IsSession.Get());
        EXPECT_EQ(session.IsMarkedAsSession(),
                  stored > 0 || (IsIniFile() && (otherValues || stored >= 0)))
            << stored;
        ASSERT_TRUE(session.Save(Key(path.c_str()), false));
        EXPECT_TRUE(Loaded(path.c_str()).IsMarkedAsSession()) << "the save marks the key";
    }
}

TEST_P(SessionConfigStore, OlderGenerationsOfASecretLoadIntoItAndAreBlankedAtTheSave) {
    VReportMessageParams report;
    VEncryptedString capi;  // no provider: protected with the logon
    const auto blowfish = [](const wchar_t* plain) { return VBlowfishString::Encode(plain); };
    ASSERT_TRUE(capi.SetPlainText(L"monitor", L"Monitor Password", report));
    const struct {
        SessionSecret SessionConfig::*member;
        std::map<std::wstring, VUnicodeString> older;
        const wchar_t* plain;
    } cases[] = {
        {&SessionConfig::LoginScript,
         {{L"Login Script V2", VBlowfishString::Encode(L"from v2")}, {L"Login Script", L"plain"}},
         L"from v2"},
        {&SessionConfig::LoginScript, {{L"Login Script", L"one\\r\\ntwo"}}, L"one\r\ntwo"},
        {&SessionConfig::MonitorPassword, {{L"Monitor Password", capi}}, L"monitor"},
        {&SessionConfig::ScpShellPassword, {{L"SCP Shell Password", blowfish(L"scp")}}, L"scp"},
        {&SessionConfig::PgpUploadCommand, {{L"PGP Upload Command", L"gpg -e"}}, L"gpg -e"},
        {&SessionConfig::PgpDownloadCommand, {{L"PGP Download Command", L"gpg -d"}}, L"gpg -d"}};
    int index = 0;
    for (const auto& [member, older, plain] : cases) {
        const std::wstring path = L"Sessions\\g" + std::to_wstring(index++);
        VProfileKey& key = Key(path.c_str());
        for (const auto& [name, text] : older) key.SetString(name.c_str(), text);
        SessionConfig session = Loaded(path.c_str());
        const SessionSecret& secret = session.*member;
        EXPECT_TRUE(PlainText(secret) == plain && secret.IsModified()) << plain;
        ASSERT_TRUE(session.Save(Key(path.c_str()), false));
        EXPECT_TRUE(StoredText(path.c_str(), secret.GetName().c_str()).StartsWith(L"02:"));
        for (const auto& [name, text] : older)
            EXPECT_EQ(StoredText(path.c_str(), name.c_str()), L"") << "blanked";
        const SessionConfig again = Loaded(path.c_str());
        EXPECT_TRUE(PlainText(again.*member) == plain && !(again.*member).IsModified());
    }
}

TEST_P(SessionConfigStore, OlderNamesOfTheHostAndTheTerminalMove) {
    VProfileKey& key = Key(WebPath);
    key.SetDword(L"Enable 80/132 Column Switching", 0);
    key.SetString(L"Local Shell Command Pre-connect", L"net use x: \\\\server\\share");
    key.SetDword(L"Use Firewall", 1);
    SessionConfig session(&Key(WebPath), L"Linux\\web");
    EXPECT_FALSE(session.Terminal.Enable80132ColumnSwitching.Get());
    EXPECT_EQ(session.GetRemoteHostConfig().GetFirewallName(), L"DefaultTerminalFirewall");
    EXPECT_EQ(session.GetRemoteHostConfig().GetPreConnectCommand(),
              L"net use x: \\\\server\\share");
    EXPECT_TRUE(StoredText(WebPath, L"Local Shell Command Pre-connect V2") ==
                    L"net use x: \\\\server\\share" &&
                StoredText(WebPath, L"Local Shell Command Pre-connect") == L"")
        << "moved by the load itself";
    ASSERT_TRUE(session.Save(Key(WebPath), false));
    EXPECT_EQ(StoredNumber(WebPath, L"Enable 80-132 Column Switching"), 0u);
    EXPECT_EQ(StoredNumber(WebPath, L"Enable 80/132 Column Switching"), 0xDEADu);
    Key(WebPath).SetString(L"Firewall Name", L"None");
    EXPECT_EQ(Loaded(WebPath).GetRemoteHostConfig().GetFirewallName(), L"None")
        << "a name, once there, wins over the older switch";
}

TEST_P(SessionConfigStore, AProtocolNameUnknownForTheModeIsTracedEmptiedAndTheDefaultTaken) {
    const std::tuple<SessionMode, const wchar_t*, const wchar_t*, bool> cases[] = {
        // mode, stored name, protocol taken, traced
        {SessionMode::Terminal, L"telnet/tls", L"Telnet/TLS", false},
        {SessionMode::Terminal, L"", L"SSH2", false},
        {SessionMode::Terminal, L"NONE", L"None", false},
        {SessionMode::Terminal, L"SFTP", L"SSH2", true},
        {SessionMode::Transfer, L"ftp/ssl (explicit)", L"FTP/SSL (explicit)", false},
        {SessionMode::Transfer, L"Serial", L"SFTP", true}};
    // OutputDebugStringA raises its line as an exception, which a vectored handler sees first.
    static std::vector<std::string> traced;
    void* handler = AddVectoredExceptionHandler(1, [](EXCEPTION_POINTERS* pointers) -> LONG {
        const EXCEPTION_RECORD& record = *pointers->ExceptionRecord;
        if (record.ExceptionCode == DBG_PRINTEXCEPTION_C && record.NumberParameters >= 2)
            traced.emplace_back(reinterpret_cast<const char*>(record.ExceptionInformation[1]));
        return EXCEPTION_CONTINUE_SEARCH;
    });
    for (const auto& [mode, stored, protocol, unknown] : cases) {
        const bool terminal = mode == SessionMode::Terminal;
        Key(WebPath).SetString(terminal ? L"Protocol Name" : L"Transfer Protocol Name", stored);
        traced.clear();
        const SessionConfig session = Loaded(WebPath, mode);
        const std::string line = "Unknown protocol \"" + std::string(VString(stored).c_str()) +
                                 "\" using default protocol.\n";
        EXPECT_EQ(traced, unknown ? std::vector<std::string>{line} : std::vector<std::string>());
        EXPECT_TRUE(session.GetProtocolName() == protocol &&
                    session.GetCurrentConnectConfig()->GetProtocolName() == protocol)
            << stored;
        const auto& name = terminal ? session.ProtocolName : session.TransferProtocolName;
        EXPECT_EQ(name.Get(), unknown ? L"" : stored) << "an unknown name is emptied";
    }
    RemoveVectoredExceptionHandler(handler);
}

TEST_P(SessionConfigStore, TheCommandLineNamesTheFirewallOnlyWhereTheConnectionGoesThroughIt) {
    const wchar_t* cases[][4] = {
        // protocol, firewall, user, command line
        {L"SSH2", L"None", L"%username%", L"/PROTOCOL SSH2 /L tester /P 22 example.org"},
        {L"Telnet", L"corp", L"alice", L"/FIREWALL corp /PROTOCOL Telnet /P 23 example.org"},
        {L"Serial", L"corp", L"alice",
         L"/PROTOCOL Serial /COM COM1 /BAUD 9600 /DATA 8 /PARITY 0 /STOP 0 /FLOW 0"},
        {L"Local Shell", L"None", L"", L"/PROTOCOL \"Local Shell\""},
        {L"None", L"corp", L"alice", L"/S \"Linux\\web\""}};
    SetEnvironmentVariableW(L"USERNAME", L"tester");
    for (const auto& [protocol, firewall, user, commandLine] : cases) {
        SessionConfig session = Loaded(WebPath);
        session.SetProtocolName(protocol);
        session.GetRemoteHostConfig().SetHostname(L"example.org");
        session.GetRemoteHostConfig().SetFirewallName(firewall);
        session.GetRemoteHostConfig().SetUsername(user);
        ASSERT_TRUE(session.Save(Key(WebPath), false));
        EXPECT_EQ(Loaded(WebPath).GetCommandLineForm(), commandLine);
    }
    EXPECT_EQ(SessionConfig(nullptr, L"Linux\\web").GetCommandLineForm(), L"/S \"Linux\\web\"")
        << "without a protocol table, a session connects by its name";
}

INSTANTIATE_TEST_SUITE_P(BackEnds, SessionConfigStore,
                         ::testing::Values(RegistryBackEnd(), IniFileBackEnd()), BackEndName);

TEST(SessionConfigIdentity, OnlyTheTopLevelDefaultSpelledExactlyIsTheDefaultSession) {
    EXPECT_TRUE(SessionConfig(nullptr, L"Default").IsDefaultSession());
    for (const wchar_t* path : {L"default", L"DEFAULT", L"Linux\\Default", L"Defaults"})
        EXPECT_FALSE(SessionConfig(nullptr, path).IsDefaultSession()) << path;
    EXPECT_EQ(SessionConfig(nullptr, L"Linux\\Old\\legacy").GetSessionName(), L"legacy");
    TerminalConfig block;
    for (const auto& [stored, known] :
         {std::pair{L"scoansi", L"SCO-ANSI"}, {L"vt220", L"VT220"}, {L"Teletype", L"Xterm"}}) {
        block.Emulation.Set(stored);
        EXPECT_EQ(block.GetEmulationName(), known);
    }
}

TEST(RemoteHostConnect, APreConnectCommandRunsInACommandSocketAroundTheConnection) {
    RemoteHostConfig host;
    const auto inner = VRefPtr<IStreamSocket>::Adopt(new VTcpSocket);
    const auto direct =
        VRefPtr<IStreamSocket>::Adopt(host.CreateConnectSocket(inner.Get(), {}, {}));
    EXPECT_EQ(direct.Get(), inner.Get()) << "no command: the socket itself";
    host.SetPreConnectCommand(L"cmd.exe /c exit 3");
    const auto wrapped =
        VRefPtr<IStreamSocket>::Adopt(host.CreateConnectSocket(inner.Get(), {}, {}));
    auto* command = dynamic_cast<VCommandSocket*>(wrapped.Get());
    ASSERT_NE(command, nullptr);
    VReportMessageParams report;
    ASSERT_TRUE(command->Connect("127.0.0.1:9", nullptr, report));
    DWORD code = 0;
    for (int wait = 0; wait < 200 && !command->GetCommandStatus(code); ++wait) Sleep(50);
    EXPECT_EQ(code, 3u) << "the command ran before the connect";
    command->Close();
}

TEST(SessionConfigClone, AClonesSecretsShareSensitiveBlocksAndReleasingBothWipesThem) {
    auto* session =
        new SessionConfig(nullptr, L"web", SessionMode::Terminal, &GetConnectProtocolTable());
    VReportMessageParams report;
    ASSERT_TRUE(session->LoginScript.SetPlainText(L"login:\r\nalice", report));
    ASSERT_TRUE(session->MonitorPassword.SetPlainText(L"monitor", report));
    session->Terminal.Answerback.Set(L"plain text");
    auto* clone = dynamic_cast<SessionConfig*>(session->Clone());
    ASSERT_NE(clone, nullptr);
    std::vector<const wchar_t*> secrets;
    for (const SessionConfig* config : {session, clone}) {
        for (const SessionSecret* secret : {&config->LoginScript, &config->MonitorPassword}) {
            EXPECT_TRUE(secret->Get().IsSensitive() && secret->GetSaved().IsSensitive());
            secrets.push_back(secret->Get().c_str());
        }
    }
    EXPECT_EQ(secrets[2], secrets[0]) << "shared";
    EXPECT_EQ(clone->Terminal.Answerback.Get().c_str(), session->Terminal.Answerback.Get().c_str());
    EXPECT_NE(clone->GetConnectConfig(0).Get(), session->GetConnectConfig(0).Get());
    EXPECT_NE(&clone->GetRemoteHostConfig(), &session->GetRemoteHostConfig());
    const BlockRecorder recorder;
    session->Release();
    EXPECT_EQ(BlockRecorder::ReleaseOf(secrets[0]), nullptr) << "the clone still holds the block";
    clone->Release();
    for (const wchar_t* secret : secrets) {
        const BlockRecorder::Released* released = BlockRecorder::ReleaseOf(secret);
        EXPECT_TRUE(released && released->IsWiped());
    }
}

}  // namespace
