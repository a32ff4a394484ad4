// The session buffer's layout and the reading of session strings, and the
// configuration folder's normal form.
#include <gtest/gtest.h>

#include <vector>

#include "ClientProtocol.h"
#include "StartupPaths.h"
#include "VMemoryMappedBuffer.h"

namespace {

using ClientProtocol::ReadSessions;
using Sessions = VArray<VUnicodeString>;

TEST(SessionBuffer, WrittenSessionsReadBackAndFillTheAnsweredSize) {
    const Sessions sessions{L"1,Work", L"2,", L"plain", L"3,caf\u00e9 \u263a"};
    const size_t size = ClientProtocol::SessionDataSize(sessions);
    // An unnamed block: private to this test.
    const auto buffer = VRefPtr<VMemoryMappedBuffer>::Adopt(new VMemoryMappedBuffer(nullptr, nullptr, size, nullptr));
    ASSERT_TRUE(buffer->IsMapped());
    ASSERT_TRUE(ClientProtocol::WriteSessions(*buffer, sessions));
    EXPECT_EQ(buffer->GetDataLength(), size);
    EXPECT_EQ(ReadSessions(buffer->GetData(), size), sessions);

    // No room for the last one: what fitted stays, and the write says so.
    buffer->SetDataLength(buffer->GetCapacity() - 4);
    EXPECT_FALSE(ClientProtocol::WriteSessions(*buffer, Sessions{L"1,too long"}));
}

TEST(SessionBuffer, ReadingIsLenientAtTheEdges) {
    const struct {
        std::vector<wchar_t> text;
        size_t bytes;  // 0: all of text
        Sessions expected;
    } cases[] = {
        {{L'a', 0, L'b', 0}, 0, {L"a", L"b"}},
        {{L'a', 0, L'b', L'c'}, 0, {L"a", L"bc"}},          // the last string without its NUL
        {{L'a', 0, L'b', 0}, 7, {L"a", L"b"}},              // an odd trailing byte
        {{L'a', 0, 0, L'b', 0}, 0, {L"a"}},                 // an empty string ends the list
        {{0, L'a', 0}, 0, {}},
        {{L'a', L'b'}, 3, {L"a"}},
    };
    for (const auto& test : cases) {
        const size_t bytes = test.bytes ? test.bytes : test.text.size() * sizeof(wchar_t);
        EXPECT_EQ(ReadSessions(test.text.data(), bytes), test.expected) << bytes;
    }
}

TEST(SessionBuffer, SessionStringsSplitIntoNumberAndCaption) {
    const struct {
        const wchar_t* session;
        uint32_t number;
        const wchar_t* caption;
    } cases[] = {
        {L"12,Work", 12, L"Work"},
        {L"Work", 0, L"Work"},
        {L"4294967295,Max", 0xFFFFFFFFu, L"Max"},
        {L"4294967296,Too big", 0, L"Too big"},
        {L"-5,Minus", 0, L"Minus"},
        {L"0x10,Hex", 0, L"Hex"},
        {L"12a,Letters", 0, L"Letters"},
        {L",No number", 0, L"No number"},
        {L"5,a,b", 5, L"a,b"},
        {L"7,123456789012345678901234567890tail", 7, L"123456789012345678901234567890"},
        {L"123456789012345678901234567890 no comma", 0, L"123456789012345678901234567890"},
    };
    for (const auto& test : cases) {
        uint32_t number = 99;
        VUnicodeString caption;
        ClientProtocol::SplitSession(test.session, number, caption);
        EXPECT_EQ(number, test.number) << test.session;
        EXPECT_EQ(caption, test.caption) << test.session;
    }
}

TEST(ConfigFolder, TrailingSeparatorsGoExceptAfterADriveColon) {
    const struct {
        const wchar_t* folder;
        const wchar_t* expected;
    } cases[] = {
        {L"C:\\", L"C:\\"},           {L"C:\\\\", L"C:\\"},       {L"D:\\Data\\\\", L"D:\\Data"},
        {L"D:/Conf/", L"D:/Conf"},    {L"D:\\Conf\\/", L"D:\\Conf"}, {L"\\\\server\\share\\", L"\\\\server\\share"},
        {L"C:", L"C:"},               {L"relative\\", L"relative"},  {L"", L""},
    };
    for (const auto& test : cases) EXPECT_EQ(StripTrailingSeparators(test.folder), test.expected) << test.folder;
}

}  // namespace
