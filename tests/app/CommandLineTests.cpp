// The tray program's command line: tokenising, option lookup and the folder.
#include <gtest/gtest.h>

#include "ConfigMessages.h"
#include "VCommandLine.h"

namespace {

using Tokens = VArray<VUnicodeString>;

// Tokens are what is left after the folder's switch and value are taken.
TEST(CommandLine, TokensAndTheFolder) {
    const struct {
        const wchar_t* line;
        Tokens tokens;
        const wchar_t* folder;
        DWORD failure;
    } cases[] = {
        // clang-format off
        {L"ab\"c d\"e  x", {L"abc de", L"x"}, L"", 0},  // quotes join and drop out
        {L"   ", {}, L"", 0},
        {L"a\tb", {L"a\tb"}, L"", 0},                          // only the space separates
        {L"\"C:\\Dir\\\" next", {L"C:\\Dir\" next"}, L"", 0},  // \" escapes
        {L"\"closed\"glued", {L"closed", L"glued"}, L"", 0},
        {L"\"\" \"unterminated tail", {L"unterminated tail"}, L"", 0},
        {L"/f C:\\Conf", {}, L"C:\\Conf", 0},
        {L"-F C:\\Conf", {}, L"C:\\Conf", 0},
        {L"other /F C:\\Conf tail", {L"other", L"tail"}, L"C:\\Conf", 0},
        {L"/F \"C:\\Program Data\\My Conf\"", {}, L"C:\\Program Data\\My Conf", 0},
        {L"/S x /F", {L"/S", L"x", L"/F"}, L"", CONFIG_OPTION_VALUE_MISSING},
        {L"/F C:\\Conf ssh://host", {L"/F", L"C:\\Conf", L"ssh://host"}, L"", 0},  // a link: no folder
        {L"/Folder C:\\Conf", {L"/Folder", L"C:\\Conf"}, L"", 0},
        // clang-format on
    };
    for (const auto& test : cases) {
        VCommandLine commandLine;
        VReportMessageParams report(CONFIG_OPTION_NOT_A_NUMBER);  // a report from before goes
        EXPECT_EQ(commandLine.Parse(test.line, report), test.failure == 0) << test.line;
        EXPECT_EQ(report.GetMessageCode(), test.failure) << test.line;
        EXPECT_EQ(commandLine.GetTokens(), test.tokens) << test.line;
        EXPECT_EQ(commandLine.GetConfigFolder(), test.folder) << test.line;
    }
}

TEST(CommandLine, LookupConsumesSoTheNextOccurrenceComesSecondAndNumbersAreDecimal) {
    VCommandLine commandLine;
    VReportMessageParams report;
    ASSERT_TRUE(commandLine.Parse(L"/S first keep /s second /N 4096 /N 12x /N -1", report));
    VUnicodeString value;
    EXPECT_TRUE(commandLine.GetTextOption(L"/S", value, report, true) && value == L"first");
    EXPECT_TRUE(commandLine.GetTextOption(L"-S", value, report, true) && value == L"second");
    EXPECT_FALSE(commandLine.GetTextOption(L"/S", value, report, true));
    EXPECT_TRUE(commandLine.GetTextOption(L"/S", value, report, false) && value.IsEmpty());
    EXPECT_FALSE(commandLine.GetTextOption(L"S", value, report, false));  // not a switch

    uint32_t number = 7;
    EXPECT_TRUE(commandLine.GetNumberOption(L"/N", number, report, true) && number == 4096u);
    EXPECT_FALSE(commandLine.GetNumberOption(L"/N", number, report, true));
    EXPECT_EQ(report.GetMessageCode(), CONFIG_OPTION_NOT_A_NUMBER);
    EXPECT_EQ(report.GetArguments()[1], L"12x");
    EXPECT_FALSE(commandLine.GetNumberOption(L"/N", number, report, true) || number != 0u);
    EXPECT_TRUE(commandLine.GetNumberOption(L"/N", number, report, false) && number == 0u);
    EXPECT_EQ(commandLine.GetTokens(), Tokens{L"keep"});
}

TEST(CommandLine, PassPhraseComesBackSensitiveAndLeavesNoToken) {
    VCommandLine commandLine;
    VReportMessageParams report;
    ASSERT_TRUE(commandLine.Parse(L"/ConfigPassphrase \"open sesame\" /F C:\\Conf", report));
    VUnicodeString passphrase, other;
    ASSERT_TRUE(commandLine.GetTextOption(L"/ConfigPassphrase", passphrase, report, true));
    EXPECT_TRUE(passphrase == L"open sesame" && passphrase.IsSensitive());
    EXPECT_TRUE(commandLine.GetTokens().IsEmpty());
    // Only the exact spelling is treated as secret; a sensitive variable stays so.
    for (VUnicodeString* value : {&passphrase, &other}) {
        ASSERT_TRUE(commandLine.Parse(L"/configpassphrase plain", report));
        ASSERT_TRUE(commandLine.GetTextOption(L"/configpassphrase", *value, report, true));
    }
    EXPECT_TRUE(passphrase.IsSensitive() && !other.IsSensitive());
}

}  // namespace
