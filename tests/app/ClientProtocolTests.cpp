// Reading the sessions that a client writes into the shared buffer.
#include <gtest/gtest.h>

#include <vector>

#include "ClientProtocol.h"

namespace {

TEST(SessionBuffer, ReadingIsLenientAtTheEdges) {
    const struct {
        std::vector<wchar_t> text;
        size_t bytes;
        VArray<VUnicodeString> expected;
    } cases[] = {
        {{L'a', 0, L'b', L'c'}, 8, {L"a", L"bc"}},  // the last string without its NUL
        {{L'a', 0, L'b', 0}, 7, {L"a", L"b"}},      // an odd trailing byte
        {{L'a', 0, 0, L'b', 0}, 10, {L"a"}},        // an empty string ends the list
    };
    for (const auto& test : cases)
        EXPECT_EQ(ClientProtocol::ReadSessions(test.text.data(), test.bytes), test.expected);
}

TEST(SessionBuffer, SessionStringsSplitIntoNumberAndCaption) {
    const struct {
        const wchar_t* session;
        uint32_t number;
        const wchar_t* caption;
    } cases[] = {
        {L"12,Work", 12, L"Work"},
        {L"4294967295,Max", 0xFFFFFFFFu, L"Max"},
        {L"4294967296,Too big", 0, L"Too big"},
        {L"-5,Minus", 0, L"Minus"},
        {L"12a,Letters", 0, L"Letters"},
        {L"5,a,b", 5, L"a,b"},
        {L"7,123456789012345678901234567890tail", 7, L"123456789012345678901234567890"},
        {L"123456789012345678901234567890 no comma", 0, L"123456789012345678901234567890"},
    };
    for (const auto& test : cases) {
        uint32_t number = 99;
        VUnicodeString caption;
        ClientProtocol::SplitSession(test.session, number, caption);
        EXPECT_EQ(number, test.number) << test.session;
        EXPECT_TRUE(caption == test.caption) << test.session;
    }
}

}  // namespace
