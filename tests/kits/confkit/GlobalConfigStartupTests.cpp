// The process's global options object, and the pass phrase it checks at start-up.
#include <gtest/gtest.h>

#include <stdexcept>

#include "ConfigMessages.h"
#include "ConfigPassphrase.h"
#include "ConfigPassphraseStartup.h"
#include "SharedGlobalConfig.h"
#include "TempFolder.h"
#include "VIniFileStoreFactory.h"

// The process's object is loaded once, so this is the one test that asks for it.
TEST(SharedGlobalConfig, IsLoadedOnceFromTheCurrentStoreAndSavedBackToIt) {
    TempFolder folder;
    VIniFileStoreFactory factory(folder.Path(), VUnicodeString());
    SetIniFileStoreFactory(&factory);
    const VUnicodeString file = folder / L"Global.ini";
    auto write = [&](char keep) {
        return WriteWholeFile(file, std::string("\xEF\xBB\xBF"
                                                "D:\"Keep Shared Memory Agent Open\"=0000000") +
                                        keep + "\r\n");
    };
    ASSERT_TRUE(write('0'));
    GlobalConfig *config = nullptr, *again = nullptr;
    ASSERT_TRUE(GetGlobalConfig(config, -1));
    EXPECT_FALSE(config->KeepSharedMemoryAgentOpen.Get());
    // Another program changes the file; the process keeps what it loaded.
    ASSERT_TRUE(write('1'));
    ASSERT_TRUE(GetGlobalConfig(again, -1));
    EXPECT_TRUE(again == config && !again->KeepSharedMemoryAgentOpen.Get());
    EXPECT_THROW(GetGlobalConfig(again, 0), std::invalid_argument);

    // Saved where it was loaded from, only what this process changed.
    VListViewState columns;
    ASSERT_TRUE(VListViewState::Parse(L"1,1;100,90;0,1", columns));
    config->TraywellAgentKeysListViewState.Set(columns);
    SetIniFileStoreFactory(nullptr);
    VReportMessageParams report;
    ASSERT_TRUE(config->SaveToStore(report)) << VString(report.GetTextAsString()).c_str();
    const std::string saved = ReadWholeFile(file);
    EXPECT_NE(saved.find("S:\"Traywell Agent Keys ListView State\"=1,1;100,90;0,1"),
              std::string::npos);
    EXPECT_NE(saved.find("D:\"Keep Shared Memory Agent Open\"=00000001"), std::string::npos);
}

TEST(ConfigPassphraseStartup, TheGivenPassphraseIsUsedOnlyWhenItOpensTheStoredCheck) {
    const struct {
        const wchar_t* check;       // the pass phrase the stored check holds; null for none
        const wchar_t* sealedWith;  // "" for the logon, which makes no check
        const wchar_t* given;
        DWORD failure;
        const wchar_t* inForce;
    } cases[] = {
        {nullptr, nullptr, L"", 0, L""},
        {nullptr, nullptr, L"chosen", 0, L"chosen"},
        {L"right", L"right", L"right", 0, L"right"},
        {L"right", L"right", L"wrong", CONFIG_PASSPHRASE_MISMATCH, L""},
        {L"right", L"right", L"", CONFIG_PASSPHRASE_REQUIRED, L""},
        {L"right", L"", L"other", 0, L"other"},
    };
    for (const auto& c : cases) {
        SetConfigPassphrase(VUnicodeString());
        GlobalConfig config;
        if (c.check) {
            const auto sealer =
                VRefPtr<IPassphraseProvider>::Adopt(new VFixedPassphraseProvider(c.sealedWith));
            VEncryptedString check(VUnicodeString(), sealer.Get());
            VReportMessageParams sealing;
            ASSERT_TRUE(check.SetPlainText(c.check, L"Config Passphrase", sealing));
            config.ConfigPassphrase.Set(VEncryptedString(check.GetProtectedText()));
        }
        VReportMessageParams report;
        EXPECT_EQ(StartConfigPassphrase(config, VUnicodeString(c.given, Str::Sensitive), report),
                  c.failure == 0)
            << c.given;
        EXPECT_EQ(report.GetMessageCode(), c.failure);
        EXPECT_EQ(GetConfigPassphrase(), c.inForce) << "a wrong pass phrase never seals anything";
    }
    SetConfigPassphrase(VUnicodeString());
}
