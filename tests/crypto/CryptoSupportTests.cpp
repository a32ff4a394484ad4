// The pieces under the protected forms: the wiped byte buffer, the system's
// random source and strict UTF-8 (checked against the system's converter).
// The hexadecimal digits are exercised through the protected forms' tests.

#include <gtest/gtest.h>

#include <windows.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <random>

#include "CryptoTestVectors.h"
#include "RegistrySandbox.h"
#include "Utf8Text.h"
#include "VBasicBuffer.h"
#include "VCapiRandomSource.h"

TEST(BasicBufferTest, AppendsUpToItsTargetSizeAndClearingWipesTheBytes) {
    VBasicBuffer buffer(8);
    EXPECT_TRUE(buffer.Append("abcde", 5));
    EXPECT_FALSE(buffer.Append("wxyz", 4));  // 9 bytes would not fit: nothing appended
    EXPECT_EQ(buffer.GetLength(), 5u);
    ASSERT_EQ(buffer.Extend(3), buffer.GetData() + 5);
    EXPECT_EQ(buffer.Extend(1), nullptr);
    EXPECT_EQ(std::memcmp(buffer.GetData(), "abcde\0\0\0", 8), 0);

    const uint8_t* data = buffer.GetData();
    buffer.Clear();
    EXPECT_EQ(buffer.GetLength(), 0u);
    EXPECT_EQ(buffer.GetData(), data);
    EXPECT_EQ(std::memcmp(data, "\0\0\0\0\0\0\0\0", 8), 0) << "the old bytes are wiped";
}

TEST(CapiRandomSourceTest, AcquiresTheProviderAndGivesFreshBytes) {
    VRefPtr<VCapiRandomSource> source = VRefPtr<VCapiRandomSource>::Adopt(new VCapiRandomSource());
    ASSERT_EQ(source->GetAcquireError(), static_cast<DWORD>(ERROR_SUCCESS));
    std::vector<uint8_t> first(4096), second(4096);
    ASSERT_TRUE(source->Fill(first.data(), first.size()));
    ASSERT_TRUE(source->FillDirect(second.data(), static_cast<uint32_t>(second.size())));
    EXPECT_NE(first, second);
    // 4096 random bytes hit nearly every byte value; a source that repeats a
    // short pattern or leaves the buffer mostly untouched would not.
    std::array<int, 256> seen{};
    for (uint8_t byte : first) ++seen[byte];
    EXPECT_GT(std::count_if(seen.begin(), seen.end(), [](int n) { return n > 0; }), 240);
    EXPECT_LT(*std::max_element(seen.begin(), seen.end()), 45);  // about 16 expected
}

TEST(CapiRandomSourceTest, WithoutAProviderEveryFillFailsWithTheAcquisitionError) {
    // With an empty HKEY_LOCAL_MACHINE the system finds no provider type.
    RegistrySandbox sandbox;
    DWORD acquireError;
    VRefPtr<VCapiRandomSource> source;
    {
        PredefinedKeyRedirect emptyMachine(HKEY_LOCAL_MACHINE, sandbox, L"Machine");
        source = VRefPtr<VCapiRandomSource>::Adopt(new VCapiRandomSource());
        acquireError = source->GetAcquireError();
    }
    ASSERT_NE(acquireError, static_cast<DWORD>(ERROR_SUCCESS));
    uint8_t bytes[16] = {};
    SetLastError(ERROR_SUCCESS);
    EXPECT_FALSE(source->Fill(bytes, sizeof bytes));
    EXPECT_EQ(GetLastError(), acquireError);
    SetLastError(ERROR_SUCCESS);
    EXPECT_FALSE(source->FillDirect(bytes, sizeof bytes));
    EXPECT_EQ(GetLastError(), acquireError);
}

namespace {

// The system's converter as the oracle for well-formed text.
std::string SystemUtf8(const VUnicodeString& text) {
    const int length = static_cast<int>(text.GetLength());
    if (length == 0) return {};
    const int needed =
        WideCharToMultiByte(CP_UTF8, 0, text.c_str(), length, nullptr, 0, nullptr, nullptr);
    std::string bytes(static_cast<size_t>(needed), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.c_str(), length, bytes.data(), needed, nullptr, nullptr);
    return bytes;
}

std::string OurUtf8(const VUnicodeString& text) {
    size_t size = 0;
    EXPECT_TRUE(MeasureUtf8(text, size));
    std::string bytes(size, '\0');
    WriteUtf8(text, reinterpret_cast<uint8_t*>(bytes.data()));
    return bytes;
}

bool Reads(const std::string& bytes, VUnicodeString& text) {
    return ReadUtf8(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size(), text);
}

}  // namespace

TEST(Utf8TextTest, AgreesWithTheSystemConverterOnRandomWellFormedText) {
    std::mt19937 random(20240611);
    // Code points from every UTF-8 length class, surrogates excluded.
    std::uniform_int_distribution<uint32_t> pick(0, 3);
    for (int round = 0; round < 300; ++round) {
        VUnicodeString text;
        const int length = static_cast<int>(random() % 40);
        for (int i = 0; i < length; ++i) {
            uint32_t c;
            switch (pick(random)) {
                case 0:
                    c = 1 + random() % 0x7F;
                    break;
                case 1:
                    c = 0x80 + random() % (0x800 - 0x80);
                    break;
                case 2:
                    c = 0x800 + random() % (0x10000 - 0x800 - 0x800);
                    if (c >= 0xD800) c += 0x800;
                    break;
                default:
                    c = 0x10000 + random() % 0x100000;
                    break;
            }
            if (c >= 0x10000) {
                text.Append(static_cast<wchar_t>(0xD800 + ((c - 0x10000) >> 10)));
                text.Append(static_cast<wchar_t>(0xDC00 + ((c - 0x10000) & 0x3FF)));
            } else {
                text.Append(static_cast<wchar_t>(c));
            }
        }
        const std::string bytes = OurUtf8(text);
        ASSERT_EQ(bytes, SystemUtf8(text)) << "round " << round;
        VUnicodeString back(Str::Sensitive);
        ASSERT_TRUE(Reads(bytes, back));
        EXPECT_EQ(back, text);
        EXPECT_TRUE(back.IsSensitive());
    }
}

TEST(Utf8TextTest, RefusesMalformedUtf8AndLeavesTheTextAlone) {
    const char* cases[] = {
        "\x80",              // continuation without a lead
        "\xC3",              // truncated pair
        "\xE2\x82",          // truncated triple
        "\xC0\xAF",          // overlong "/"
        "\xE0\x80\xAF",      // overlong "/"
        "\xED\xA0\x80",      // encoded surrogate D800
        "\xF4\x90\x80\x80",  // beyond U+10FFFF
        "\xF8\x88\x80\x80\x80",
        "ab\xFF"
        "cd",
        "\xC3\x28",  // bad continuation
    };
    for (const char* bytes : cases) {
        VUnicodeString text(L"unchanged");
        EXPECT_FALSE(Reads(bytes, text))
            << EncodeHex(reinterpret_cast<const uint8_t*>(bytes), std::strlen(bytes));
        EXPECT_EQ(text, L"unchanged");
    }
}
