// VTextFile against real files: marks, line ends at and across block edges,
// untranslatable bytes, the exact bytes written in each encoding, and a
// round trip of random text through every encoding.
#include <gtest/gtest.h>

#include <atomic>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "TempFolder.h"
#include "VTextFile.h"

namespace {

constexpr DWORD ReadWrite = GENERIC_READ | GENERIC_WRITE;
constexpr size_t Block = VTextFile::BlockSize;

std::vector<std::wstring> Lines(std::initializer_list<const wchar_t*> lines) { return {lines.begin(), lines.end()}; }

class TextFileTest : public ::testing::Test {
protected:
    VUnicodeString Make(const std::string& bytes) {
        const VUnicodeString name = folder_ / (L"f" + std::to_wstring(count_++) + L".txt").c_str();
        EXPECT_TRUE(WriteWholeFile(name, bytes));
        return name;
    }

    // Every line of a file with the given bytes; error receives the last
    // error of the read that ended it.
    std::vector<std::wstring> ReadAll(const std::string& bytes, VTextEncoding* encoding = nullptr,
                                      DWORD* error = nullptr, bool blockLocking = true) {
        VTextFile file;
        file.SetBlockLocking(blockLocking);
        EXPECT_TRUE(file.Open(Make(bytes), GENERIC_READ, OPEN_EXISTING));
        std::vector<std::wstring> lines;
        VUnicodeString line;
        while (file.ReadLine(line)) lines.emplace_back(line.c_str(), line.GetLength());
        if (error) *error = GetLastError();
        if (encoding) *encoding = file.GetEncoding();
        return lines;
    }

    // The bytes that writing text in encoding produces after a truncation.
    std::string Written(VTextEncoding encoding, const std::wstring& text, bool* ok = nullptr) {
        const VUnicodeString name = folder_ / (L"w" + std::to_wstring(count_++) + L".txt").c_str();
        {
            VTextFile file;
            EXPECT_TRUE(file.Open(name, ReadWrite, CREATE_NEW));
            file.SetEncoding(encoding);
            const bool written = file.Write(text.c_str(), text.size()) && file.Flush();
            if (ok) *ok = written;
        }
        return ReadWholeFile(name);
    }

    TempFolder folder_;
    int count_ = 0;
};

TEST_F(TextFileTest, TheMarkDecidesTheEncodingAndIsNotPartOfTheFirstLine) {
    VTextEncoding encoding;
    EXPECT_EQ(Lines({L"a\u00e9", L"b"}), ReadAll("\xEF\xBB\xBF" "a\xC3\xA9\r\nb", &encoding));
    EXPECT_EQ(TextEncodingUtf8, encoding);
    EXPECT_EQ(Lines({L"a\u00e9", L"b"}), ReadAll(std::string("\xFF\xFE" "a\0\xE9\0\n\0b\0", 10), &encoding));
    EXPECT_EQ(TextEncodingUtf16LE, encoding);
    EXPECT_EQ(Lines({L"a\u00e9", L"b"}), ReadAll(std::string("\xFE\xFF\0a\0\xE9\0\r\0b", 10), &encoding));
    EXPECT_EQ(TextEncodingUtf16BE, encoding);
    EXPECT_EQ(Lines({L"abc"}), ReadAll("abc", &encoding));
    EXPECT_EQ(TextEncodingAnsi, encoding);
}

TEST_F(TextFileTest, HalfAMarkIsAnsiTextFromTheFirstByte) {
    VTextEncoding encoding;
    const std::vector<std::wstring> lines = ReadAll("\xEF\xBBx", &encoding);
    EXPECT_EQ(TextEncodingAnsi, encoding);
    ASSERT_EQ(1u, lines.size());
    EXPECT_EQ(3u, lines[0].size());
    EXPECT_EQ(L'x', lines[0][2]);
}

TEST_F(TextFileTest, AFileOfOnlyAMarkHasNoLines) {
    VTextEncoding encoding;
    DWORD error = 0;
    EXPECT_TRUE(ReadAll("\xFE\xFF", &encoding, &error).empty());
    EXPECT_EQ(TextEncodingUtf16BE, encoding);
    EXPECT_EQ(static_cast<DWORD>(ERROR_HANDLE_EOF), error);
    EXPECT_TRUE(ReadAll("", &encoding, &error).empty());
    EXPECT_EQ(TextEncodingAnsi, encoding);
    EXPECT_EQ(static_cast<DWORD>(ERROR_HANDLE_EOF), error);
}

TEST_F(TextFileTest, AKnownEncodingStillSkipsItsOwnMark) {
    VTextFile file;
    ASSERT_TRUE(file.Open(Make("\xEF\xBB\xBFtext"), GENERIC_READ, OPEN_EXISTING));
    file.SetEncoding(TextEncodingUtf8);
    VUnicodeString line;
    ASSERT_TRUE(file.ReadLine(line));
    EXPECT_EQ(VUnicodeString(L"text"), line);
}

TEST_F(TextFileTest, LinesKeptByTheCallerAreNotOverwrittenByTheNextRead) {
    VTextFile file;
    ASSERT_TRUE(file.Open(Make("long first line\nnext\n\nsensitive"), GENERIC_READ, OPEN_EXISTING));
    VUnicodeString line;
    ASSERT_TRUE(file.ReadLine(line));
    const VUnicodeString kept = line;
    ASSERT_TRUE(file.ReadLine(line));
    EXPECT_EQ(VUnicodeString(L"long first line"), kept);
    EXPECT_EQ(VUnicodeString(L"next"), line);
    ASSERT_TRUE(file.ReadLine(line));
    EXPECT_TRUE(line.IsEmpty());

    VUnicodeString secret(Str::Sensitive);
    ASSERT_TRUE(file.ReadLine(secret));
    EXPECT_EQ(VUnicodeString(L"sensitive"), secret);
    EXPECT_TRUE(secret.IsSensitive()) << "the caller's string keeps its mark";
}

TEST_F(TextFileTest, LinesEndAtCrAtLfAndAtCrLf) {
    EXPECT_EQ(Lines({L"a", L"b", L"c", L"d", L"", L"e"}), ReadAll("a\rb\nc\r\nd\r\r\ne"));
    EXPECT_EQ(Lines({L"", L"", L"", L"x"}), ReadAll("\n\r\n\rx\r\n"));
    EXPECT_EQ(Lines({L"x", L""}), ReadAll("x\n\n"));
    EXPECT_EQ(Lines({L"x", L""}), ReadAll("x\n\r"));
}

TEST_F(TextFileTest, AFinalCarriageReturnEndsTheLastLineOnce) {
    DWORD error = 0;
    EXPECT_EQ(Lines({L"one", L"last"}), ReadAll("one\r\nlast\r", nullptr, &error));
    EXPECT_EQ(static_cast<DWORD>(ERROR_HANDLE_EOF), error);
    EXPECT_EQ(Lines({L"last"}), ReadAll("last"));
}

TEST_F(TextFileTest, CrLfSplitByTheBlockEdgeEndsOneLine) {
    for (bool locking : {true, false}) {
        const std::string first(Block - 1, 'a');
        EXPECT_EQ(std::vector<std::wstring>({std::wstring(Block - 1, L'a'), L"b"}),
                  ReadAll(first + "\r\nb", nullptr, nullptr, locking));
        // The CR is the last byte of the first block and the file ends there.
        EXPECT_EQ(std::vector<std::wstring>({std::wstring(Block - 1, L'a')}), ReadAll(first + "\r"));
        // A line of exactly one block, its LF first in the next.
        EXPECT_EQ(std::vector<std::wstring>({std::wstring(Block, L'a'), L""}),
                  ReadAll(std::string(Block, 'a') + "\n\n"));
    }
}

TEST_F(TextFileTest, Utf8SequencesSplitByTheBlockEdgeStayWhole) {
    const std::string mark = "\xEF\xBB\xBF";
    const std::string grin = "\xF0\x9F\x98\x80";  // U+1F600, a surrogate pair in UTF-16
    const std::string euro = "\xE2\x82\xAC";
    for (size_t before = 1; before <= 3; ++before) {
        const size_t filler = Block - mark.size() - before;
        const std::vector<std::wstring> lines = ReadAll(mark + std::string(filler, 'x') + grin + euro + "\nz");
        ASSERT_EQ(2u, lines.size()) << before;
        EXPECT_EQ(std::wstring(filler, L'x') + L"\U0001F600\u20AC", lines[0]) << before;
        EXPECT_EQ(L"z", lines[1]);
    }
}

TEST_F(TextFileTest, Utf16PairsSplitByTheBlockEdgeStayWhole) {
    // Mark, then units up to the last one of the block: the pair straddles the edge.
    std::string bytes = "\xFF\xFE";
    const size_t units = (Block - 2) / 2 - 1;
    for (size_t i = 0; i < units; ++i) bytes += std::string("y\0", 2);
    bytes += std::string("\x3D\xD8\x00\xDE\r\0\n\0", 8);
    const std::vector<std::wstring> lines = ReadAll(bytes);
    ASSERT_EQ(1u, lines.size());
    EXPECT_EQ(std::wstring(units, L'y') + L"\U0001F600", lines[0]);
}

TEST_F(TextFileTest, ALineLongerThanSeveralBlocksIsAssembledWhole) {
    std::string text;
    std::wstring expected;
    for (size_t i = 0; i < 3 * Block + 17; ++i) {
        text += static_cast<char>('a' + i % 26);
        expected += static_cast<wchar_t>(L'a' + i % 26);
    }
    EXPECT_EQ(std::vector<std::wstring>({L"first", expected, L"last"}), ReadAll("first\n" + text + "\r\nlast"));
}

TEST_F(TextFileTest, UntranslatableBytesStopReadingAfterThePartialLine) {
    DWORD error = 0;
    EXPECT_EQ(Lines({L"ok", L"ab"}), ReadAll("\xEF\xBB\xBFok\r\nab\xFF" "cd\r\nmore", nullptr, &error));
    EXPECT_EQ(static_cast<DWORD>(ERROR_NO_UNICODE_TRANSLATION), error);

    // An encoded surrogate, and a sequence cut off by the end of the file.
    EXPECT_EQ(Lines({L"s"}), ReadAll("\xEF\xBB\xBFs\xED\xA0\x80t", nullptr, &error));
    EXPECT_EQ(static_cast<DWORD>(ERROR_NO_UNICODE_TRANSLATION), error);
    EXPECT_EQ(Lines({L"x", L"y"}), ReadAll("\xEF\xBB\xBFx\ny\xE2\x82", nullptr, &error));
    EXPECT_EQ(static_cast<DWORD>(ERROR_NO_UNICODE_TRANSLATION), error);

    // Bad bytes at the start of a line: the empty partial line is not delivered.
    EXPECT_EQ(Lines({L"x"}), ReadAll("\xEF\xBB\xBFx\n\xC0\xAF", nullptr, &error));
    EXPECT_EQ(static_cast<DWORD>(ERROR_NO_UNICODE_TRANSLATION), error);

    // Half a UTF-16 unit at the end.
    EXPECT_EQ(Lines({L"ab"}), ReadAll(std::string("\xFF\xFE" "a\0b\0c", 7), nullptr, &error));
    EXPECT_EQ(static_cast<DWORD>(ERROR_NO_UNICODE_TRANSLATION), error);
}

TEST_F(TextFileTest, UntranslatableBytesInALaterBlockKeepEverythingBefore) {
    const std::string line(Block + 100, 'q');
    DWORD error = 0;
    const std::vector<std::wstring> lines =
        ReadAll("\xEF\xBB\xBFhead\n" + line + "tail\xF8rest\nnever", nullptr, &error);
    EXPECT_EQ(std::vector<std::wstring>({L"head", std::wstring(line.begin(), line.end()) + L"tail"}), lines);
    EXPECT_EQ(static_cast<DWORD>(ERROR_NO_UNICODE_TRANSLATION), error);
}

TEST_F(TextFileTest, ReadingStaysEndedAfterAFalse) {
    VTextFile file;
    ASSERT_TRUE(file.Open(Make("\xEF\xBB\xBF" "a\xFF\nb"), GENERIC_READ, OPEN_EXISTING));
    VUnicodeString line;
    EXPECT_TRUE(file.ReadLine(line));
    EXPECT_FALSE(file.ReadLine(line));
    EXPECT_FALSE(file.ReadLine(line));
    EXPECT_EQ(static_cast<DWORD>(ERROR_NO_UNICODE_TRANSLATION), GetLastError());
    // Seeking back starts over.
    ASSERT_TRUE(file.Seek(0, FILE_BEGIN));
    ASSERT_TRUE(file.ReadLine(line));
    EXPECT_EQ(VUnicodeString(L"a"), line);
}

TEST_F(TextFileTest, WritingGivesTheExactBytesOfEachEncoding) {
    const std::wstring text = L"A\u00e9\u20ac\U0001F600\r\n";
    EXPECT_EQ("A\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80\r\n", Written(TextEncodingUtf8, text));
    EXPECT_EQ(std::string("A\0\xE9\0\xAC\x20\x3D\xD8\x00\xDE\r\0\n\0", 14), Written(TextEncodingUtf16LE, text));
    EXPECT_EQ(std::string("\0A\0\xE9\x20\xAC\xD8\x3D\xDE\x00\0\r\0\n", 14), Written(TextEncodingUtf16BE, text));
}

TEST_F(TextFileTest, AnsiWritingUsesTheSystemCodePageAndRefusesWhatItLacks) {
    if (GetACP() != 1252) GTEST_SKIP() << "the expected bytes are those of code page 1252";
    EXPECT_EQ("A\xE9\x80\r\n", Written(TextEncodingAnsi, L"A\u00e9\u20ac\r\n"));
    bool ok = true;
    EXPECT_EQ("", Written(TextEncodingAnsi, L"keep a\u0101 out", &ok)) << "no best-fit 'a' for a-macron";
    EXPECT_FALSE(ok);
    EXPECT_EQ(Lines({L"A\u00e9\u20ac"}), ReadAll("A\xE9\x80\r\n"));
}

TEST_F(TextFileTest, WritingFailsForWhatTheEncodingCannotHold) {
    VTextFile file;
    ASSERT_TRUE(file.Open(folder_ / L"refused.txt", ReadWrite, CREATE_NEW));
    EXPECT_FALSE(file.Write(VUnicodeString(L"no encoding yet")));
    EXPECT_EQ(static_cast<DWORD>(ERROR_NOT_SUPPORTED), GetLastError());

    file.SetEncoding(TextEncodingUtf8);
    const wchar_t lone[] = {L'a', 0xD800, L'b'};
    EXPECT_FALSE(file.Write(lone, 3));
    EXPECT_EQ(static_cast<DWORD>(ERROR_NO_UNICODE_TRANSLATION), GetLastError());
    ASSERT_TRUE(file.Write(VUnicodeString(L"kept")));
    ASSERT_TRUE(file.Flush());
    EXPECT_EQ("kept", ReadWholeFile(folder_ / L"refused.txt")) << "the refused text left nothing behind";

    // UTF-16 carries a lone surrogate as it is.
    file.SetEncoding(TextEncodingUtf16LE);
    EXPECT_TRUE(file.Write(lone, 3));
}

TEST_F(TextFileTest, TruncateCutsAndWritesTheMarkOfTheEncoding) {
    const VUnicodeString name = Make("old contents that must go");
    VTextFile file;
    ASSERT_TRUE(file.Open(name, ReadWrite, OPEN_EXISTING));
    file.SetEncoding(TextEncodingUtf8);
    ASSERT_TRUE(file.Truncate(0));
    EXPECT_EQ("\xEF\xBB\xBF", ReadWholeFile(name));
    ASSERT_TRUE(file.Write(VUnicodeString(L"x\r\n")));
    ASSERT_TRUE(file.Flush());
    EXPECT_EQ("\xEF\xBB\xBFx\r\n", ReadWholeFile(name));

    file.SetEncoding(TextEncodingUtf16BE);
    ASSERT_TRUE(file.Truncate(0));
    EXPECT_EQ("\xFE\xFF", ReadWholeFile(name));
    file.SetEncoding(TextEncodingAnsi);
    ASSERT_TRUE(file.Truncate(0));
    EXPECT_EQ("", ReadWholeFile(name));
    file.SetEncoding(TextEncodingUnknown);
    ASSERT_TRUE(file.Truncate(0));
    EXPECT_EQ("\xFF\xFE", ReadWholeFile(name)) << "UTF-16 LE when no encoding was set";
    EXPECT_EQ(TextEncodingUtf16LE, file.GetEncoding());
}

TEST_F(TextFileTest, TextWrittenUnderALockIsInTheFileWhenTheLockIsReleased) {
    const VUnicodeString name = folder_ / L"locked.ini";
    VTextFile file;
    file.SetShareMode(FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE);
    file.SetBlockLocking(false);
    ASSERT_TRUE(file.Open(name, ReadWrite, CREATE_NEW));
    file.SetEncoding(TextEncodingUtf8);
    ASSERT_TRUE(file.Lock(0, 4, true));
    ASSERT_TRUE(file.Truncate(0));
    ASSERT_TRUE(file.Write(VUnicodeString(L"D:\"Port\"=00000016\r\n")));
    ASSERT_TRUE(file.Unlock(0, 4));
    EXPECT_EQ("\xEF\xBB\xBF" "D:\"Port\"=00000016\r\n", ReadWholeFile(name));
}

TEST_F(TextFileTest, BlockLockingMakesAReaderWaitForAWriterOfTheBlock) {
    const VUnicodeString name = Make("first\r\nsecond\r\n");
    VFile writer;
    writer.SetShareMode(FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE);
    ASSERT_TRUE(writer.Open(name, ReadWrite, OPEN_EXISTING));
    ASSERT_TRUE(writer.Lock(10, 1, true));

    VTextFile reader;
    reader.SetShareMode(FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE);
    ASSERT_TRUE(reader.Open(name, GENERIC_READ, OPEN_EXISTING));
    std::atomic<bool> done{false};
    VUnicodeString line;
    std::thread thread([&] {
        reader.ReadLine(line);
        done = true;
    });
    Sleep(300);
    EXPECT_FALSE(done) << "the reader's shared lock of its block waits for the writer";
    ASSERT_TRUE(writer.Unlock(10, 1));
    thread.join();
    EXPECT_EQ(VUnicodeString(L"first"), line);
}

// Random lines of every kind of character, joined with random line ends,
// written in each encoding and read back, across many block edges.
TEST_F(TextFileTest, RandomTextSurvivesWritingAndReadingInEveryEncoding) {
    std::mt19937 random(20240611);
    const wchar_t alphabet[] = L"az09 =\"\t\u00e9\u00ff\u0100\u20ac\u4e2d\ufffd";
    for (VTextEncoding encoding : {TextEncodingUtf8, TextEncodingUtf16LE, TextEncodingUtf16BE}) {
        std::vector<std::wstring> lines(1500);
        for (std::wstring& line : lines) {
            const size_t length = random() % 3 == 0 ? random() % 5 : random() % 120;
            for (size_t i = 0; i < length; ++i) {
                if (random() % 17 == 0) line += L"\U0001F600";
                else line += alphabet[random() % (sizeof alphabet / sizeof alphabet[0] - 1)];
            }
        }
        const VUnicodeString name = folder_ / (L"round" + std::to_wstring(encoding) + L".txt").c_str();
        {
            VTextFile file;
            ASSERT_TRUE(file.Open(name, ReadWrite, CREATE_NEW));
            file.SetEncoding(encoding);
            ASSERT_TRUE(file.Truncate(0));
            for (size_t i = 0; i < lines.size(); ++i) {
                // A CR before an empty line ended by LF would read as CR LF.
                const bool nextEmpty = i + 1 < lines.size() && lines[i + 1].empty();
                const wchar_t* ends[] = {L"\r\n", L"\n", L"\r"};
                const wchar_t* end = ends[random() % (nextEmpty ? 2 : 3)];
                if (i + 1 == lines.size() && !lines[i].empty() && random() % 2) end = L"";
                ASSERT_TRUE(file.Write(VUnicodeString(lines[i].c_str()) + end));
            }
            ASSERT_TRUE(file.Flush());
        }
        VTextFile file;
        file.SetBlockLocking(encoding != TextEncodingUtf8);
        ASSERT_TRUE(file.Open(name, GENERIC_READ, OPEN_EXISTING));
        std::vector<std::wstring> read;
        VUnicodeString line;
        while (file.ReadLine(line)) read.emplace_back(line.c_str(), line.GetLength());
        EXPECT_EQ(static_cast<DWORD>(ERROR_HANDLE_EOF), GetLastError());
        EXPECT_EQ(encoding, file.GetEncoding());
        EXPECT_EQ(lines, read) << "encoding " << encoding;
    }
}

}  // namespace
