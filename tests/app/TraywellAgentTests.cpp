// The SSH agent of the real traywell.exe: its pipe, /AddKey keys, confirmation before use.
#include <gtest/gtest.h>

#include <thread>

#include "AddKeyDialog.h"
#include "AgentMessages.h"
#include "AgentPipeServer.h"
#include "AgentTestSupport.h"
#include "TrayDriver.h"
#include "TraywellMessages.h"

namespace {

std::wstring AddKey(const char* key, const wchar_t* more = L"") {
    return L"/AddKey \"" + TestKeyPath(key) + L"\"" + more;
}

VUnicodeString AgentReportText(DWORD code, const char* key) {
    VReportMessageParams report;
    SetAgentReport(report, code, VUnicodeString(TestKeyPath(key).c_str()));
    return report.GetText();
}

}  // namespace

// A first start adds its keys once it serves; second starts hand theirs over.
TEST(TraywellAgent, ServesThePipeWhileItRunsAndTakesKeysFromAFirstAndASecondStart) {
    TraywellUnderTest traywell((AddKey("ed25519") + L" " + AddKey("ecdsa384")).c_str());
    AgentPipeClient client;
    VReportMessageParams report;
    ASSERT_TRUE(client.Connect(AgentPipeServer::DefaultPipeName, WaitLimit, report));
    std::vector<AgentIdentity> listed;
    ASSERT_TRUE(WaitUntil([&] { return client.List(listed) && listed.size() == 2; }));
    EXPECT_EQ(listed[0].publicBlob, ReadPublicKeyFile("ed25519").publicBlob);
    EXPECT_EQ(listed[1].publicBlob, ReadPublicKeyFile("ecdsa384").publicBlob);
    VReportMessageParams usage(TRAY_ADD_KEY_USAGE);
    usage.AddArgument(L"/Lifetime");
    const struct {
        std::wstring arguments;
        std::vector<const wchar_t*> passphrases;  // typed in turn into the Add Key window
        VUnicodeString box;                       // empty: none, and the key is added
        const char* key;
        uint32_t lifetime;
        bool confirm;
    } cases[] = {
        // clang-format off
        {AddKey("ed25519"), {}, L"", "ed25519", 0, false},
        {L"/addkey \"" + TestKeyPath("ed25519-sealed") + L"\" /Lifetime 5 /Confirm", {L"not it", L"open sesame"}, L"", "ed25519-sealed", 300, true},
        {AddKey("ed25519-sealed"), {L"a", L"b", L"c"}, AgentReportText(AGENT_KEY_FILE_WRONG_PASSPHRASE, "ed25519-sealed"), nullptr, 0, false},
        {AddKey("ed25519.pub"), {}, AgentReportText(AGENT_KEY_FILE_NOT_A_KEY, "ed25519.pub"), nullptr, 0, false},
        {AddKey("ed25519", L" /Lifetime soon"), {}, usage.GetText(), nullptr, 0, false},
        // clang-format on
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(VString(test.arguments.c_str()).c_str());
        ASSERT_TRUE(client.RemoveAll());
        TraywellUnderTest second(test.arguments.c_str(), false);
        for (const wchar_t* passphrase : test.passphrases) {
            const HWND dialog = second.WaitForDialog(AddKeyDialog::PassphraseId);
            ASSERT_TRUE(dialog) << passphrase;
            SetDlgItemTextW(dialog, AddKeyDialog::PassphraseId, passphrase);
            PostMessageW(dialog, WM_COMMAND, IDOK, 0);
            WaitUntil([&] { return !IsWindow(dialog); });
        }
        EXPECT_EQ(test.box.IsEmpty() ? VUnicodeString() : second.TakeBoxText(), test.box);
        EXPECT_EQ(second.process.Wait(WaitLimit), test.key ? 0 : 1);
        ASSERT_TRUE(client.List(listed));
        ASSERT_EQ(listed.size(), test.key ? 1u : 0u);
        if (!test.key) continue;
        EXPECT_EQ(listed[0].publicBlob, ReadPublicKeyFile(test.key).publicBlob);
        const std::vector<AgentKeyInfo> held = AgentKeyStore().List();  // read from this process
        ASSERT_EQ(held.size(), 1u);
        EXPECT_TRUE(held[0].lifetime == test.lifetime && held[0].confirm == test.confirm);

        // A key marked so is used only after Yes in a box that names us and it.
        VUnicodeString question;
        std::thread answer([&] {
            if (test.confirm) question = traywell.TakeBoxText(IDYES);
        });
        AgentBytes signature;  // (that it verifies, the OpenSSH interop test shows)
        EXPECT_TRUE(client.Sign(listed[0].publicBlob, reinterpret_cast<const uint8_t*>("id"), 2, 0,
                                signature));
        answer.join();
        EXPECT_TRUE(!test.confirm ||
                    (question.StartsWith(L"traywell_tests.exe (") &&
                     question.Find(L"asks to use the SSH key sealed ed25519 (ED25519 SHA256:") !=
                         VUnicodeString::npos))
            << question.c_str();
    }
    EXPECT_TRUE(client.RemoveAll());
    client.Disconnect();
    traywell.Choose(L"x");
    EXPECT_NE(traywell.process.Wait(WaitLimit), -1);
    EXPECT_FALSE(client.Connect(AgentPipeServer::DefaultPipeName, 0, report));
}
