// The process's global options object, and the pass phrase it checks at
// start-up.
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "ConfigMessages.h"
#include "ConfigPassphrase.h"
#include "ConfigPassphraseStartup.h"
#include "SharedGlobalConfig.h"
#include "TempFolder.h"
#include "VIniFileStoreFactory.h"

namespace {

constexpr char Mark[] = "\xEF\xBB\xBF";

// The process's object is loaded once, so this is the one test that asks for it.
TEST(SharedGlobalConfig, IsLoadedOnceFromTheCurrentStoreAndSavedBackToIt) {
    TempFolder folder;
    VIniFileStoreFactory factory(folder.Path(), VUnicodeString());
    SetIniFileStoreFactory(&factory);
    const VUnicodeString file = folder / L"Global.ini";
    ASSERT_TRUE(WriteWholeFile(
        file, std::string(Mark) + "D:\"Keep Shared Memory Agent Open\"=00000000\r\n"
                                  "S:\"Traywell Agent Keys ListView State\"=0,1;150,90;1,0\r\n"));
    GlobalConfig* config = nullptr;
    ASSERT_TRUE(GetGlobalConfig(config, -1));
    ASSERT_NE(config, nullptr);
    EXPECT_FALSE(config->KeepSharedMemoryAgentOpen.Get());
    EXPECT_EQ(config->TraywellAgentKeysListViewState.Get().widths, (VArray<int>{150, 90}));

    // Another program changes the file; the process keeps what it loaded.
    ASSERT_TRUE(WriteWholeFile(
        file, std::string(Mark) + "D:\"Keep Shared Memory Agent Open\"=00000001\r\n"));
    GlobalConfig* again = nullptr;
    ASSERT_TRUE(GetGlobalConfig(again, -1));
    EXPECT_EQ(again, config);
    EXPECT_FALSE(again->KeepSharedMemoryAgentOpen.Get());
    EXPECT_THROW(GetGlobalConfig(again, 0), std::invalid_argument);

    // Saved where it was loaded from, even after the current store changed,
    // and only what this process changed: the other program's value stays.
    VListViewState columns;
    ASSERT_TRUE(VListViewState::Parse(L"1,1;100,100;0,1", columns));
    config->TraywellAgentKeysListViewState.Set(columns);
    SetIniFileStoreFactory(nullptr);
    VReportMessageParams report;
    ASSERT_TRUE(config->SaveToStore(report)) << VString(report.GetTextAsString()).c_str();
    const std::string saved = ReadWholeFile(file);
    EXPECT_NE(saved.find("S:\"Traywell Agent Keys ListView State\"=1,1;100,100;0,1"),
              std::string::npos);
    EXPECT_NE(saved.find("D:\"Keep Shared Memory Agent Open\"=00000001"), std::string::npos);
}

// "Config Passphrase" as it would be stored: text sealed under passphrase
// (the "CAPI:" form when passphrase is empty).
VEncryptedString Sealed(const wchar_t* text, const wchar_t* passphrase) {
    const VRefPtr<IPassphraseProvider> provider =
        VRefPtr<IPassphraseProvider>::Adopt(new VFixedPassphraseProvider(passphrase));
    VEncryptedString sealed(VUnicodeString(), provider.Get());
    VReportMessageParams report;
    EXPECT_TRUE(sealed.SetPlainText(text, L"Config Passphrase", report));
    return VEncryptedString(sealed.GetProtectedText());
}

TEST(ConfigPassphraseStartup, TheGivenPassphraseIsUsedOnlyWhenItOpensTheStoredCheck) {
    const struct {
        const wchar_t* check;  // the pass phrase the check holds; null for none
        bool logonSealed;      // sealed with the logon instead: no check
        const wchar_t* given;
        DWORD failure;  // 0 for success
        const wchar_t* inForce;
    } cases[] = {
        {nullptr, false, L"", 0, L""},
        {nullptr, false, L"chosen", 0, L"chosen"},
        {L"right", false, L"right", 0, L"right"},
        {L"right", false, L"wrong", CONFIG_PASSPHRASE_MISMATCH, L""},
        {L"right", false, L"", CONFIG_PASSPHRASE_REQUIRED, L""},
        {L"right", true, L"other", 0, L"other"},
    };
    for (const auto& c : cases) {
        SetConfigPassphrase(VUnicodeString());
        GlobalConfig config;
        if (c.check) config.ConfigPassphrase.Set(Sealed(c.check, c.logonSealed ? L"" : c.check));
        VReportMessageParams report;
        const VUnicodeString given(c.given, Str::Sensitive);
        EXPECT_EQ(StartConfigPassphrase(config, given, report), c.failure == 0)
            << VString(given).c_str();
        EXPECT_EQ(report.GetMessageCode(), c.failure);
        EXPECT_EQ(GetConfigPassphrase(), c.inForce) << "a wrong pass phrase never seals anything";
    }
    SetConfigPassphrase(VUnicodeString());
}

}  // namespace
