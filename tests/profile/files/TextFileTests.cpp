// VTextFile against real files: marks, line ends at and across block edges,
// untranslatable bytes, and the exact bytes written in each encoding.
#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "TempFolder.h"
#include "VTextFile.h"

namespace {

using Lines = std::vector<std::wstring>;
constexpr DWORD ReadWrite = GENERIC_READ | GENERIC_WRITE;
constexpr DWORD ShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
constexpr size_t Block = VTextFile::BlockSize;
const std::string Utf8Mark = "\xEF\xBB\xBF";

std::wstring Widen(const std::string& ascii) { return {ascii.begin(), ascii.end()}; }

std::wstring Ansi(const std::string& bytes) {
    std::wstring text(bytes.size(), L'\0');
    text.resize(MultiByteToWideChar(CP_ACP, 0, bytes.data(), static_cast<int>(bytes.size()), text.data(),
                                    static_cast<int>(text.size())));
    return text;
}

class TextFileTest : public ::testing::Test {
protected:
    VUnicodeString Make(const std::string& bytes) {
        const VUnicodeString name = folder_ / (L"f" + std::to_wstring(count_++) + L".txt").c_str();
        EXPECT_TRUE(WriteWholeFile(name, bytes));
        return name;
    }

    static Lines ReadAll(const VUnicodeString& name, VTextEncoding* encoding = nullptr, DWORD* error = nullptr,
                         bool blockLocking = true) {
        VTextFile file;
        file.SetBlockLocking(blockLocking);
        EXPECT_TRUE(file.Open(name, GENERIC_READ, OPEN_EXISTING));
        Lines lines;
        VUnicodeString line;
        while (file.ReadLine(line)) lines.emplace_back(line.c_str(), line.GetLength());
        if (error) *error = GetLastError();
        if (encoding) *encoding = file.GetEncoding();
        return lines;
    }

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

TEST_F(TextFileTest, ReadsLinesByTheMarkAndStopsAtBadBytes) {
    constexpr DWORD Eof = ERROR_HANDLE_EOF;
    constexpr DWORD Bad = ERROR_NO_UNICODE_TRANSLATION;
    const struct {
        std::string bytes;
        Lines lines;
        VTextEncoding encoding;
        DWORD error;
    } cases[] = {
        {Utf8Mark + "a\xC3\xA9\r\nb", {L"a\u00e9", L"b"}, TextEncodingUtf8, Eof},
        {std::string("\xFF\xFE" "a\0\xE9\0\n\0b\0", 10), {L"a\u00e9", L"b"}, TextEncodingUtf16LE, Eof},
        {std::string("\xFE\xFF\0a\0\xE9\0\r\0b", 10), {L"a\u00e9", L"b"}, TextEncodingUtf16BE, Eof},
        {"abc", {L"abc"}, TextEncodingAnsi, Eof},
        {"\xEF\xBBx", {Ansi("\xEF\xBBx")}, TextEncodingAnsi, Eof},  // half a mark is text
        {"\xFE\xFF", {}, TextEncodingUtf16BE, Eof},
        {"", {}, TextEncodingAnsi, Eof},
        {"a\rb\nc\r\nd\r\r\ne", {L"a", L"b", L"c", L"d", L"", L"e"}, TextEncodingAnsi, Eof},
        {"\n\r\n\rx\r\n", {L"", L"", L"", L"x"}, TextEncodingAnsi, Eof},
        {"x\n\n", {L"x", L""}, TextEncodingAnsi, Eof},
        {"one\r\nlast\r", {L"one", L"last"}, TextEncodingAnsi, Eof},
        {Utf8Mark + "ok\r\nab\xFF" "cd\r\nmore", {L"ok", L"ab"}, TextEncodingUtf8, Bad},
        {Utf8Mark + "s\xED\xA0\x80t", {L"s"}, TextEncodingUtf8, Bad},  // an encoded surrogate
        {Utf8Mark + "x\ny\xE2\x82", {L"x", L"y"}, TextEncodingUtf8, Bad},  // cut off by the end
        {Utf8Mark + "x\n\xC0\xAF", {L"x"}, TextEncodingUtf8, Bad},  // an empty partial line is not delivered
        {std::string("\xFF\xFE" "a\0b\0c", 7), {L"ab"}, TextEncodingUtf16LE, Bad},  // half a unit
        {std::string("\xFF\xFE" "a\0\x00\xD8" "b\0\x00\xDC", 10), {L"a\uFFFDb\uFFFD"}, TextEncodingUtf16LE, Eof},
        {std::string("\xFE\xFF" "\xDC\x00\xD8\x00", 6), {L"\uFFFD\uFFFD"}, TextEncodingUtf16BE, Eof},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(::testing::PrintToString(c.bytes));
        VTextEncoding encoding = TextEncodingUnknown;
        DWORD error = 0;
        EXPECT_EQ(c.lines, ReadAll(Make(c.bytes), &encoding, &error));
        EXPECT_EQ(c.encoding, encoding);
        EXPECT_EQ(c.error, error);
    }
}

TEST_F(TextFileTest, LinesKeptByTheCallerAreNotOverwrittenByTheNextRead) {
    VTextFile file;
    ASSERT_TRUE(file.Open(Make("long first line\nnext\nsensitive"), GENERIC_READ, OPEN_EXISTING));
    VUnicodeString line;
    ASSERT_TRUE(file.ReadLine(line));
    const VUnicodeString kept = line;
    ASSERT_TRUE(file.ReadLine(line));
    EXPECT_EQ(VUnicodeString(L"long first line"), kept);
    EXPECT_EQ(VUnicodeString(L"next"), line);

    VUnicodeString secret(Str::Sensitive);
    ASSERT_TRUE(file.ReadLine(secret));
    EXPECT_EQ(VUnicodeString(L"sensitive"), secret);
    EXPECT_TRUE(secret.IsSensitive()) << "the caller's string keeps its mark";
}

TEST_F(TextFileTest, BlockEdgesSplitNothing) {
    const std::string a(Block - 1, 'a');
    const std::wstring wa(Block - 1, L'a');
    std::string longLine;
    for (size_t i = 0; i < 3 * Block + 17; ++i) longLine += static_cast<char>('a' + i % 26);
    std::string utf16 = "\xFF\xFE";  // up to the block's last unit, then a pair across the edge
    const size_t units = (Block - 2) / 2 - 1;
    for (size_t i = 0; i < units; ++i) utf16 += std::string("y\0", 2);
    std::string loneAtEdge = utf16 + std::string("\x3D\xD8z\0", 4);
    utf16 += std::string("\x3D\xD8\x00\xDE\r\0\n\0", 8);
    const std::string q(Block + 100, 'q');

    struct Case {
        const char* what;
        std::string bytes;
        Lines lines;
        DWORD error;
    };
    std::vector<Case> cases = {
        {"CR LF split", a + "\r\nb", {wa, L"b"}, ERROR_HANDLE_EOF},
        {"CR last byte of the file", a + "\r", {wa}, ERROR_HANDLE_EOF},
        {"LF first in the next block", std::string(Block, 'a') + "\n\n", {std::wstring(Block, L'a'), L""},
         ERROR_HANDLE_EOF},
        {"line of several blocks", "first\n" + longLine + "\r\nlast", {L"first", Widen(longLine), L"last"},
         ERROR_HANDLE_EOF},
        {"UTF-16 pair split", utf16, {std::wstring(units, L'y') + L"\U0001F600"}, ERROR_HANDLE_EOF},
        {"lone UTF-16 surrogate last in its block", loneAtEdge, {std::wstring(units, L'y') + L"\uFFFDz"},
         ERROR_HANDLE_EOF},
        {"bad bytes in a later block", Utf8Mark + "head\n" + q + "tail\xF8rest\nnever",
         {L"head", Widen(q) + L"tail"}, ERROR_NO_UNICODE_TRANSLATION},
    };
    for (size_t before = 1; before <= 3; ++before) {
        const size_t filler = Block - Utf8Mark.size() - before;
        cases.push_back({"UTF-8 sequence split",
                         Utf8Mark + std::string(filler, 'x') + "\xF0\x9F\x98\x80\xE2\x82\xAC\nz",
                         {std::wstring(filler, L'x') + L"\U0001F600\u20AC", L"z"}, ERROR_HANDLE_EOF});
    }
    for (bool locking : {true, false}) {
        for (const Case& c : cases) {
            SCOPED_TRACE(std::string(c.what) + (locking ? ", block locking" : ""));
            DWORD error = 0;
            EXPECT_EQ(c.lines, ReadAll(Make(c.bytes), nullptr, &error, locking));
            EXPECT_EQ(c.error, error);
        }
    }
}

TEST_F(TextFileTest, AKnownEncodingSkipsItsMarkAndReadingStaysEndedUntilASeek) {
    VTextFile file;
    ASSERT_TRUE(file.Open(Make(Utf8Mark + "a\xFF\nb"), GENERIC_READ, OPEN_EXISTING));
    file.SetEncoding(TextEncodingUtf8);
    VUnicodeString line;
    for (int pass = 0; pass < 2; ++pass) {
        ASSERT_TRUE(file.ReadLine(line));
        EXPECT_EQ(VUnicodeString(L"a"), line);
        EXPECT_FALSE(file.ReadLine(line));
        EXPECT_FALSE(file.ReadLine(line));
        EXPECT_EQ(static_cast<DWORD>(ERROR_NO_UNICODE_TRANSLATION), GetLastError());
        ASSERT_TRUE(file.Seek(0, FILE_BEGIN));
    }
}

TEST_F(TextFileTest, WritingGivesTheExactBytesOfEachEncoding) {
    const std::wstring text = L"A\u00e9\u20ac\U0001F600\r\n";
    EXPECT_EQ("A\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80\r\n", Written(TextEncodingUtf8, text));
    EXPECT_EQ(std::string("A\0\xE9\0\xAC\x20\x3D\xD8\x00\xDE\r\0\n\0", 14), Written(TextEncodingUtf16LE, text));
    EXPECT_EQ(std::string("\0A\0\xE9\x20\xAC\xD8\x3D\xDE\x00\0\r\0\n", 14), Written(TextEncodingUtf16BE, text));

    if (GetACP() != 1252) GTEST_SKIP() << "the expected ANSI bytes are those of code page 1252";
    EXPECT_EQ("A\xE9\x80\r\n", Written(TextEncodingAnsi, L"A\u00e9\u20ac\r\n"));
    EXPECT_EQ(Lines({L"A\u00e9\u20ac"}), ReadAll(Make("A\xE9\x80\r\n")));
    bool ok = true;
    EXPECT_EQ("", Written(TextEncodingAnsi, L"keep a\u0101 out", &ok)) << "no best-fit 'a' for a-macron";
    EXPECT_FALSE(ok);
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

    file.SetEncoding(TextEncodingUtf16LE);
    EXPECT_TRUE(file.Write(lone, 3)) << "UTF-16 carries a lone surrogate as it is";
}

TEST_F(TextFileTest, TruncateWritesTheMarkOfTheEncodingAndAnUnlockWhatWasWrittenUnderTheLock) {
    const VUnicodeString name = Make("old contents that must go");
    VTextFile file;
    file.SetShareMode(ShareAll);
    file.SetBlockLocking(false);
    ASSERT_TRUE(file.Open(name, ReadWrite, OPEN_EXISTING));
    const struct {
        VTextEncoding encoding;
        std::string mark;
    } cases[] = {
        {TextEncodingUtf8, Utf8Mark}, {TextEncodingUtf16BE, "\xFE\xFF"}, {TextEncodingAnsi, ""},
        {TextEncodingUnknown, "\xFF\xFE"},  // UTF-16 LE when no encoding was set
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.encoding);
        file.SetEncoding(c.encoding);
        ASSERT_TRUE(file.Truncate(0));
        EXPECT_EQ(c.mark, ReadWholeFile(name));
    }
    EXPECT_EQ(TextEncodingUtf16LE, file.GetEncoding());

    file.SetEncoding(TextEncodingUtf8);
    ASSERT_TRUE(file.Lock(0, 4, true));
    ASSERT_TRUE(file.Truncate(0));
    ASSERT_TRUE(file.Write(VUnicodeString(L"D:\"Port\"=00000016\r\n")));
    ASSERT_TRUE(file.Unlock(0, 4));
    EXPECT_EQ(Utf8Mark + "D:\"Port\"=00000016\r\n", ReadWholeFile(name));
}

TEST_F(TextFileTest, BlockLockingMakesAReaderWaitForAWriterOfTheBlock) {
    const VUnicodeString name = Make("first\r\nsecond\r\n");
    VFile writer;
    writer.SetShareMode(ShareAll);
    ASSERT_TRUE(writer.Open(name, ReadWrite, OPEN_EXISTING));
    ASSERT_TRUE(writer.Lock(10, 1, true));

    VTextFile reader;
    reader.SetShareMode(ShareAll);
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

}  // namespace
