// The "CAPI:" form through the real data protection of the system (Wine's
// DPAPI under test): round trips and the blob's contents. Damaged texts are
// refused in PassphraseFormTests.cpp, with the other forms' malformed texts.

#include <gtest/gtest.h>

#include <windows.h>

#include <dpapi.h>

#include <cstring>
#include <cwchar>

#include "CapiForm.h"
#include "ConfigMessages.h"
#include "CryptoTestVectors.h"

namespace {

const VUnicodeString Name(L"Firewall Password");

VUnicodeString Sealed(const VUnicodeString& plain) {
    VUnicodeString text;
    VReportMessageParams report;
    EXPECT_TRUE(CapiForm::Encode(plain, text, Name, report));
    return text;
}

// The blob a "CAPI:" text holds, opened with the system directly.
struct OpenedBlob {
    Bytes data;
    std::wstring description;
};

OpenedBlob OpenDirectly(const VUnicodeString& text) {
    Bytes blob = DecodeHex(VString(text.Mid(5)).c_str());
    DATA_BLOB input{static_cast<DWORD>(blob.size()), blob.data()};
    DATA_BLOB output{};
    LPWSTR description = nullptr;
    OpenedBlob opened;
    if (CryptUnprotectData(&input, &description, nullptr, nullptr, nullptr, 0, &output)) {
        opened.data.assign(output.pbData, output.pbData + output.cbData);
        opened.description = description ? description : L"";
        LocalFree(output.pbData);
        LocalFree(description);
    }
    return opened;
}

}  // namespace

TEST(CapiFormTest, SealsTheTextWithItsTerminatorAndTheDescription) {
    const VUnicodeString plain(L"p\x00E4ss \xD83D\xDD11");
    const VUnicodeString text = Sealed(plain);
    ASSERT_TRUE(text.StartsWith(L"CAPI:"));
    for (size_t i = 5; i < text.GetLength(); ++i)
        ASSERT_TRUE(std::wcschr(L"0123456789ABCDEF", text[i]))
            << "digits must be upper-case hexadecimal";
    const OpenedBlob blob = OpenDirectly(text);
    EXPECT_EQ(blob.description, L"VProfileCapiString");
    ASSERT_EQ(blob.data.size(), 2 * plain.GetLength() + 2);
    EXPECT_EQ(std::memcmp(blob.data.data(), plain.c_str(), blob.data.size()),
              0);  // terminator included
}

TEST(CapiFormTest, RoundTripsIntoASensitiveString) {
    VUnicodeString longText;
    for (int i = 0; i < 3000; ++i) longText.Append(static_cast<wchar_t>(0x3041 + i % 80));
    for (const VUnicodeString& plain :
         {VUnicodeString(L"x"), VUnicodeString(L"with \"quotes\" and \\ "), longText}) {
        const VUnicodeString text = Sealed(plain);
        VUnicodeString opened;
        VReportMessageParams report;
        ASSERT_TRUE(CapiForm::Decode(text, opened, Name, report));
        EXPECT_EQ(opened, plain);
        EXPECT_TRUE(opened.IsSensitive());
        // Without its prefix, and with lower-case digits, the text reads the same.
        VUnicodeString bare(Str::Sensitive);
        ASSERT_TRUE(CapiForm::Decode(text.Mid(5), bare, Name, report));
        EXPECT_EQ(bare, plain);
        VUnicodeString lower = text;
        const size_t length = lower.GetLength();
        wchar_t* digits = lower.GetBuffer(length);
        for (size_t i = 5; i < length; ++i) digits[i] = static_cast<wchar_t>(towlower(digits[i]));
        lower.ReleaseBuffer(length);
        VUnicodeString fromLower;
        ASSERT_TRUE(CapiForm::Decode(lower, fromLower, Name, report));
        EXPECT_EQ(fromLower, plain);
    }
}

TEST(CapiFormTest, AnEmptyTextIsStoredAsAnEmptyStringAndADamagedOneReadsAsEmpty) {
    VUnicodeString text(L"old");
    VReportMessageParams report;
    ASSERT_TRUE(CapiForm::Encode(VUnicodeString(), text, Name, report));
    EXPECT_TRUE(text.IsEmpty());
    VUnicodeString plain(L"old");
    ASSERT_TRUE(CapiForm::Decode(text, plain, Name, report));
    EXPECT_TRUE(plain.IsEmpty());

    plain = L"previous";
    EXPECT_FALSE(CapiForm::Decode(L"CAPI:00112233445566778899", plain, Name, report));
    EXPECT_TRUE(plain.IsEmpty());
    ASSERT_EQ(report.GetArguments().GetCount(), 1u);
    EXPECT_EQ(report.GetArguments()[0], Name);
}
