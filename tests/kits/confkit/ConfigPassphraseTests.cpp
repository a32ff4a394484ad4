// The configuration pass phrase and the functions that hand out protected values.

#include <gtest/gtest.h>

#include "ConfigPassphrase.h"
#include "IniTestStore.h"

namespace {

class ConfigPassphraseTest : public testing::Test {
protected:
    void SetUp() override { SetConfigPassphrase(VUnicodeString()); }
    void TearDown() override { SetConfigPassphrase(VUnicodeString()); }
};

}  // namespace

TEST_F(ConfigPassphraseTest, IsOffUntilSetAndHandedOutInASensitiveCopy) {
    EXPECT_TRUE(IsConfigPassphraseDisabled());
    VUnicodeString given(L"my phrase");
    SetConfigPassphrase(given);
    given.Append(L" changed later");  // the library keeps its own copy
    const VUnicodeString held = GetConfigPassphrase();
    VUnicodeString passphrase(Str::Sensitive);
    EXPECT_TRUE(!IsConfigPassphraseDisabled() && held == L"my phrase" && held.IsSensitive() &&
                GetConfigPassphraseProvider()->GetPassphrase(passphrase));
    SetConfigPassphrase(VUnicodeString());
    EXPECT_TRUE(IsConfigPassphraseDisabled() && GetConfigPassphrase().IsEmpty() &&
                !GetConfigPassphraseProvider()->GetPassphrase(passphrase) && passphrase.IsEmpty());
    EXPECT_EQ(held, L"my phrase") << "a copy handed out earlier stays as it was";
}

TEST_F(ConfigPassphraseTest, UpdateSealsWithThePassphraseAndTheValueSavesAndLoadsIt) {
    IniTestStore store;
    SetConfigPassphrase(VUnicodeString(L"my phrase"));
    VProfileEncryptedString value(L"Firewall Password V2");
    ASSERT_TRUE(UpdateProfileEncryptedString(value, L"hunter2"));
    EXPECT_TRUE(value.Get().StartsWith(L"02:"));
    EXPECT_EQ(value.GetPassphraseProvider(), GetConfigPassphraseProvider());
    ASSERT_TRUE(value.Save(*store.OpenKey(), false));
    EXPECT_EQ(store.ValuesFile().find("hunter2"), std::string::npos)
        << "never stored as plain text";

    // Loaded without a provider of its own, it opens with the pass phrase in force.
    VProfileEncryptedString loaded(L"Firewall Password V2");
    ASSERT_TRUE(loaded.LoadEncrypted(*store.OpenKey()));
    for (const wchar_t* passphrase : {L"my phrase", L"another phrase", L"", L"my phrase"}) {
        SetConfigPassphrase(VUnicodeString(passphrase));
        const VUnicodeString plain = GetProfileEncryptedPlaintextString(loaded);
        EXPECT_EQ(plain, std::wstring(passphrase) == L"my phrase" ? L"hunter2" : L"") << passphrase;
        EXPECT_TRUE(plain.IsEmpty() || plain.IsSensitive());
    }

    // An update that cannot seal changes nothing.
    value.Commit();
    const VEncryptedString before = value.Get();
    EXPECT_FALSE(UpdateProfileEncryptedString(value, VUnicodeString(L"bad \xD800 text")));
    EXPECT_EQ(value.Get(), before);
    EXPECT_FALSE(value.IsChanged());
    EXPECT_EQ(GetProfileEncryptedPlaintextString(value), L"hunter2");
}

TEST_F(ConfigPassphraseTest, LogonSealedValuesAndValuesWithTheirOwnProviderIgnoreThePassphrase) {
    VProfileEncryptedString logon(L"Password V2");
    ASSERT_TRUE(UpdateProfileEncryptedString(logon, L"hunter2"));
    EXPECT_TRUE(logon.Get().StartsWith(L"CAPI:"));
    VRefPtr<IPassphraseProvider> own = VRefPtr<IPassphraseProvider>::Adopt(
        new VFixedPassphraseProvider(VUnicodeString(L"own phrase")));
    VProfileEncryptedString value(L"Password V2", own.Get());
    VReportMessageParams report;
    ASSERT_TRUE(value.SetPlainText(L"secret", report));
    SetConfigPassphrase(VUnicodeString(L"my phrase"));
    EXPECT_EQ(GetProfileEncryptedPlaintextString(logon), L"hunter2");
    EXPECT_EQ(GetProfileEncryptedPlaintextString(value), L"secret");
}
