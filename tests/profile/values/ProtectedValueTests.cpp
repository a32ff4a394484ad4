// The typed protected values against real INI-file keys.
#include <gtest/gtest.h>

#include "ConfigMessages.h"
#include "IniTestStore.h"
#include "VBlowfishString.h"
#include "VProfileCapiString.h"
#include "VProfileEncryptedString.h"
#include "VVariant.h"

namespace {

const wchar_t ValueName[] = L"Firewall Password V2";

class ProtectedValueTest : public ::testing::Test {
protected:
    VUnicodeString Stored(const wchar_t* name) {
        VUnicodeString text;
        EXPECT_TRUE(store_.OpenKey()->GetString(name, text)) << name;
        return text;
    }

    VUnicodeString PlainOf(const VProfileEncryptedString& value) {
        VUnicodeString plain;
        VReportMessageParams report;
        EXPECT_TRUE(value.GetPlainText(plain, report)) << std::hex << report.GetMessageCode();
        return plain;
    }

    IniTestStore store_;
    VRefPtr<IPassphraseProvider> phrase_ = VRefPtr<IPassphraseProvider>::Adopt(
        new VFixedPassphraseProvider(VUnicodeString(L"config phrase")));
};

}  // namespace

TEST_F(ProtectedValueTest, ASealedValueIsSavedOnceLoadsBackAndIsKeptAsItIsWithoutAPassphrase) {
    VProfileEncryptedString value(ValueName, phrase_.Get());
    VReportMessageParams report;
    ASSERT_TRUE(value.SetPlainText(L"hunter2", report));
    EXPECT_TRUE(value.IsChanged());
    {
        auto key = store_.OpenKey();
        ASSERT_TRUE(value.Save(*key, false));
        EXPECT_TRUE(key->WasWritten());
        key->ClearWritten();
        EXPECT_TRUE(value.Save(*key, false));
        EXPECT_FALSE(key->WasWritten()) << "an unchanged value writes nothing";
    }
    const VUnicodeString stored = Stored(ValueName);
    EXPECT_TRUE(stored.StartsWith(L"02:") && store_.ValuesFile().find("hunter2") == std::string::npos);

    VProfileEncryptedString loaded(ValueName, phrase_.Get());
    ASSERT_TRUE(loaded.LoadEncrypted(*store_.OpenKey()));
    EXPECT_TRUE(loaded.Get() == value.Get() && !loaded.IsChanged() && !loaded.IsModified());
    EXPECT_EQ(PlainOf(loaded), L"hunter2");

    VProfileEncryptedString unopened(ValueName);
    {
        auto key = store_.OpenKey();
        ASSERT_TRUE(unopened.LoadOrDefault(*key, VUnicodeString()));
        VUnicodeString plain(L"unchanged");
        EXPECT_FALSE(unopened.GetPlainText(plain, report) || plain != L"unchanged");
        EXPECT_EQ(report.GetMessageCode(), static_cast<DWORD>(CONFIG_PASSPHRASE_UNUSABLE));
        EXPECT_TRUE(unopened.Save(*key, true));
    }
    EXPECT_EQ(Stored(ValueName), stored);
    unopened.SetPassphraseProvider(phrase_.Get());
    EXPECT_EQ(PlainOf(unopened), L"hunter2");
}

TEST_F(ProtectedValueTest, ANewProviderServesTheSavedStateTooAndKeepsTheEdit) {
    VProfileEncryptedString value(ValueName);
    VReportMessageParams report;
    ASSERT_TRUE(value.SetPlainText(L"edited", report));
    value.SetPassphraseProvider(phrase_.Get());
    EXPECT_TRUE(value.IsChanged()) << "changing the provider keeps the edit";
    value.Revert();
    EXPECT_EQ(value.GetPassphraseProvider(), phrase_.Get())
        << "the saved state has the new provider too";
}

TEST_F(ProtectedValueTest, ADefaultOrAnOlderPasswordIsSavedNextTimeUnderTheNewName) {
    {
        VProfileEncryptedString value(ValueName, phrase_.Get()), plain(ValueName, phrase_.Get());
        auto key = store_.OpenKey();
        EXPECT_FALSE(value.LoadWithFormerName(*key, L"Firewall Password", VEncryptedString()));
        EXPECT_FALSE(plain.LoadOrDefault(*key, VUnicodeString()));
        EXPECT_TRUE(value.IsModified() && plain.IsModified());
    }
    store_.OpenKey()->SetString(L"Firewall Password", VBlowfishString::Encode(L"old secret"));
    VProfileEncryptedString value(ValueName, phrase_.Get());
    {
        auto key = store_.OpenKey();
        ASSERT_TRUE(value.LoadWithFormerName(*key, L"Firewall Password", VEncryptedString()));
        VReportMessageParams report;
        ASSERT_TRUE(value.IsModified() && value.SetPlainText(PlainOf(value), report));
        ASSERT_TRUE(value.Save(*key, false));
    }
    EXPECT_TRUE(Stored(ValueName).StartsWith(L"02:") && Stored(L"Firewall Password").IsEmpty())
        << "sealed anew, and the former name blanked";
    VProfileEncryptedString reloaded(ValueName, phrase_.Get());
    ASSERT_TRUE(reloaded.LoadEncrypted(*store_.OpenKey()));
    EXPECT_EQ(PlainOf(reloaded), L"old secret");
}

class ChangingPassphraseProvider : public VUnknown<IPassphraseProvider> {
public:
    bool GetPassphrase(VUnicodeString& passphrase) override {
        passphrase = phrase;
        return !phrase.IsEmpty();
    }
    VUnicodeString phrase{Str::Sensitive};
};

TEST_F(ProtectedValueTest, AfterThePassphraseChangesASaveSealsTheValuesUnderTheNewOne) {
    const std::pair<const wchar_t*, const wchar_t*> changes[] = {
        {L"old phrase", L"new phrase"}, {L"", L"new phrase"}, {L"old phrase", L""}};
    for (const auto& [before, after] : changes) {
        SCOPED_TRACE(testing::PrintToString(std::wstring(before) + L" -> " + after));
        const VRefPtr<ChangingPassphraseProvider> provider =
            VRefPtr<ChangingPassphraseProvider>::Adopt(new ChangingPassphraseProvider());
        provider->phrase = before;
        VProfileEncryptedString edited(L"Edited", provider.Get());
        VProfileEncryptedString loaded(L"Loaded", provider.Get());
        VReportMessageParams report;
        ASSERT_TRUE(edited.SetPlainText(L"secret", report));
        ASSERT_TRUE(loaded.SetPlainText(L"secret", report));
        ASSERT_TRUE(loaded.Save(*store_.OpenKey(), false));
        ASSERT_TRUE(loaded.LoadEncrypted(*store_.OpenKey()));

        provider->phrase = after;
        {
            auto key = store_.OpenKey();
            ASSERT_TRUE(edited.Save(*key, false));
            ASSERT_TRUE(loaded.Save(*key, false));
        }
        const VRefPtr<IPassphraseProvider> old =
            VRefPtr<IPassphraseProvider>::Adopt(new VFixedPassphraseProvider(VUnicodeString(before)));
        for (const wchar_t* name : {L"Edited", L"Loaded"}) {
            VUnicodeString opened;
            EXPECT_TRUE(VEncryptedString(Stored(name), provider.Get()).GetPlainText(opened, name, report)) << name;
            EXPECT_EQ(opened, L"secret");
            if (*after) EXPECT_FALSE(*before && VEncryptedString(Stored(name), old.Get()).GetPlainText(opened, name, report));
            else EXPECT_TRUE(Stored(name).StartsWith(L"CAPI:")) << name;
        }
    }
}

TEST_F(ProtectedValueTest, VariantsCarryTheProtectedTextNeverThePlainText) {
    VProfileEncryptedString value(ValueName, phrase_.Get());
    VReportMessageParams report;
    ASSERT_TRUE(value.SetPlainText(L"hunter2", report));
    VVariant variant;
    ASSERT_TRUE(value.GetVariant(variant.Get(), report));
    ASSERT_EQ(variant.GetType(), VT_BSTR);
    EXPECT_EQ(VUnicodeString(V_BSTR(&variant.Get())), value.Get().GetProtectedText());

    VProfileEncryptedString copy(ValueName, phrase_.Get());
    ASSERT_TRUE(copy.SetVariant(variant.Get(), report));
    EXPECT_EQ(PlainOf(copy), L"hunter2");
}

TEST_F(ProtectedValueTest, ACapiStringIsStoredProtectedHeldInSensitiveStringsAndKeptWhenDamaged) {
    VProfileCapiString value(L"Proxy Password");
    value.Set(L"p\x00E4ss");
    EXPECT_TRUE(value.Get().IsSensitive());
    ASSERT_TRUE(value.Save(*store_.OpenKey(), false));
    EXPECT_TRUE(Stored(L"Proxy Password").StartsWith(L"CAPI:"));

    VProfileCapiString loaded(L"Proxy Password");
    ASSERT_TRUE(loaded.Load(*store_.OpenKey()));
    EXPECT_TRUE(loaded.Get() == L"p\x00E4ss" && loaded.Get().IsSensitive() && !loaded.IsChanged());

    loaded.Set(VUnicodeString());
    ASSERT_TRUE(loaded.Save(*store_.OpenKey(), false));
    EXPECT_TRUE(Stored(L"Proxy Password").IsEmpty());

    store_.OpenKey()->SetString(L"Proxy Password", L"CAPI:0102030");
    VProfileCapiString damaged(L"Proxy Password", L"default");
    {
        auto key = store_.OpenKey();
        EXPECT_TRUE(damaged.Load(*key));
        EXPECT_EQ(key->GetLastErrorParams().GetMessageCode(), static_cast<DWORD>(CONFIG_PROTECTED_TEXT_DAMAGED));
        EXPECT_EQ(key->GetLastErrorParams().GetArguments(),
                  VArray<VUnicodeString>{L"Proxy Password"});
        EXPECT_TRUE(damaged.Get().IsEmpty() && !damaged.IsModified());
        EXPECT_TRUE(damaged.Save(*key, false));
    }
    EXPECT_EQ(Stored(L"Proxy Password"), L"CAPI:0102030");
}
