// Reports against real message tables: the system's, NTDLL.DLL's, ours and the fallback.
#include <gtest/gtest.h>

#include <windows.h>

#include <string>
#include <vector>

#include "ConfigMessages.h"
#include "TestMessages.h"
#include "VReportMessageParams.h"

namespace {

constexpr wchar_t PortAbsent[] = L"The setting \"Port\" has not been stored yet.\r\n";
constexpr wchar_t Unknown[] = L"Could not retrieve the error text for error code 0x";

class ReportMessages : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        ASSERT_TRUE(VReportMessageParams::LoadFallbackModule(ConfigMessagesModule));
    }
    void TearDown() override { VReportMessageParams::SetFallbackModule(fallback_); }

    HMODULE fallback_ = VReportMessageParams::GetFallbackModule();
};

std::wstring FormatDirectly(DWORD flags, HMODULE module, DWORD code) {
    wchar_t* buffer = nullptr;
    const DWORD length =
        FormatMessageW(flags | FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_IGNORE_INSERTS,
                       module, code, 0, reinterpret_cast<wchar_t*>(&buffer), 0, nullptr);
    std::wstring text = length ? std::wstring(buffer, length) : std::wstring();
    LocalFree(buffer);
    return text;
}

// Wine's NTDLL.DLL has no message table (error 1813): that must count as not found.
TEST_F(ReportMessages, SystemAndStatusCodesComeFromTheSystemsTables) {
    const std::wstring system = FormatDirectly(FORMAT_MESSAGE_FROM_SYSTEM, {}, ERROR_ACCESS_DENIED);
    ASSERT_FALSE(system.empty());
    EXPECT_EQ(VReportMessageParams(ERROR_ACCESS_DENIED).GetText(), system);
    const DWORD status = 0xC0000005;  // an access violation
    ASSERT_TRUE(FormatDirectly(FORMAT_MESSAGE_FROM_SYSTEM, {}, status).empty());
    const std::wstring ntdll =
        FormatDirectly(FORMAT_MESSAGE_FROM_HMODULE, GetModuleHandleW(L"ntdll.dll"), status);
    EXPECT_EQ(VReportMessageParams(status).GetText(),
              ntdll.empty() ? std::wstring(Unknown) + L"c0000005.\r\n" : ntdll);
}

// Missing inserts stay as written; every second argument is given narrow.
TEST_F(ReportMessages, TextsComeFromTheModulesInOrderWithTheirInserts) {
    const struct {
        DWORD code;
        std::vector<std::wstring> arguments;
        const wchar_t* text;
    } cases[] = {
        {TEST_OWN_MODULE_TEXT, {L"w", L"n"}, L"Text of the test module with w and n.\r\n"},
        {TEST_OWN_MODULE_TEXT, {}, L"Text of the test module with %1 and %2.\r\n"},
        {TEST_OWN_MODULE_TEXT, {L"one"}, L"Text of the test module with one and %2.\r\n"},
        {CONFIG_VALUE_ABSENT, {L"Port"}, PortAbsent},
        {0x0000BEEF, {}, L"Could not retrieve the error text for error code 0x0000beef.\r\n"}};
    for (const auto& c : cases) {
        VReportMessageParams report(c.code);
        for (size_t i = 0; i < c.arguments.size(); ++i) {
            const VUnicodeString argument(c.arguments[i].c_str());
            i % 2 ? report.AddArgument(VString(argument)) : report.AddArgument(argument);
        }
        EXPECT_STREQ(report.GetText(), c.text);
    }
    VReportMessageParams numbers(TEST_OWN_MODULE_TEXT);
    numbers.AddArgument(L"0x%1!08x!", 0x1fu);
    numbers.AddArgument(L"%1!u!", 4000000000u);
    EXPECT_STREQ(numbers.GetText(), L"Text of the test module with 0x0000001f and 4000000000.\r\n");
}

TEST_F(ReportMessages, TextIsCachedUntilTheCodeOrArgumentsChangeAndCopiesShareArguments) {
    VReportMessageParams report(CONFIG_VALUE_ABSENT);
    report.AddArgument(VUnicodeString(L"Port", Str::Sensitive));
    report.SetLevel(1);
    const wchar_t* first = report.GetText();
    VReportMessageParams::SetFallbackModule(nullptr);  // formatting again would now fail
    EXPECT_EQ(report.GetText(), first);
    EXPECT_STREQ(first, PortAbsent);
    EXPECT_TRUE(report.GetTextAsString().IsSensitive()) << "made of a sensitive argument";
    const VReportMessageParams copy(report);
    EXPECT_EQ(copy.GetArguments()[0].c_str(), report.GetArguments()[0].c_str());
    EXPECT_TRUE(copy.GetLevel() == 1 && copy.GetMessageCode() == CONFIG_VALUE_ABSENT);
    report.AddArgument(L"ignored");
    EXPECT_STREQ(report.GetText(), (std::wstring(Unknown) + L"e1040040.\r\n").c_str());
    report.SetMessageCode(TEST_OWN_MODULE_TEXT);
    EXPECT_STREQ(report.GetText(), L"Text of the test module with %1 and %2.\r\n");
    EXPECT_TRUE(report.GetArguments().IsEmpty() && copy.GetArguments().GetCount() == 1);
}

TEST_F(ReportMessages, TextAsStringRemovesExactlyOneLineEnd) {
    EXPECT_EQ(VReportMessageParams(TEST_TWO_LINES).GetTextAsString(), L"First line\r\nsecond line");
    VReportMessageParams wrapped(TEST_TWO_LINES);
    const VUnicodeString text = wrapped.GetTextAsString(FORMAT_MESSAGE_MAX_WIDTH_MASK);
    EXPECT_FALSE(text.EndsWith(L" "));
    EXPECT_EQ(VUnicodeString(wrapped.GetText(FORMAT_MESSAGE_MAX_WIDTH_MASK)), text + L" ");
    VReportMessageParams unknown(0x0000BEEF);
    unknown.GetText();
    EXPECT_EQ(unknown.GetTextAsString(), VUnicodeString(Unknown) + L"0000beef.");
}

}  // namespace
