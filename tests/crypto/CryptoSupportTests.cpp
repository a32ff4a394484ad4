// The wiped byte buffer, the system's random source, strict UTF-8 and hex digits.
#include <gtest/gtest.h>

#include <windows.h>

#include <algorithm>
#include <array>
#include <cstring>

#include "CryptoTestSupport.h"
#include "HexDigits.h"
#include "RegistrySandbox.h"
#include "Utf8Text.h"
#include "VBasicBuffer.h"
#include "VCapiRandomSource.h"

TEST(BasicBuffer, AppendsUpToItsTargetSizeAndClearingWipesTheBytes) {
    VBasicBuffer buffer(8);
    EXPECT_TRUE(buffer.Append("abcde", 5));
    EXPECT_FALSE(buffer.Append("wxyz", 4)) << "9 bytes would not fit: nothing appended";
    ASSERT_EQ(buffer.Extend(3), buffer.GetData() + 5);
    EXPECT_EQ(buffer.Extend(1), nullptr);
    EXPECT_EQ(std::memcmp(buffer.GetData(), "abcde\0\0\0", 8), 0);
    const uint8_t* data = buffer.GetData();
    buffer.Clear();
    EXPECT_TRUE(buffer.GetLength() == 0 && std::memcmp(data, "\0\0\0\0\0\0\0\0", 8) == 0)
        << "the old bytes are wiped";
}

TEST(CapiRandomSource, GivesFreshBytesAndWithoutAProviderFailsWithTheAcquisitionError) {
    auto source = VRefPtr<VCapiRandomSource>::Adopt(new VCapiRandomSource());
    ASSERT_EQ(source->GetAcquireError(), static_cast<DWORD>(ERROR_SUCCESS));
    std::vector<uint8_t> first(4096), second(4096);
    ASSERT_TRUE(source->Fill(first.data(), first.size()));
    ASSERT_TRUE(source->FillDirect(second.data(), static_cast<uint32_t>(second.size())));
    EXPECT_NE(first, second);
    // 4096 random bytes hit nearly every value, about 16 times each.
    std::array<int, 256> seen{};
    for (uint8_t byte : first) ++seen[byte];
    EXPECT_GT(std::count_if(seen.begin(), seen.end(), [](int n) { return n > 0; }), 240);
    EXPECT_LT(*std::max_element(seen.begin(), seen.end()), 45);

    RegistrySandbox sandbox;
    {
        PredefinedKeyRedirect emptyMachine(HKEY_LOCAL_MACHINE, sandbox, L"Machine");
        source = VRefPtr<VCapiRandomSource>::Adopt(new VCapiRandomSource());
    }
    const DWORD acquireError = source->GetAcquireError();
    ASSERT_NE(acquireError, static_cast<DWORD>(ERROR_SUCCESS));
    uint8_t bytes[16] = {};
    for (const bool direct : {false, true}) {
        SetLastError(ERROR_SUCCESS);
        EXPECT_FALSE(direct ? source->FillDirect(bytes, 16) : source->Fill(bytes, 16));
        EXPECT_EQ(GetLastError(), acquireError);
    }
}

// Each side of every length boundary and of the surrogates; characters are encoded one by one.
TEST(Utf8Text, AgreesWithTheSystemConverterOnEachSideOfEveryBoundary) {
    const VUnicodeString text(
        L"\x0001\x007F\x0080\x07FF\x0800\xD7FF\xE000\xFFFF"
        L"\xD800\xDC00\xDBFF\xDFFF.");
    std::string system(64, '\0');
    system.resize(WideCharToMultiByte(CP_UTF8, 0, text.c_str(), static_cast<int>(text.GetLength()),
                                      system.data(), static_cast<int>(system.size()), nullptr,
                                      nullptr));
    size_t size = 0;
    ASSERT_TRUE(MeasureUtf8(text, size));
    std::string bytes(size, '\0');
    WriteUtf8(text, reinterpret_cast<uint8_t*>(bytes.data()));
    ASSERT_EQ(bytes, system);
    VUnicodeString back(Str::Sensitive);
    ASSERT_TRUE(ReadUtf8(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size(), back));
    EXPECT_TRUE(back == text && back.IsSensitive());
}

TEST(Utf8Text, RefusesMalformedUtf8AndLeavesTheTextAlone) {
    // no lead, cut pair and triple, overlong "/" twice, surrogate, beyond U+10FFFF, bad follower
    const char* cases[] = {
        "\x80",         "\xC3",         "\xE2\x82",         "\xC0\xAF",
        "\xE0\x80\xAF", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xF8\x88\x80\x80\x80",
        "\xC3\x28"};
    for (const char* bytes : cases) {
        VUnicodeString text(L"unchanged");
        EXPECT_FALSE(ReadUtf8(reinterpret_cast<const uint8_t*>(bytes), std::strlen(bytes), text) ||
                     text != L"unchanged")
            << EncodeHex(reinterpret_cast<const uint8_t*>(bytes), std::strlen(bytes));
    }
}

TEST(HexDigits, EitherCaseIsReadAndAnythingElseIsRefusedWithTheBytesKept) {
    VBasicBuffer bytes(4);
    ASSERT_TRUE(DecodeHexDigits(L"09aF", 4, bytes));
    EXPECT_EQ(EncodeHex(bytes.GetData(), bytes.GetLength()), "09af");
    for (const wchar_t* bad : {L"0g", L"G0", L"0/", L":0", L"@0", L"0`", L"abc"}) {
        EXPECT_FALSE(DecodeHexDigits(bad, std::wcslen(bad), bytes) ||
                     EncodeHex(bytes.GetData(), bytes.GetLength()) != "09af")
            << bad;
    }
}
