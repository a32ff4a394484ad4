// Firewall definitions: the older password's move, and the user name a firewall asks for.
#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

#include "FirewallConfig.h"
#include "SessionStore.h"
#include "VBlowfishString.h"

namespace {

class FirewallStore : public SessionStore {};

TEST_P(FirewallStore, AnOlderPasswordMovesToItsNewerNameWhenTheDefinitionIsRead) {
    VReportMessageParams report;
    const auto phrase =
        VRefPtr<IPassphraseProvider>::Adopt(new VFixedPassphraseProvider(L"pass phrase"));
    // the older password, the provider, the start of the newer text
    const std::tuple<const wchar_t*, IPassphraseProvider*, const wchar_t*> cases[] = {
        {L"older form", phrase.Get(), L"02:"}, {L"no phrase", nullptr, L"CAPI:"}};
    int index = 0;
    for (const auto& [plain, provider, sealedAs] : cases) {
        const std::wstring path = L"Firewalls\\f" + std::to_wstring(index++);
        Key(path.c_str()).SetString(L"Firewall Password", VBlowfishString::Encode(plain));
        const FirewallConfig firewall(L"corp", &Key(path.c_str()), provider);
        EXPECT_EQ(StoredText(path.c_str(), L"Firewall Password"), L"") << "blanked by the read";
        const FirewallConfig again(L"corp", &Key(path.c_str(), true), provider);
        VUnicodeString read;
        ASSERT_TRUE(again.FirewallPassword.GetPlainText(read, report));
        EXPECT_TRUE(again.FirewallPassword.Get().StartsWith(sealedAs) && read == plain &&
                    again.Equals(firewall))
            << read.c_str();
        EXPECT_EQ(again.FirewallPort.Get(), 1080u) << "not stored: its default";
    }
}

INSTANTIATE_TEST_SUITE_P(BackEnds, FirewallStore,
                         ::testing::Values(RegistryBackEnd(), IniFileBackEnd()), BackEndName);

class ScriptedUI final : public VUnknown<IFirewallUI> {
public:
    ScriptedUI(bool confirm, bool keep, bool saves)
        : confirm_(confirm), keep_(keep), saves_(saves) {}

    bool PromptUsername(IString& text, bool& keep, IParentable*) override {
        asked.push_back("user");
        if (confirm_) text.SetWide(L"carol", Str::Sensitive);
        keep = keep_;
        return confirm_;
    }
    bool PromptPassword(IString&, bool&, IParentable*) override { return false; }
    bool SaveFirewall(FirewallConfig&, VReportMessageParams& report) override {
        asked.push_back("save");
        if (!saves_) report.Set(ERROR_ACCESS_DENIED);
        return saves_;
    }

    std::vector<const char*> asked;

private:
    const bool confirm_, keep_, saves_;
};

TEST(FirewallPrompts, OnlyATypeThatNeedsCredentialsAndHasNoneAsks) {
    const struct {
        const wchar_t* type;
        const wchar_t* storedUser;
        bool confirm, keep, saves;       // what the prompt and the save answer
        std::vector<const char*> asked;  // over two calls
        bool handed;
        const wchar_t* user;  // handed both times
        const wchar_t* storedAfter;
    } cases[] = {
        {L"SOCKSv5", L"", true, true, true, {}, true, L"", L""},
        {L"Unknown Type", L"", true, true, true, {}, true, L"", L""},
        {L"SOCKSv5_USERPASS", L"bob", true, true, true, {}, true, L"bob", L"bob"},
        {L"SOCKSv5_USERPASS", L"", true, false, true, {"user"}, true, L"carol", L""},
        {L"SOCKSv5_USERPASS", L"", true, true, true, {"user", "save"}, true, L"carol", L"carol"},
        {L"USER user@host login", L"", true, true, false, {"user", "save"}, true, L"carol", L""},
        {L"HTTP_BASICAUTH", L"", false, true, true, {"user", "user"}, false, L"(untouched)", L""}};
    for (const auto& [type, storedUser, confirm, keep, saves, asked, handed, user, storedAfter] :
         cases) {
        FirewallConfig firewall(L"corp", nullptr);
        firewall.FirewallType.Set(type);
        firewall.FirewallUser.Set(storedUser);
        const auto ui = VRefPtr<ScriptedUI>::Adopt(new ScriptedUI(confirm, keep, saves));
        firewall.SetUserInterface(ui.Get());
        for (int call = 0; call < 2; ++call) {
            VUnicodeString given(L"(untouched)");
            VReportMessageParams report;
            EXPECT_TRUE(firewall.GetUsername(given, report) == handed && given == user);
            EXPECT_EQ(report.GetMessageCode(), !saves && call == 0 ? ERROR_ACCESS_DENIED : 0u);
        }
        EXPECT_EQ(ui->asked, asked) << type;
        EXPECT_EQ(firewall.FirewallUser.Get(), storedAfter);
    }
}

}  // namespace
