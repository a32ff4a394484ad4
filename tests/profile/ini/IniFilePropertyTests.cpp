// Seeded random value tables survive a save and a load exactly.
#include <gtest/gtest.h>

#include <random>
#include <string>

#include "PrivateValueNames.h"
#include "TempFolder.h"
#include "TestSeed.h"
#include "TestValues.h"
#include "VIniFileKey.h"

namespace {

class RandomValues {
public:
    explicit RandomValues(uint64_t seed) : random_(seed) {}

    size_t Below(size_t bound) {
        return std::uniform_int_distribution<size_t>(0, bound - 1)(random_);
    }

    // Plain characters, those the format gives a meaning to, and surrogate pairs.
    std::wstring Text(size_t maxLength, bool quotes = true) {
        static const std::wstring plain = L"abcXYZ019 =:\"'\t\\#;[]{}-_.,\u00e9\u00df\u4e2d\u0416";
        std::wstring text;
        for (const size_t length = Below(maxLength + 1); text.size() < length;) {
            const wchar_t character = plain[Below(plain.size())];
            if (Below(12) == 0) text += L"\U0001F600";
            else if (quotes || character != L'"') text += character;
        }
        return text;
    }

    std::wstring Name() {
        if (Below(4) == 0) return GetPrivateValueNames()[Below(PrivateValueNameCount)].c_str();
        std::wstring name;
        while (name.empty()) name = Text(16, false);
        return name;
    }

    TestValue Value() {
        switch (Below(4)) {
        case 0: return D(static_cast<uint32_t>(random_()));
        case 1: return S(Text(Below(3) == 0 ? 0 : 60));
        case 2: {
            static const size_t lengths[] = {0, 1, 31, 32, 33, 63, 64, 65, 100};  // line widths
            std::vector<uint8_t> bytes(Below(2) ? lengths[Below(std::size(lengths))] : Below(300));
            for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(random_());
            return B(std::move(bytes));
        }
        default: {
            std::vector<std::wstring> strings(Below(5));
            for (std::wstring& string : strings) string = Below(3) == 0 ? std::wstring() : Text(30);
            return Z(std::move(strings));
        }
        }
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
        TestValues values;
        for (const size_t count = random.Below(41); values.size() < count;)
            values[random.Name()] = random.Value();
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

}  // namespace
