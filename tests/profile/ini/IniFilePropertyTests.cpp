// Seeded random value tables survive a save and a load exactly, and a file
// cut short or with a broken entry yields exactly the entries before the damage.
#include <gtest/gtest.h>

#include <cstdlib>
#include <random>
#include <string>

#include "IniFileFormat.h"
#include "TestValues.h"
#include "PrivateValueNames.h"
#include "TempFolder.h"
#include "TestSeed.h"
#include "VIniFileKey.h"

namespace {

const std::wstring Plain = L"abcXYZ019 =:\"'\t\\#;[]{}-_.,\u00e9\u00df\u4e2d\u0416";
const std::wstring NonBmp = L"\U0001F600";

class RandomValues {
public:
    explicit RandomValues(uint64_t seed) : random_(seed) {}

    size_t Below(size_t bound) { return std::uniform_int_distribution<size_t>(0, bound - 1)(random_); }
    bool OneIn(size_t chances) { return Below(chances) == 0; }

    std::wstring Text(size_t maxLength, bool quotes = true) {
        std::wstring text;
        const size_t length = Below(maxLength + 1);
        while (text.size() < length) {
            if (OneIn(12)) {
                text += NonBmp;
                continue;
            }
            const wchar_t character = Plain[Below(Plain.size())];
            if (quotes || character != L'"') text += character;
        }
        return text;
    }

    std::wstring Name() {
        if (OneIn(4)) {
            const VUnicodeString& name = GetPrivateValueNames()[Below(PrivateValueNameCount)];
            return std::wstring(name.c_str(), name.GetLength());
        }
        std::wstring name;
        while (name.empty()) name = Text(16, false);
        return name;
    }

    TestValue Value() {
        switch (Below(4)) {
        case 0: return D(static_cast<uint32_t>(random_()));
        case 1: return S(Text(OneIn(3) ? 0 : 60));
        case 2: {
            static const size_t lengths[] = {0, 1, 31, 32, 33, 63, 64, 65, 100};
            std::vector<uint8_t> bytes(OneIn(2) ? lengths[Below(std::size(lengths))] : Below(300));
            for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(random_());
            return B(std::move(bytes));
        }
        default: {
            std::vector<std::wstring> strings(Below(5));
            for (std::wstring& string : strings) string = OneIn(3) ? std::wstring() : Text(30);
            return Z(std::move(strings));
        }
        }
    }

    TestValues Table(size_t maxCount) {
        TestValues values;
        const size_t count = Below(maxCount + 1);
        while (values.size() < count) values[Name()] = Value();
        return values;
    }

private:
    std::mt19937_64 random_;
};

TEST(IniFileProperties, RandomTablesSurviveSaveAndLoadExactly) {
    RandomValues random(TestSeed("random tables"));
    TempFolder folder;
    for (int round = 0; round < 60; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        const VUnicodeString keyFolder = folder / L"Key";
        const VUnicodeString privateFolder = round % 2 ? folder / L"Private" : VUnicodeString();
        const TestValues values = random.Table(40);
        {
            VIniFileKey key(keyFolder, privateFolder, false, nullptr);
            for (const auto& [name, value] : ReadAllValues(key)) ASSERT_TRUE(key.DeleteValue(name.c_str()));
            for (const auto& [name, value] : values) ASSERT_TRUE(StoreValue(key, name, value));
            ASSERT_TRUE(key.Flush()) << key.GetLastErrorParams().GetMessageCode();
        }
        VIniFileKey key(keyFolder, privateFolder, true, nullptr);
        ASSERT_EQ(values, ReadAllValues(key));
    }
}

struct BuiltFile {
    struct Line {
        size_t start;       // first byte
        size_t contentEnd;  // the CR of its CR LF
    };
    struct Entry {
        std::wstring name;
        TestValue value;
        std::vector<Line> lines;
    };
    std::string bytes;
    std::vector<Entry> entries;

    TestValues Before(size_t entry) const {
        TestValues values;
        for (size_t i = 0; i < entry; ++i) values[entries[i].name] = entries[i].value;
        return values;
    }
};

std::string Utf8(const std::wstring& text) {
    std::string bytes(text.size() * 4, '\0');
    bytes.resize(static_cast<size_t>(WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()),
                                                         bytes.data(), static_cast<int>(bytes.size()), nullptr,
                                                         nullptr)));
    return bytes;
}

BuiltFile Build(const TestValues& values) {
    BuiltFile file;
    file.bytes = "\xEF\xBB\xBF";
    for (const auto& [name, value] : values) {
        VIniFileText text;
        switch (value.kind) {
        case ProfileDword: AppendIniDwordEntry(text, name, value.dword); break;
        case ProfileString: AppendIniStringEntry(text, name, value.text); break;
        case ProfileBinary: AppendIniBinaryEntry(text, name, value.bytes); break;
        default:
            AppendIniMultiStringHeader(text, name, value.strings.size());
            for (const std::wstring& string : value.strings) AppendIniStringLine(text, string);
        }
        BuiltFile::Entry entry{name, value, {}};
        const std::wstring all(text.data(), text.size());
        for (size_t start = 0; start < all.size();) {
            const size_t end = all.find(L"\r\n", start);
            const std::wstring line = all.substr(start, end - start);
            const size_t byteStart = file.bytes.size();
            file.bytes += Utf8(line);
            entry.lines.push_back({byteStart, file.bytes.size()});
            file.bytes += "\r\n";
            start = end + 2;
        }
        file.entries.push_back(std::move(entry));
    }
    return file;
}

TestValues Load(const TempFolder& folder, const std::string& bytes) {
    const VUnicodeString keyFolder = folder / L"Damaged";
    EXPECT_TRUE(WriteWholeFile(VIniFileKey::ValuesFilePath(keyFolder), bytes));
    VIniFileKey key(keyFolder, VUnicodeString(), true, nullptr);
    return ReadAllValues(key);
}

class DamagedFiles : public ::testing::Test {
protected:
    RandomValues random_{TestSeed("damaged files")};
    TempFolder folder_;
};

struct Flip {
    size_t offset;
    char replacement;
};

std::vector<Flip> BreakingFlips(const BuiltFile::Entry& entry) {
    const BuiltFile::Line& header = entry.lines.front();
    const size_t equals = header.start + Utf8(L"D:\"" + entry.name + L"\"").size();
    std::vector<Flip> flips{{header.start, 'd'}, {header.start + 1, ';'}, {header.start + 2, '\''}, {equals, '-'}};
    if (entry.value.kind != ProfileString) flips.push_back({equals + 1 + 7, '\r'});
    for (size_t i = 1; i < entry.lines.size(); ++i) {
        const BuiltFile::Line& line = entry.lines[i];
        if (entry.value.kind == ProfileBinary) flips.push_back({line.start + 2, 'g'});
        if (entry.value.kind == ProfileMultiString) flips.push_back({line.start, 'x'});
    }
    return flips;
}

TEST_F(DamagedFiles, AFileCutShortOrWithABrokenEntryYieldsTheEntriesBeforeTheDamage) {
    for (int round = 0; round < 150; ++round) {
        const BuiltFile file = Build(random_.Table(12));
        if (file.entries.empty()) continue;
        const size_t index = random_.Below(file.entries.size());
        const std::vector<BuiltFile::Line>& lines = file.entries[index].lines;
        const size_t line = random_.Below(lines.size());
        const bool beforeLineEnd = random_.OneIn(2);
        const size_t cut = beforeLineEnd ? lines[line].contentEnd : lines[line].start;
        SCOPED_TRACE("round " + std::to_string(round) + ", cut at " + std::to_string(cut));
        const bool whole = beforeLineEnd && line + 1 == lines.size();
        ASSERT_EQ(file.Before(index + whole), Load(folder_, file.bytes.substr(0, cut)));

        const std::vector<Flip> flips = BreakingFlips(file.entries[index]);
        const Flip flip = flips[random_.Below(flips.size())];
        SCOPED_TRACE("byte " + std::to_string(flip.offset) + " broken");
        std::string damaged = file.bytes;
        damaged[flip.offset] = flip.replacement;
        ASSERT_EQ(file.Before(index), Load(folder_, damaged));
    }
}

}  // namespace
