// Strings: the block layout, sharing, sensitivity and the text operations.
#include <gtest/gtest.h>

#include <windows.h>

#include <algorithm>
#include <stdexcept>
#include <thread>
#include <vector>

#include "VString.h"
#include "VStringI.h"

namespace {

// Records every block the strings allocate and free, with the bytes the block
// held at the moment it was given back.
struct BlockRecorder {
    struct Released {
        std::vector<unsigned char> bytes;
        size_t heapSize;
    };
    static inline std::vector<size_t> allocations;
    static inline std::vector<Released> releases;

    static void* Allocate(size_t bytes) {
        allocations.push_back(bytes);
        return HeapAlloc(GetProcessHeap(), 0, bytes);
    }
    static void Release(void* memory, size_t bytes) {
        const auto* begin = static_cast<const unsigned char*>(memory);
        releases.push_back({std::vector<unsigned char>(begin, begin + bytes), HeapSize(GetProcessHeap(), 0, memory)});
        HeapFree(GetProcessHeap(), 0, memory);
    }
};

class StringBlocks : public ::testing::Test {
protected:
    void SetUp() override {
        BlockRecorder::allocations.clear();
        BlockRecorder::releases.clear();
        previous_ = Str::ReplaceBlockAllocator({BlockRecorder::Allocate, BlockRecorder::Release});
    }
    void TearDown() override { Str::ReplaceBlockAllocator(previous_); }

    static const Str::BlockHeader* HeaderOf(const void* characters) {
        return static_cast<const Str::BlockHeader*>(characters) - 1;
    }
    static bool AllZero(const std::vector<unsigned char>& bytes) {
        return std::all_of(bytes.begin(), bytes.end(), [](unsigned char b) { return b == 0; });
    }

private:
    Str::BlockAllocator previous_{};
};

TEST_F(StringBlocks, WideAndNarrowBlocksHaveExactSizesAndTheDocumentedHeader) {
    {
        VUnicodeString wide(L"hello");
        VString narrow("hello");
        const Str::BlockHeader* header = HeaderOf(wide.c_str());
        EXPECT_EQ(header->capacityBytes, 12u);
        EXPECT_EQ(header->lengthBytes, 10u);
        EXPECT_EQ(header->characters, wide.c_str());
        EXPECT_EQ(header->references, 1);
        EXPECT_EQ(HeaderOf(narrow.c_str())->capacityBytes, 6u);
        EXPECT_EQ(HeaderOf(narrow.c_str())->lengthBytes, 5u);
    }
    EXPECT_EQ(BlockRecorder::allocations, (std::vector<size_t>{32 + 12, 32 + 6}));
    ASSERT_EQ(BlockRecorder::releases.size(), 2u);
    EXPECT_EQ(BlockRecorder::releases[0].heapSize, 32u + 6);  // narrow goes first
    EXPECT_EQ(BlockRecorder::releases[1].heapSize, 32u + 12);
}

TEST_F(StringBlocks, GrowingReallocatesToTheExactLengthEachTime) {
    VUnicodeString text(L"ab");
    text.Append(L"c");
    text.Append(L"de");
    EXPECT_EQ(BlockRecorder::allocations, (std::vector<size_t>{32 + 6, 32 + 8, 32 + 12}));
    EXPECT_EQ(text, L"abcde");
}

TEST_F(StringBlocks, ReleasedSensitiveBlockIsAllZerosHeaderIncluded) {
    {
        VUnicodeString secret(L"correct horse battery staple", Str::Sensitive);
        VString narrowSecret("s3cr3t", Str::Sensitive);
    }
    ASSERT_EQ(BlockRecorder::releases.size(), 2u);
    for (const auto& released : BlockRecorder::releases) {
        EXPECT_EQ(released.bytes.size(), released.heapSize);
        EXPECT_TRUE(AllZero(released.bytes));
    }
}

TEST_F(StringBlocks, ReleasedPlainBlockIsNotWiped) {
    { VUnicodeString plain(L"visible"); }
    ASSERT_EQ(BlockRecorder::releases.size(), 1u);
    const auto& bytes = BlockRecorder::releases[0].bytes;
    EXPECT_FALSE(AllZero(bytes));
    EXPECT_EQ(std::wstring(reinterpret_cast<const wchar_t*>(bytes.data() + 32)), L"visible");
}

TEST_F(StringBlocks, CopiesShareOneBlockUntilAWrite) {
    VUnicodeString original(L"shared");
    VUnicodeString copy = original;
    VUnicodeString third;
    third = copy;
    EXPECT_EQ(copy.c_str(), original.c_str());
    EXPECT_EQ(third.c_str(), original.c_str());
    EXPECT_EQ(HeaderOf(original.c_str())->references, 3);
    EXPECT_EQ(BlockRecorder::allocations.size(), 1u);

    copy.Append(L"!");
    EXPECT_NE(copy.c_str(), original.c_str());
    EXPECT_EQ(original, L"shared");
    EXPECT_EQ(copy, L"shared!");
    EXPECT_EQ(HeaderOf(original.c_str())->references, 2);
}

TEST_F(StringBlocks, AnUnsharedBlockWithRoomIsWrittenInPlace) {
    VUnicodeString text(L"abcdef");
    text.Delete(0, 3);
    const wchar_t* before = text.c_str();
    text.Append(L"x");
    EXPECT_EQ(text.c_str(), before);
    EXPECT_EQ(text, L"defx");
    EXPECT_EQ(BlockRecorder::allocations.size(), 1u);
}

TEST_F(StringBlocks, SensitivityIsStickyOnAssignmentOfPlainText) {
    VUnicodeString plain(L"plain text");
    VUnicodeString secret(L"old secret", Str::Sensitive);
    secret = plain;
    EXPECT_TRUE(secret.IsSensitive());
    EXPECT_NE(secret.c_str(), plain.c_str());
    EXPECT_EQ(secret, plain);
    EXPECT_FALSE(plain.IsSensitive());

    VUnicodeString moved(L"x", Str::Sensitive);
    moved = VUnicodeString(L"moved in");
    EXPECT_TRUE(moved.IsSensitive());
    EXPECT_EQ(moved, L"moved in");

    // Moved away, a sensitive variable stays sensitive: it may be filled again.
    VUnicodeString source(L"moved out", Str::Sensitive);
    VUnicodeString target;
    target = std::move(source);
    EXPECT_TRUE(target.IsSensitive());
    EXPECT_TRUE(source.IsSensitive());
    EXPECT_TRUE(source.IsEmpty());
}

TEST_F(StringBlocks, EmptyStringsAreTheSharedOnesOfTheRightState) {
    VUnicodeString secret(L"secret", Str::Sensitive);
    secret.Empty();
    EXPECT_TRUE(secret.IsSensitive());
    EXPECT_EQ(secret.c_str(), VUnicodeString(Str::Sensitive).c_str());
    EXPECT_EQ(VUnicodeString().c_str(), VUnicodeString(L"").c_str());
    EXPECT_NE(VUnicodeString().c_str(), VUnicodeString(Str::Sensitive).c_str());
    EXPECT_NE(static_cast<const void*>(VString().c_str()), static_cast<const void*>(VUnicodeString().c_str()));

    const VUnicodeString fromSensitiveNarrow{VString("", Str::Sensitive)};
    EXPECT_TRUE(fromSensitiveNarrow.IsSensitive());
    EXPECT_EQ(fromSensitiveNarrow.c_str(), VUnicodeString(Str::Sensitive).c_str());
    EXPECT_TRUE(BlockRecorder::allocations.size() == 1u);  // only "secret" itself
}

TEST_F(StringBlocks, AppendingSensitiveTextMakesThePlainTargetSensitive) {
    VUnicodeString message(L"password: ");
    message.Append(VUnicodeString(L"hunter2", Str::Sensitive));
    EXPECT_TRUE(message.IsSensitive());
    message.Empty();
    EXPECT_TRUE(AllZero(BlockRecorder::releases.back().bytes));

    // Inserting where the text does not reach marks nothing.
    VUnicodeString plain(L"abc");
    EXPECT_THROW(plain.Insert(4, VUnicodeString(L"s", Str::Sensitive)), std::out_of_range);
    EXPECT_FALSE(plain.IsSensitive());
}

// Text appended in the other width passes through copies of its own; none
// may keep it once they are freed.
TEST_F(StringBlocks, AnAppendAcrossWidthsLeavesNoCopyOfTheTextBehind) {
    {
        VUnicodeStringI password(Str::Sensitive);
        IString& asInterface = password;
        asInterface.AppendNarrow("hunter2");
        EXPECT_EQ(password, L"hunter2");
        VStringI narrow(Str::Sensitive);
        static_cast<IString&>(narrow).AppendWide(L"hunter3");
        EXPECT_EQ(narrow, "hunter3");
    }
    ASSERT_FALSE(BlockRecorder::releases.empty());
    for (const auto& released : BlockRecorder::releases) EXPECT_TRUE(AllZero(released.bytes));
}

TEST(Strings, InsertAtTheLengthAppendsAndBeyondThrows) {
    VUnicodeString text(L"abc");
    text.Insert(3, L"d", 1);
    EXPECT_EQ(text, L"abcd");
    text.Insert(0, L"_", 1);
    EXPECT_EQ(text, L"_abcd");
    try {
        text.Insert(6, L"x", 1);
        FAIL() << "inserting beyond the length must throw";
    } catch (const std::out_of_range& error) {
        EXPECT_STREQ(error.what(), "VString");
    }
    EXPECT_THROW(text.GetAt(6), std::out_of_range);
    EXPECT_EQ(text.GetAt(5), L'\0');
}

TEST(Strings, InsertingTextFromItsOwnBlockIsSafe) {
    VUnicodeString text(L"abc");
    text.Insert(1, text.c_str(), 3);
    EXPECT_EQ(text, L"aabcbc");
}

TEST(Strings, ParsesUnsignedDecimalNumbersStrictly) {
    uint64_t value = 7;
    EXPECT_TRUE(VUnicodeString::ParseUnsigned(L"12", value));
    EXPECT_EQ(value, 12u);
    EXPECT_TRUE(VUnicodeString::ParseUnsigned(L"12  \t", value));
    EXPECT_EQ(value, 12u);
    EXPECT_TRUE(VUnicodeString::ParseUnsigned(L"18446744073709551615", value));
    EXPECT_EQ(value, UINT64_MAX);
    EXPECT_TRUE(VString::ParseUnsigned("42", value));
    EXPECT_EQ(value, 42u);
    for (const wchar_t* bad : {L"", L"-1", L"12x", L"18446744073709551616", L"  ", L"x12"})
        EXPECT_FALSE(VUnicodeString::ParseUnsigned(bad, value)) << bad;
    EXPECT_FALSE(VUnicodeString::ParseUnsigned(nullptr, value));
}

TEST(Strings, ConvertsThroughTheAnsiCodePageKeepingSensitivity) {
    const VUnicodeString wide(VString("Caf\xe9", Str::Sensitive));  // 0xE9 is e-acute in code page 1252
    EXPECT_EQ(wide, L"Caf\u00e9");
    EXPECT_TRUE(wide.IsSensitive());
    const VString narrow(VUnicodeString(L"Caf\u00e9"));
    EXPECT_EQ(narrow, "Caf\xe9");
    EXPECT_FALSE(narrow.IsSensitive());
    EXPECT_EQ(narrow.GetLength(), 4u);
}

TEST(Strings, ComparesOverTheShorterLengthThenByLength) {
    EXPECT_LT(VUnicodeString(L"ab").Compare(VUnicodeString(L"abc")), 0);
    EXPECT_GT(VUnicodeString(L"b").Compare(VUnicodeString(L"abc")), 0);
    EXPECT_EQ(VUnicodeString(L"Port").CompareNoCase(VUnicodeString(L"PORT")), 0);
    EXPECT_NE(VUnicodeString(L"Port").Compare(VUnicodeString(L"PORT")), 0);
    EXPECT_LT(VUnicodeString(L"por").CompareNoCase(VUnicodeString(L"PORT")), 0);
    // Embedded zeros count: the length decides, not the terminator.
    EXPECT_NE(VUnicodeString(L"a\0b", 3).Compare(VUnicodeString(L"a")), 0);
    VUnicodeString upper(L"mixed Case 1");
    upper.MakeUpper();
    EXPECT_EQ(upper, L"MIXED CASE 1");
}

TEST(Strings, FormatsWithPositionalInsertsAndPrintf) {
    VUnicodeString text;
    ASSERT_TRUE(text.FormatPositional(L"%2 before %1, 0x%3!08x!, %4!hs!", L"one", L"two", 255u, "narrow"));
    EXPECT_EQ(text, L"two before one, 0x000000ff, narrow");
    ASSERT_TRUE(text.FormatPrintf(32, L"%ls=%d", L"n", -5));
    EXPECT_EQ(text, L"n=-5");
    EXPECT_FALSE(text.FormatPrintf(4, L"%ls", L"too long"));
    EXPECT_EQ(text, L"n=-5");
}

TEST(Strings, SubstringsSearchesAndTrimming) {
    VUnicodeString text(L"  key = value \t", Str::Sensitive);
    text.Trim();
    EXPECT_EQ(text, L"key = value");
    EXPECT_TRUE(text.IsSensitive());
    EXPECT_EQ(text.Find(L'='), 4u);
    EXPECT_EQ(text.Find(L"value"), 6u);
    EXPECT_EQ(text.Find(L"absent"), VUnicodeString::npos);
    EXPECT_EQ(text.Mid(6), L"value");
    EXPECT_TRUE(text.Mid(6).IsSensitive());
    EXPECT_EQ(text.Left(3), L"key");
    EXPECT_TRUE(text.StartsWith(L"key"));
    EXPECT_TRUE(text.EndsWith(L"value"));
    EXPECT_FALSE(text.EndsWith(L"key = value!"));
    EXPECT_THROW(text.Mid(12), std::out_of_range);
}

TEST(Strings, CopiesMayBeReleasedOnManyThreads) {
    const VUnicodeString shared(L"shared between threads");
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&shared] {
            for (int i = 0; i < 20000; ++i) {
                VUnicodeString copy = shared;
                VUnicodeString another(copy);
            }
        });
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(reinterpret_cast<const Str::BlockHeader*>(shared.c_str())[-1].references, 1);
    EXPECT_EQ(shared, L"shared between threads");
}

TEST(StringInterface, SetReplacesTextAndStateAndConvertsWidths) {
    VUnicodeStringI wide(L"old", Str::Sensitive);
    IString& asInterface = wide;
    asInterface.SetNarrow("narrow", Str::NotSensitive);
    EXPECT_EQ(wide, L"narrow");
    EXPECT_FALSE(wide.IsSensitive());
    asInterface.SetWide(L"secret!", 6, Str::Sensitive);
    EXPECT_EQ(wide, L"secret");
    EXPECT_TRUE(wide.IsSensitive());
    asInterface.AppendNarrow("-n");
    asInterface.AppendWide(L"-w", 1);
    EXPECT_EQ(wide, L"secret-n-");
    EXPECT_FALSE(asInterface.IsEmptyString());

    VStringI narrow;
    asInterface.CopyInto(narrow);
    EXPECT_EQ(narrow, "secret-n-");
    EXPECT_TRUE(narrow.IsSensitive());
    narrow.SetWide(nullptr, Str::NotSensitive);
    EXPECT_TRUE(narrow.IsEmptyString());
}

}  // namespace
