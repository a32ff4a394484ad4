// Firewall definitions: the older password moving to its newer name when a
// definition is read (both back ends), and when the firewall asks its caller
// for credentials, with what it keeps and saves.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "FirewallConfig.h"
#include "SessionStore.h"
#include "VBlowfishString.h"

namespace {

class FirewallStore : public SessionStore {};

TEST_P(FirewallStore, AnOlderPasswordMovesToItsNewerNameWhenTheDefinitionIsRead) {
    VReportMessageParams report;
    VEncryptedString capi;
    ASSERT_TRUE(capi.SetPlainText(L"from capi", L"Firewall Password", report));
    const auto phrase =
        VRefPtr<IPassphraseProvider>::Adopt(new VFixedPassphraseProvider(L"pass phrase"));
    const struct {
        VUnicodeString older;
        const wchar_t* plain;
        IPassphraseProvider* provider;
        const wchar_t* sealedAs;
    } cases[] = {
        {capi, L"from capi", phrase.Get(), L"02:"},
        {VBlowfishString::Encode(L"older form"), L"older form", phrase.Get(), L"02:"},
        {VBlowfishString::Encode(L"no phrase"), L"no phrase", nullptr, L"CAPI:"},
    };
    int index = 0;
    for (const auto& c : cases) {
        const std::wstring path = L"Firewalls\\f" + std::to_wstring(index++);
        Key(path.c_str()).SetString(L"Firewall Password", c.older);
        const FirewallConfig firewall(L"corp", &Key(path.c_str()), c.provider);
        EXPECT_EQ(StoredText(path.c_str(), L"Firewall Password"), L"") << "blanked by the read";
        const FirewallConfig again(L"corp", &Key(path.c_str(), true), c.provider);
        EXPECT_TRUE(again.FirewallPassword.Get().StartsWith(c.sealedAs));
        VUnicodeString plain;
        ASSERT_TRUE(again.FirewallPassword.GetPlainText(plain, report));
        EXPECT_EQ(plain, c.plain);
        EXPECT_TRUE(again.Equals(firewall));
    }
}

INSTANTIATE_TEST_SUITE_P(BackEnds, FirewallStore,
                         ::testing::Values(RegistryBackEnd(), IniFileBackEnd()), BackEndName);

// Answers every prompt as told and records what it was asked.
class ScriptedUI final : public VUnknown<IFirewallUI> {
public:
    bool confirm = true;
    bool save = false;
    bool saves = true;
    std::vector<const char*> asked;
    VUnicodeString savedUser;
    VUnicodeString savedPassword;

    bool PromptUsername(IString& text, bool& keep, IParentable*) override {
        return Answer("user", L"carol", text, keep);
    }
    bool PromptPassword(IString& text, bool& keep, IParentable*) override {
        return Answer("password", L"s3cret", text, keep);
    }
    bool SaveFirewall(FirewallConfig& firewall, VReportMessageParams& report) override {
        asked.push_back("save");
        savedUser = firewall.FirewallUser.Get();
        if (!firewall.FirewallPassword.Get().IsEmpty())
            firewall.FirewallPassword.GetPlainText(savedPassword, report);
        if (!saves) report.Set(ERROR_ACCESS_DENIED);
        return saves;
    }

private:
    bool Answer(const char* what, const wchar_t* typed, IString& text, bool& keep) {
        asked.push_back(what);
        if (!confirm) return false;
        text.SetWide(typed, Str::Sensitive);
        keep = save;
        return true;
    }
};

TEST(FirewallPrompts, OnlyATypeThatNeedsCredentialsAndHasNoneAsks) {
    const struct {
        const wchar_t* type;
        const wchar_t* storedUser;
        bool confirm, save, saves;
        std::vector<const char*> asked;  // over two calls of GetUsername
        bool handed;
        const wchar_t* user;  // handed over both times
        const wchar_t* storedAfter;
    } cases[] = {
        {L"SOCKSv5", L"", true, true, true, {}, true, L"", L""},
        {L"Unknown Type", L"", true, true, true, {}, true, L"", L""},
        {L"SOCKSv5_USERPASS", L"bob", true, true, true, {}, true, L"bob", L"bob"},
        {L"SOCKSv5_USERPASS", L"", true, false, true, {"user"}, true, L"carol", L""},
        {L"SOCKSv5_USERPASS", L"", true, true, true, {"user", "save"}, true, L"carol", L"carol"},
        {L"USER user@host login", L"", true, true, false, {"user", "save"}, true, L"carol", L""},
        {L"HTTP_BASICAUTH", L"", false, true, true, {"user", "user"}, false, L"(untouched)", L""},
    };
    for (const auto& c : cases) {
        FirewallConfig firewall(L"corp", nullptr);
        firewall.FirewallType.Set(c.type);
        firewall.FirewallUser.Set(c.storedUser);
        auto* ui = new ScriptedUI;
        ui->confirm = c.confirm;
        ui->save = c.save;
        ui->saves = c.saves;
        firewall.SetUserInterface(ui);
        for (int call = 0; call < 2; ++call) {
            VUnicodeString user(L"(untouched)");
            VReportMessageParams report;
            EXPECT_EQ(firewall.GetUsername(user, report), c.handed);
            EXPECT_EQ(user, c.user);
            // A save that failed is told once; the name is remembered instead.
            const DWORD failure = !c.saves && call == 0 ? ERROR_ACCESS_DENIED : 0;
            EXPECT_EQ(report.GetMessageCode(), failure);
        }
        EXPECT_EQ(ui->asked, c.asked) << VString(VUnicodeString(c.type)).c_str();
        EXPECT_EQ(firewall.FirewallUser.Get(), c.storedAfter);
        ui->Release();
    }
}

TEST(FirewallPrompts, APasswordKeptIsSealedBeforeTheDefinitionIsSaved) {
    FirewallConfig firewall(L"corp", nullptr);
    firewall.FirewallType.Set(L"HTTP_BASICAUTH");
    firewall.FirewallUser.Set(L"bob");
    const auto ui = VRefPtr<ScriptedUI>::Adopt(new ScriptedUI);
    ui->save = true;
    firewall.SetUserInterface(ui.Get());
    VUnicodeString password;
    VReportMessageParams report;
    ASSERT_TRUE(firewall.GetPassword(password, report));
    EXPECT_EQ(password, L"s3cret");
    EXPECT_TRUE(password.IsSensitive());
    EXPECT_EQ(ui->asked, (std::vector<const char*>{"password", "save"}));
    EXPECT_EQ(ui->savedPassword, L"s3cret");
    EXPECT_TRUE(firewall.FirewallPassword.Get().StartsWith(L"CAPI:"));
    VUnicodeString user;
    ASSERT_TRUE(firewall.GetUsername(user, report));
    EXPECT_EQ(user, L"bob") << "stored: not asked";
}

}  // namespace
