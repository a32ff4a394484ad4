// Reports: formatting, caching, trimming and the whole lookup order, against
// real message tables (the system's, NTDLL.DLL's, this test's own module and
// the configuration library's module as the fallback).
#include <gtest/gtest.h>

#include <windows.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "ConfigMessages.h"
#include "TestMessages.h"
#include "VReportMessageParams.h"

namespace {

// What the formatter itself answers for one code from one place: the oracle
// for the steps that hand a code to the system.
std::wstring FormatDirectly(DWORD flags, HMODULE module, DWORD code) {
    wchar_t* buffer = nullptr;
    const DWORD length = FormatMessageW(flags | FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_IGNORE_INSERTS,
                                        module, code, 0, reinterpret_cast<wchar_t*>(&buffer), 0, nullptr);
    std::wstring text = length ? std::wstring(buffer, length) : std::wstring();
    LocalFree(buffer);
    return text;
}

class ReportMessages : public ::testing::Test {
protected:
    static void SetUpTestSuite() { ASSERT_TRUE(VReportMessageParams::LoadFallbackModule(ConfigMessagesModule)); }
    void TearDown() override { VReportMessageParams::SetFallbackModule(fallback_); }

    HMODULE fallback_ = VReportMessageParams::GetFallbackModule();
};

TEST_F(ReportMessages, SystemCodeComesFromTheSystemTables) {
    VReportMessageParams report(ERROR_ACCESS_DENIED);
    const std::wstring expected = FormatDirectly(FORMAT_MESSAGE_FROM_SYSTEM, nullptr, ERROR_ACCESS_DENIED);
    ASSERT_FALSE(expected.empty());
    EXPECT_EQ(report.GetText(), expected);
}

TEST_F(ReportMessages, StatusCodeUnknownToTheSystemComesFromNtdll) {
    const DWORD status = 0xC0000005;  // an access violation
    ASSERT_TRUE(FormatDirectly(FORMAT_MESSAGE_FROM_SYSTEM, nullptr, status).empty());
    VReportMessageParams report(status);
    const std::wstring expected = FormatDirectly(FORMAT_MESSAGE_FROM_HMODULE, GetModuleHandleW(L"ntdll.dll"), status);
    if (expected.empty()) {
        // Wine's NTDLL.DLL carries no message table (error 1813): that counts
        // as "not found", and the lookup must go on to the end.
        EXPECT_STREQ(report.GetText(), L"Could not retrieve the error text for error code 0xc0000005.\r\n");
    } else {
        EXPECT_EQ(report.GetText(), expected);
    }
}

TEST_F(ReportMessages, OwnModuleTextGetsItsInsertsInOrder) {
    VReportMessageParams report(TEST_OWN_MODULE_TEXT);
    report.AddArgument(VUnicodeString(L"wide"));
    report.AddArgument(VString("narrow"));
    EXPECT_STREQ(report.GetText(), L"Text of the test module with wide and narrow.\r\n");
}

// Inserts nobody gave stay as written, whether no argument or too few were
// given; the formatter must not read past the arguments there are.
TEST_F(ReportMessages, MissingInsertsAreLeftInTheTextRatherThanFailing) {
    VReportMessageParams none(TEST_OWN_MODULE_TEXT);
    EXPECT_STREQ(none.GetText(), L"Text of the test module with %1 and %2.\r\n");
    VReportMessageParams one(TEST_OWN_MODULE_TEXT);
    one.AddArgument(L"one");
    EXPECT_STREQ(one.GetText(), L"Text of the test module with one and %2.\r\n");
    VReportMessageParams fallback(CONFIG_OPTION_NOT_A_NUMBER);
    fallback.AddArgument(L"/X");
    EXPECT_STREQ(fallback.GetText(), L"The command-line option /X needs a number made of the digits 0 to 9, not \"%2\".\r\n");
}

// Several threads load the fallback module and format at once, as a worker
// thread's report and the user interface's may.
TEST_F(ReportMessages, ThreadsFormatAtOnce) {
    std::vector<std::thread> threads;
    std::atomic<int> wrong{0};
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&wrong] {
            VReportMessageParams::LoadFallbackModule(ConfigMessagesModule);
            for (int i = 0; i < 200; ++i) {
                VReportMessageParams report(i % 2 ? CONFIG_VALUE_ABSENT : 0xC0000005);
                report.AddArgument(L"Port");
                const std::wstring text = report.GetText();
                const bool right = i % 2 ? text == L"The setting \"Port\" has not been stored yet.\r\n"
                                         : !text.empty();
                wrong += right ? 0 : 1;
            }
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(wrong, 0);
}

TEST_F(ReportMessages, CodeOnlyTheFallbackModuleKnowsComesFromIt) {
    VReportMessageParams report(CONFIG_VALUE_ABSENT);
    report.AddArgument(L"Port");
    EXPECT_STREQ(report.GetText(), L"The setting \"Port\" has not been stored yet.\r\n");
}

TEST_F(ReportMessages, UnknownCodeEndsInTheFallbackTextWithEightHexDigits) {
    VReportMessageParams unknownSystemCode(0x0000BEEF);
    EXPECT_STREQ(unknownSystemCode.GetText(), L"Could not retrieve the error text for error code 0x0000beef.\r\n");

    VReportMessageParams::SetFallbackModule(nullptr);
    VReportMessageParams libraryCode(CONFIG_VALUE_ABSENT);
    EXPECT_STREQ(libraryCode.GetText(), L"Could not retrieve the error text for error code 0xe1040040.\r\n");
}

TEST_F(ReportMessages, TextIsCachedUntilTheCodeOrArgumentsChange) {
    VReportMessageParams report(CONFIG_VALUE_ABSENT);
    report.AddArgument(L"Port");
    const wchar_t* first = report.GetText();
    VReportMessageParams::SetFallbackModule(nullptr);  // formatting again would now fail
    EXPECT_EQ(report.GetText(), first);
    EXPECT_STREQ(first, L"The setting \"Port\" has not been stored yet.\r\n");

    report.AddArgument(L"ignored");
    EXPECT_STREQ(report.GetText(), L"Could not retrieve the error text for error code 0xe1040040.\r\n");
    report.SetMessageCode(TEST_OWN_MODULE_TEXT);
    EXPECT_STREQ(report.GetText(), L"Text of the test module with %1 and %2.\r\n");
}

TEST_F(ReportMessages, TextAsStringRemovesExactlyOneLineEnd) {
    VReportMessageParams twoLines(TEST_TWO_LINES);
    EXPECT_EQ(twoLines.GetTextAsString(), L"First line\r\nsecond line");

    // With a line width the formatter ends lines with a blank, and one is removed.
    VReportMessageParams wrapped(TEST_TWO_LINES);
    const VUnicodeString text = wrapped.GetTextAsString(FORMAT_MESSAGE_MAX_WIDTH_MASK);
    EXPECT_FALSE(text.EndsWith(L" "));
    EXPECT_EQ(VUnicodeString(wrapped.GetText(FORMAT_MESSAGE_MAX_WIDTH_MASK)), text + L" ");

    // A text that does not end in a line break is left as it stands.
    VReportMessageParams unknown(0x0000BEEF);
    unknown.GetText();
    EXPECT_EQ(unknown.GetTextAsString(), L"Could not retrieve the error text for error code 0x0000beef.");
}

TEST_F(ReportMessages, NumberArgumentIsFormattedWithItsFormatText) {
    VReportMessageParams report(TEST_OWN_MODULE_TEXT);
    report.AddArgument(L"0x%1!08x!", 0x1fu);
    report.AddArgument(L"%1!u!", 4000000000u);
    EXPECT_STREQ(report.GetText(), L"Text of the test module with 0x0000001f and 4000000000.\r\n");
}

TEST_F(ReportMessages, CopiesShareArgumentsButNotTheText) {
    VReportMessageParams report(TEST_OWN_MODULE_TEXT);
    report.Set(TEST_OWN_MODULE_TEXT, VUnicodeString(L"one"), VUnicodeString(L"two"));
    report.SetLevel(1);
    const VReportMessageParams copy(report);
    EXPECT_EQ(copy.GetArguments()[0].c_str(), report.GetArguments()[0].c_str());
    EXPECT_EQ(copy.GetLevel(), 1);
    EXPECT_EQ(copy.GetMessageCode(), TEST_OWN_MODULE_TEXT);
    report.Clear();
    EXPECT_TRUE(report.GetArguments().IsEmpty());
    EXPECT_EQ(copy.GetArguments().GetCount(), 2u);
}

TEST_F(ReportMessages, SensitiveArgumentsMakeTheTextSensitive) {
    VReportMessageParams report(TEST_OWN_MODULE_TEXT);
    report.AddArgument(VUnicodeString(L"secret", Str::Sensitive));
    report.AddArgument(L"plain");
    EXPECT_TRUE(report.GetTextAsString().IsSensitive());
}

}  // namespace
