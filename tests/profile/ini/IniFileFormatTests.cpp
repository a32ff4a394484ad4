// The values file format against hand-written files: what the reader takes
// and where it stops, and the writer's exact bytes.
#include <gtest/gtest.h>

#include <string>

#include "TestValues.h"
#include "TempFolder.h"
#include "VIniFileKey.h"

namespace {

const std::string Bom = "\xEF\xBB\xBF";
const std::string Before = "D:\"before\"=00000001\r\n";
const std::string After = "\r\nD:\"after\"=00000002\r\n";

class IniFileFormat : public ::testing::Test {
protected:
    VUnicodeString ValuesFile() const { return VIniFileKey::ValuesFilePath(keyFolder_); }
    VUnicodeString PrivateValuesFile() const { return VIniFileKey::ValuesFilePath(privateFolder_); }

    TestValues Load(const std::string& bytes) {
        EXPECT_TRUE(WriteWholeFile(ValuesFile(), bytes));
        VIniFileKey key(keyFolder_, VUnicodeString(), true, nullptr);
        return ReadAllValues(key);
    }

    std::string Save(const std::vector<std::pair<std::wstring, TestValue>>& values) {
        VIniFileKey key(keyFolder_, VUnicodeString(), false, nullptr);
        for (const auto& [name, value] : values) EXPECT_TRUE(StoreValue(key, name, value));
        EXPECT_TRUE(key.Flush()) << key.GetLastErrorParams().GetMessageCode();
        return ReadWholeFile(ValuesFile());
    }

    TempFolder folder_;
    const VUnicodeString keyFolder_ = folder_ / L"Key";
    const VUnicodeString privateFolder_ = folder_ / L"Private\\Key";
};

TEST_F(IniFileFormat, ReadingTakesWellFormedEntriesAndStopsAtTheFirstBrokenOne) {
    std::vector<uint8_t> thirtyThree;
    for (uint8_t byte = 0; byte < 33; ++byte) thirtyThree.push_back(byte);
    const struct {
        const char* what;
        std::string lines;
        bool accepted;
        TestValues held;
    } cases[] = {
        {"header shorter than 5 characters", "S:\"\"", false, {}},
        {"no equals sign", "S:\"a\"", false, {}},
        {"lower-case kind letter", "d:\"x\"=00000001", false, {}},
        {"unknown kind letter", "X:\"x\"=00000001", false, {}},
        {"no colon", "D;\"x\"=00000001", false, {}},
        {"no opening quote", "D:x\"=00000001", false, {}},
        {"no closing quote", "D:\"x=00000001", false, {}},
        {"blank before the equals sign", "D:\"x\" =00000001", false, {}},
        {"dword of 7 digits", "D:\"x\"=0000001", false, {}},
        {"dword of 9 digits", "D:\"x\"=000000001", false, {}},
        {"data line of white space", "B:\"x\"=00000002\r\n  \t \r\n 01 02", false, {}},
        {"lone digit at the end of a data line", "B:\"x\"=00000002\r\n 01 0", false, {}},
        {"non-digit inside a pair", "B:\"x\"=00000002\r\n 01 2g", false, {}},
        {"more bytes than missing on a later line", "B:\"x\"=00000003\r\n 01 02\r\n 03 04", false, {}},
        {"too few data lines (the next header is no data)", "B:\"x\"=00000003\r\n 01 02", false, {}},
        {"string line without its blank", "Z:\"x\"=00000002\r\n a\r\nb", false, {}},
        {"empty string line", "Z:\"x\"=00000001\r\n", false, {}},

        {"empty names of every kind are dropped, data lines included",
         "S:\"\"=text\r\nD:\"\"=00000005\r\nB:\"\"=00000002\r\n 01 02\r\nZ:\"\"=00000001\r\n x", true, {}},
        {"a non-digit counts as 255, weighed by its place", "D:\"x\"=000000g0", true, {{L"x", D(255 * 16)}}},
        {"only the low 32 bits are kept", "D:\"x\"=gggggggg", true, {{L"x", D(0xFFFFFFEF)}}},  // 17 * (2^32 - 1)
        {"digits of either case", "D:\"x\"=ABcdEF01", true, {{L"x", D(0xABCDEF01)}}},
        {"33 bytes split anyhow, pairs of either case",
         "B:\"x\"=00000021\r\n000102\r\n\t03  04\t05\r\n06070809 0A0b0C0d0e0F\r\n"
         " 10 11 12 13 14 15 16 17 18 19 1a 1b 1c 1d 1e 1f 20",
         true, {{L"x", B(thirtyThree)}}},
        {"a byte count of 0 has no data line", "B:\"x\"=00000000", true, {{L"x", B({})}}},
        {"a string count of 0 has no string line", "Z:\"x\"=00000000", true, {{L"x", Z({})}}},
        {"string lines: one blank, then the string as it stands", "Z:\"x\"=00000003\r\n \r\n  a \"b\" = \r\n ",
         true, {{L"x", Z({L"", L" a \"b\" = ", L""})}}},
        {"a string runs verbatim to the line end", "S:\"x\"=a \"quoted\" = value ", true,
         {{L"x", S(L"a \"quoted\" = value ")}}},
        {"an empty string", "S:\"x\"=", true, {{L"x", S(L"")}}},
        {"names hold blanks, colons and equals signs", "S:\"a = b: c\"=d", true, {{L"a = b: c", S(L"d")}}},
        {"a later entry of the same name wins, whatever its kind", "S:\"before\"=again", true,
         {{L"before", S(L"again")}}},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.what);
        TestValues expected{{L"before", D(1)}};
        if (test.accepted) {
            for (const auto& [name, value] : test.held) expected[name] = value;
            expected[L"after"] = D(2);
        }
        EXPECT_EQ(expected, Load(Bom + Before + test.lines + After));
    }
}

const std::wstring Mixed = L"Zo\u00eb \u4e2d \U0001F600";
const std::string Utf8Mixed = "Zo\xC3\xAB \xE4\xB8\xAD \xF0\x9F\x98\x80";

std::string Utf16(const std::wstring& text) {
    std::string bytes = "\xFF\xFE";
    for (wchar_t unit : text)
        bytes += {static_cast<char>(unit & 0xFF), static_cast<char>(unit >> 8)};
    return bytes;
}

std::wstring Ansi(const std::string& text) {
    std::wstring wide(text.size(), L'\0');
    wide.resize(static_cast<size_t>(MultiByteToWideChar(CP_ACP, 0, text.data(), static_cast<int>(text.size()),
                                                        wide.data(), static_cast<int>(wide.size()))));
    return wide;
}

TEST_F(IniFileFormat, LinesEntriesAndEncodingsReadAsTheirBytesSay) {
    const TestValues onlyBefore{{L"before", D(1)}};
    const struct {
        const char* what;
        std::string bytes;
        TestValues values;
    } cases[] = {
        {"the end of the file ends an unfinished entry", Bom + Before + "B:\"x\"=00000003\r\n 01 02\r\n", onlyBefore},
        {"... also of strings", Bom + Before + "Z:\"x\"=00000002\r\n a\r\n", onlyBefore},
        {"... but the last line needs no line end", Bom + Before + "Z:\"x\"=00000002\r\n a\r\n b",
         {{L"before", D(1)}, {L"x", Z({L"a", L"b"})}}},
        {"UTF-8 after its mark, line ends of every kind",
         Bom + "S:\"Name " + Utf8Mixed + "\"=" + Utf8Mixed + "\rZ:\"z\"=00000002\n " + Utf8Mixed + "\r \r\n",
         {{L"Name " + Mixed, S(Mixed)}, {L"z", Z({Mixed, L""})}}},
        {"without a mark, ANSI from the first byte", "S:\"caf\xE9\"=na\xEFve\r\nS:\"utf8\"=\xC3\xA9",
         {{Ansi("caf\xE9"), S(Ansi("na\xEFve"))}, {L"utf8", S(Ansi("\xC3\xA9"))}}},
        {"untranslatable bytes end the file after the part read so far", Bom + Before + "S:\"a\"=ab\xFF" "cd" + After,
         {{L"before", D(1)}, {L"a", S(L"ab")}}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(c.values, Load(c.bytes));
    }
}

TEST_F(IniFileFormat, TheWriterWritesEachKindAsItsExampleShowsWithMultiStringsLast) {
    EXPECT_EQ(Bom +
                  "D:\"Port\"=00000016\r\n"
                  "S:\"Host\"=a \"b\" = c\r\n"
                  "S:\"Empty\"=\r\n"
                  "B:\"Data\"=00000003\r\n 0a ff 10\r\n"
                  "D:\"d\"=ffffffff\r\n"
                  "Z:\"first\"=00000003\r\n \r\n mid\r\n \r\n"
                  "Z:\"Commands\"=00000002\r\n first\r\n second\r\n"
                  "Z:\"none\"=00000000\r\n",
              Save({{L"first", Z({L"", L"mid", L""})},
                    {L"Port", D(22)},
                    {L"Host", S(L"a \"b\" = c")},
                    {L"Commands", Z({L"first", L"second"})},
                    {L"Empty", S(L"")},
                    {L"none", Z({})},
                    {L"Data", B({0x0a, 0xff, 0x10})},
                    {L"d", D(0xFFFFFFFF)}}));
}

TEST_F(IniFileFormat, BinaryDataLinesHold32Bytes) {
    std::string line;
    for (int i = 0; i < 32; ++i) line += " ab";
    EXPECT_EQ(Bom + "B:\"full\"=00000020\r\n" + line + "\r\nB:\"more\"=00000021\r\n" + line +
                  "\r\n ab\r\n",
              Save({{L"full", B(std::vector<uint8_t>(32, 0xAB))},
                    {L"more", B(std::vector<uint8_t>(33, 0xAB))}}));
}

TEST_F(IniFileFormat, AReplacedOrRestoredValueKeepsItsPlaceAndNoValueLeavesOnlyTheMark) {
    Save({{L"a", D(1)}, {L"b", D(2)}, {L"c", D(3)}});
    VIniFileKey key(keyFolder_, VUnicodeString(), false, nullptr);
    ASSERT_TRUE(key.SetString(VUnicodeString(L"a"), VUnicodeString(L"now a string")));
    ASSERT_TRUE(key.DeleteValue(VUnicodeString(L"b")));
    ASSERT_TRUE(key.SetDword(VUnicodeString(L"new"), 4));
    ASSERT_TRUE(key.SetDword(VUnicodeString(L"b"), 5));
    ASSERT_TRUE(key.Flush());
    EXPECT_EQ(Bom + "S:\"a\"=now a string\r\nD:\"b\"=00000005\r\nD:\"c\"=00000003\r\nD:\"new\"=00000004\r\n",
              ReadWholeFile(ValuesFile()));
    for (const wchar_t* name : {L"a", L"b", L"c", L"new"}) ASSERT_TRUE(key.DeleteValue(VUnicodeString(name)));
    ASSERT_TRUE(key.Flush());
    EXPECT_EQ(Bom, ReadWholeFile(ValuesFile()));
}

TEST_F(IniFileFormat, AUtf16FileIsRewrittenAsUtf8WithLoneSurrogatesReplaced) {
    const std::wstring text = L"S:\"" + Mixed + L"\"=" + Mixed + L"\r\nS:\"lone\"=a\xD800" L"b\xDC00\r\nD:\"n\"=00000007\r\n";
    ASSERT_TRUE(WriteWholeFile(ValuesFile(), Utf16(text)));
    {
        VIniFileKey key(keyFolder_, VUnicodeString(), false, nullptr);
        EXPECT_EQ((TestValues{{Mixed, S(Mixed)}, {L"lone", S(L"a\uFFFDb\uFFFD")}, {L"n", D(7)}}),
                  ReadAllValues(key));
        ASSERT_TRUE(key.SetDword(VUnicodeString(L"n"), 8));
    }
    EXPECT_EQ(Bom + "S:\"" + Utf8Mixed + "\"=" + Utf8Mixed +
                  "\r\nS:\"lone\"=a\xEF\xBF\xBD" "b\xEF\xBF\xBD\r\nD:\"n\"=00000008\r\n",
              ReadWholeFile(ValuesFile()));
}

TEST_F(IniFileFormat, PrivateValuesLiveInThePrivateFileWhichWinsOverTheMainOne) {
    const struct {
        const char* what;
        std::string main, personal;  // the files before ("" none)
        TestValues read;
        std::vector<std::pair<std::wstring, TestValue>> stored;
        const wchar_t* deleted;
        std::string mainAfter, personalAfter;
    } cases[] = {
        {"the private names go to the private file, in its list's order", "", "", {},
         {{L"Host", S(L"example.org")}, {L"Password V2", S(L"02:s")}, {L"Use Narrow Font", D(1)},
          {L"Username", S(L"me")}, {L"password", S(L"plain")}}, nullptr,  // names compare exactly
         "S:\"Host\"=example.org\r\nS:\"password\"=plain\r\n",
         "S:\"Username\"=me\r\nS:\"Password V2\"=02:s\r\nD:\"Use Narrow Font\"=00000001\r\n"},
        {"the private file overrides the main one, which loses its private values",
         "S:\"Password\"=old\r\nS:\"Account\"=acct\r\nD:\"Port\"=00000016\r\n", "S:\"Password\"=new\r\n",
         {{L"Password", S(L"new")}, {L"Account", S(L"acct")}, {L"Port", D(22)}}, {{L"Port", D(23)}}, nullptr,
         "D:\"Port\"=00000017\r\n", "S:\"Password\"=new\r\nS:\"Account\"=acct\r\n"},
        {"a private file that was read is rewritten with only the private values", "S:\"Host\"=main\r\n",
         "S:\"Host\"=stale\r\n", {{L"Host", S(L"stale")}}, {{L"Host", S(L"new")}}, nullptr, "S:\"Host\"=new\r\n", ""},
        {"a deleted private value does not come back from the private file", "", "S:\"Password\"=secret\r\n",
         {{L"Password", S(L"secret")}}, {}, L"Password", "", ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        DeleteFileW(ValuesFile().c_str());
        DeleteFileW(PrivateValuesFile().c_str());
        CreateDirectoryW((folder_ / L"Private").c_str(), nullptr);
        ASSERT_TRUE(c.main.empty() || WriteWholeFile(ValuesFile(), Bom + c.main));
        ASSERT_TRUE(c.personal.empty() || WriteWholeFile(PrivateValuesFile(), Bom + c.personal));
        {
            VIniFileKey key(keyFolder_, privateFolder_, false, nullptr);
            EXPECT_EQ(c.read, ReadAllValues(key));
            for (const auto& [name, value] : c.stored) ASSERT_TRUE(StoreValue(key, name, value));
            ASSERT_TRUE(!c.deleted || key.DeleteValue(c.deleted));
        }
        EXPECT_EQ(Bom + c.mainAfter, ReadWholeFile(ValuesFile()));
        EXPECT_EQ(Bom + c.personalAfter, ReadWholeFile(PrivateValuesFile()));
    }
}

}  // namespace
