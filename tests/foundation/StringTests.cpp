// Strings: the block layout, sharing, sensitivity and the text operations.
#include <gtest/gtest.h>

#include <windows.h>

#include <stdexcept>
#include <thread>
#include <tuple>
#include <vector>

#include "BlockRecorder.h"
#include "VString.h"
#include "VStringI.h"

namespace {

const Str::BlockHeader* HeaderOf(const void* characters) {
    return static_cast<const Str::BlockHeader*>(characters) - 1;
}

class StringBlocks : public ::testing::Test {
protected:
    const BlockRecorder recorder_;
    const std::vector<size_t>& allocations = BlockRecorder::allocations;
    const std::vector<BlockRecorder::Released>& releases = BlockRecorder::releases;
};

TEST_F(StringBlocks, BlocksHaveExactSizesTheDocumentedHeaderAndGrowToTheExactLength) {
    {
        VUnicodeString wide(L"hello");
        VString narrow("hello");
        const Str::BlockHeader* header = HeaderOf(wide.c_str());
        EXPECT_TRUE(header->capacityBytes == 12 && header->lengthBytes == 10 &&
                    header->characters == wide.c_str() && header->references == 1);
        EXPECT_TRUE(HeaderOf(narrow.c_str())->capacityBytes == 6 &&
                    HeaderOf(narrow.c_str())->lengthBytes == 5);
        wide.Delete(0, 1);
        wide.Append(L"!");  // unshared, with room: written in place
        EXPECT_EQ(HeaderOf(wide.c_str()), header);
        wide.Append(L"de");
        EXPECT_EQ(wide, L"ello!de");
    }
    EXPECT_EQ(allocations, (std::vector<size_t>{32 + 12, 32 + 6, 32 + 16}));
    ASSERT_EQ(releases.size(), 3u);
    EXPECT_EQ(releases[0].heapSize, 32u + 12) << "the outgrown block";
    EXPECT_EQ(releases[1].heapSize, 32u + 6) << "narrow goes first";
}

TEST_F(StringBlocks, OnlySensitiveBlocksAreAllZerosWhenReleasedHeaderIncluded) {
    {
        VUnicodeString secret(L"correct horse battery staple", Str::Sensitive);
        VString narrowSecret("s3cr3t", Str::Sensitive);
        VUnicodeString plain(L"visible");
    }
    ASSERT_EQ(releases.size(), 3u);
    EXPECT_EQ(std::wstring(reinterpret_cast<const wchar_t*>(releases[0].bytes.data() + 32)),
              L"visible");
    for (size_t i = 1; i < 3; ++i)
        EXPECT_TRUE(releases[i].bytes.size() == releases[i].heapSize && releases[i].IsWiped());
}

TEST_F(StringBlocks, CopiesShareOneBlockUntilAWrite) {
    VUnicodeString original(L"shared");
    VUnicodeString copy = original;
    VUnicodeString third;
    third = copy;
    EXPECT_TRUE(copy.c_str() == original.c_str() && third.c_str() == original.c_str() &&
                HeaderOf(original.c_str())->references == 3);
    copy.Append(L"!");
    EXPECT_TRUE(original == L"shared" && copy == L"shared!" &&
                HeaderOf(original.c_str())->references == 2 && allocations.size() == 2u);
}

TEST_F(StringBlocks, SensitivityIsStickyAndSpreadsToWhatSensitiveTextIsAppendedTo) {
    VUnicodeString plain(L"plain text");
    VUnicodeString secret(L"old secret", Str::Sensitive);
    secret = plain;
    EXPECT_TRUE(secret.IsSensitive() && secret.c_str() != plain.c_str() && secret == plain);
    EXPECT_FALSE(plain.IsSensitive());
    secret = VUnicodeString(L"moved in");
    EXPECT_TRUE(secret.IsSensitive() && secret == L"moved in");
    VUnicodeString target;
    target = std::move(secret);
    EXPECT_TRUE(target.IsSensitive() && secret.IsSensitive() && secret.IsEmpty());
    target.Empty();
    EXPECT_TRUE(target.IsSensitive() && VUnicodeString(VString("", Str::Sensitive)).IsSensitive());
    const size_t allocated = allocations.size();
    EXPECT_TRUE(VUnicodeString(L"").c_str() == VUnicodeString().c_str() &&
                allocations.size() == allocated)
        << "empty strings share one block";

    VUnicodeString message(L"password: ");
    message.Append(VUnicodeString(L"hunter2", Str::Sensitive));
    EXPECT_TRUE(message.IsSensitive());
    message.Empty();
    EXPECT_TRUE(releases.back().IsWiped());
    EXPECT_THROW(plain.Insert(11, VUnicodeString(L"s", Str::Sensitive)), std::out_of_range);
    EXPECT_FALSE(plain.IsSensitive()) << "a failed insert marks nothing";
}

TEST_F(StringBlocks, TheInterfaceConvertsWidthsAndLeavesNoCopyOfTheTextBehind) {
    {
        VUnicodeStringI password(Str::Sensitive);
        static_cast<IString&>(password).AppendNarrow("hunter2");
        VStringI narrow(Str::Sensitive);
        static_cast<IString&>(narrow).AppendWide(L"hunter3");
        EXPECT_TRUE(password == L"hunter2" && narrow == "hunter3");
    }
    ASSERT_FALSE(releases.empty());
    for (const auto& released : releases) EXPECT_TRUE(released.IsWiped());

    VUnicodeStringI wide(L"old", Str::Sensitive);
    IString& asInterface = wide;
    asInterface.SetNarrow("narrow", Str::NotSensitive);
    EXPECT_TRUE(wide == L"narrow" && !wide.IsSensitive());
    asInterface.SetWide(L"secret!", 6, Str::Sensitive);
    asInterface.AppendNarrow("-n");
    asInterface.AppendWide(L"-w", 1);
    EXPECT_TRUE(wide == L"secret-n-" && wide.IsSensitive() && !asInterface.IsEmptyString());
    VStringI narrow;
    asInterface.CopyInto(narrow);
    EXPECT_TRUE(narrow == "secret-n-" && narrow.IsSensitive());
    narrow.SetWide(nullptr, Str::NotSensitive);
    EXPECT_TRUE(narrow.IsEmptyString());
}

TEST(Strings, InsertsWithinTheLengthFromAnyTextAndThrowsBeyond) {
    VUnicodeString text(L"abc");
    text.Insert(3, L"d", 1);
    text.Insert(0, L"_", 1);
    text.Insert(2, text.c_str(), 3);  // from its own block
    EXPECT_EQ(text, L"_a_abbcd");
    EXPECT_THROW(text.Insert(9, L"x", 1), std::out_of_range);
    EXPECT_THROW(text.GetAt(9), std::out_of_range);
    EXPECT_EQ(text.GetAt(8), L'\0');
}

TEST(Strings, ParsesUnsignedDecimalNumbersUpToTheirRange) {
    uint64_t value = 0;
    EXPECT_TRUE(VUnicodeString::ParseUnsigned(L"18446744073709551615 ", value) &&
                value == UINT64_MAX);
    EXPECT_FALSE(VUnicodeString::ParseUnsigned(L"18446744073709551616", value) ||
                 VUnicodeString::ParseUnsigned(nullptr, value));
    EXPECT_TRUE(VString::ParseUnsigned("42", value) && value == 42);
}

TEST(Strings, ComparesOverTheShorterLengthThenByLength) {
    const std::tuple<VUnicodeString, VUnicodeString, int, int> cases[] = {
        // signs: exact, no case
        {L"ab", L"abc", -1, -1},
        {L"b", L"abc", 1, 1},
        {L"Port", L"PORT", 1, 0},
        {L"por", L"PORT", 1, -1},
        {VUnicodeString(L"a\0b", 3), L"a", 1, 1}};  // the length decides, not a zero
    const auto sign = [](int n) { return (n > 0) - (n < 0); };
    for (const auto& [a, b, exact, noCase] : cases)
        EXPECT_TRUE(sign(a.Compare(b)) == exact && sign(a.CompareNoCase(b)) == noCase) << a.c_str();
    VUnicodeString upper(L"mixed Case 1");
    upper.MakeUpper();
    EXPECT_EQ(upper, L"MIXED CASE 1");
}

TEST(Strings, ConvertsThroughTheAnsiCodePageAndFormats) {
    const VUnicodeString wide(VString("Caf\xe9", Str::Sensitive));  // e-acute in code page 1252
    EXPECT_TRUE(wide == L"Caf\u00e9" && wide.IsSensitive());
    const VString narrow(VUnicodeString(L"Caf\u00e9"));
    EXPECT_TRUE(narrow == "Caf\xe9" && !narrow.IsSensitive() && narrow.GetLength() == 4);
    VUnicodeString text;
    ASSERT_TRUE(
        text.FormatPositional(L"%2 before %1, 0x%3!08x!, %4!hs!", L"one", L"two", 255u, "narrow"));
    EXPECT_EQ(text, L"two before one, 0x000000ff, narrow");
    ASSERT_TRUE(text.FormatPrintf(32, L"%ls=%d", L"n", -5));
    EXPECT_FALSE(text.FormatPrintf(4, L"%ls", L"too long"));
    EXPECT_EQ(text, L"n=-5");
}

TEST(Strings, SubstringsSearchesAndTrimmingKeepSensitivity) {
    VUnicodeString text(L"  key = value \t", Str::Sensitive);
    text.Trim();
    EXPECT_TRUE(text == L"key = value" && text.IsSensitive());
    EXPECT_TRUE(text.Find(L'=') == 4 && text.Find(L"value") == 6 &&
                text.Find(L"absent") == VUnicodeString::npos);
    EXPECT_TRUE(text.Mid(6) == L"value" && text.Mid(6).IsSensitive() && text.Left(3) == L"key");
    EXPECT_TRUE(text.StartsWith(L"key") && text.EndsWith(L"value") &&
                !text.EndsWith(L"key = value!"));
    EXPECT_THROW(text.Mid(12), std::out_of_range);
}

TEST(Strings, CopiesMayBeReleasedOnManyThreads) {
    const VUnicodeString shared(L"shared between threads");
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&shared] {
            for (int i = 0; i < 20000; ++i) VUnicodeString copy(shared), another(copy);
        });
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(HeaderOf(shared.c_str())->references, 1);
}

}  // namespace
