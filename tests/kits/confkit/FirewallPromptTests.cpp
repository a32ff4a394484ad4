// The firewall credential prompts of a host program (FirewallPromptHost), answered
// as a user does: what the host is handed, and what reaches the store.
#include <gtest/gtest.h>

#include "FirewallConfig.h"
#include "ProgramFolder.h"
#include "TempFolder.h"
#include "ChildProcess.h"
#include "VIniFileStoreFactory.h"

TEST(FirewallPromptWindows, WhatIsTypedIsHandedBackAndSavedOnlyWhenAskedTo) {
    constexpr int TextId = 1002, SaveId = 1003;
    constexpr wchar_t Passphrase[] = L"pass phrase";
    const struct {
        const wchar_t* credential;
        const wchar_t* typed;
        bool tickSave;
        int button;
        const char* handed;
    } cases[] = {
        {L"user", L"carol", true, IDOK, "confirmed=1\ntext=carol\nsensitive=1\nreport=0\n"},
        {L"password", L"s3cret pass", true, IDOK,
         "confirmed=1\ntext=s3cret pass\nsensitive=1\nreport=0\n"},
        {L"user", L"dave", false, IDOK, "confirmed=1\ntext=dave\nsensitive=1\nreport=0\n"},
        {L"password", L"never", true, IDCANCEL,
         "confirmed=0\ntext=(none)\nsensitive=1\nreport=0\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.credential << " " << c.button);
        TempFolder folder, output;
        VIniFileStoreFactory factory(folder.Path(), VUnicodeString());
        {
            VProfileStore store(&factory);
            FirewallConfig::OpenKey(store.GetRootKey(), L"corp", true)
                ->SetString(L"Firewall Type", L"HTTP_BASICAUTH");
        }
        VUnicodeString arguments;
        arguments.FormatPositional(L"\"%1\" corp %2 \"%3\" \"%4\"", folder.Path().c_str(),
                                   c.credential, (output / L"handed.txt").c_str(), Passphrase);
        ChildProcess host(GetPathBesideProgram(L"firewall_prompt_host.exe"), arguments);
        const std::vector<HWND> dialogs = host.Windows(L"#32770", 1);
        ASSERT_EQ(dialogs.size(), 1u) << "no prompt appeared";
        for (const wchar_t* character = c.typed; *character; ++character)
            SendDlgItemMessageW(dialogs[0], TextId, WM_CHAR, *character, 1);
        if (c.tickSave) SendDlgItemMessageW(dialogs[0], SaveId, BM_CLICK, 0, 0);
        PostMessageW(GetDlgItem(dialogs[0], c.button), BM_CLICK, 0, 0);
        EXPECT_EQ(host.Wait(WaitLimit), 0);
        EXPECT_EQ(ReadWholeFile(output / L"handed.txt"), c.handed);

        const bool saved = c.tickSave && c.button == IDOK, password = c.credential[0] == L'p';
        auto provider =
            VRefPtr<IPassphraseProvider>::Adopt(new VFixedPassphraseProvider(Passphrase));
        VProfileStore store(&factory, true);
        const FirewallConfig stored(
            L"corp", FirewallConfig::OpenKey(store.GetRootKey(), L"corp", false).get(),
            provider.Get());
        VUnicodeString value = stored.FirewallUser.Get();
        VReportMessageParams report;
        if (password) {
            EXPECT_TRUE(stored.FirewallPassword.GetPlainText(value, report));
            EXPECT_EQ(stored.FirewallPassword.Get().StartsWith(L"02:"), saved);
        }
        EXPECT_EQ(value, saved ? c.typed : L"");
    }
}
