// The tray program's command line: tokenising, option lookup and the folder.
#include <gtest/gtest.h>

#include "ConfigMessages.h"
#include "VCommandLine.h"

namespace {

VArray<VUnicodeString> TokensOf(const wchar_t* line) {
    VCommandLine commandLine;
    VReportMessageParams report;
    commandLine.Parse(line, report);
    return commandLine.GetTokens();
}

TEST(CommandLineTokens, QuotesJoinAndDropOutOfUnquotedTokens) {
    EXPECT_EQ(TokensOf(L"ab\"c d\"e  x"), (VArray<VUnicodeString>{L"abc de", L"x"}));
    EXPECT_EQ(TokensOf(L"   "), VArray<VUnicodeString>{});
    EXPECT_EQ(TokensOf(L"a\tb"), VArray<VUnicodeString>{L"a\tb"});  // only the space separates
}

TEST(CommandLineTokens, QuotedTokensEndAtAnUnescapedQuote) {
    EXPECT_EQ(TokensOf(L"\"C:\\Dir\\\" next"),
              VArray<VUnicodeString>{L"C:\\Dir\" next"});  // \" escapes
    EXPECT_EQ(TokensOf(L"\"say \\\"hi\\\"\""), VArray<VUnicodeString>{L"say \"hi\""});
    EXPECT_EQ(TokensOf(L"\"closed\"glued"), (VArray<VUnicodeString>{L"closed", L"glued"}));
    EXPECT_EQ(TokensOf(L"\"\" \"unterminated tail"), VArray<VUnicodeString>{L"unterminated tail"});
}

TEST(CommandLineFolder, EverySpellingOfTheSwitchGivesTheFolder) {
    for (const wchar_t* line :
         {L"/f C:\\Conf", L"-F C:\\Conf", L"/F C:\\Conf", L"other /F C:\\Conf tail"}) {
        VCommandLine commandLine;
        VReportMessageParams report;
        EXPECT_TRUE(commandLine.Parse(line, report)) << line;
        EXPECT_EQ(commandLine.GetConfigFolder(), L"C:\\Conf") << line;
    }
}

TEST(CommandLineFolder, QuotedFolderKeepsItsBlanks) {
    VCommandLine commandLine;
    VReportMessageParams report;
    EXPECT_TRUE(commandLine.Parse(L"/F \"C:\\Program Data\\My Conf\"", report));
    EXPECT_EQ(commandLine.GetConfigFolder(), L"C:\\Program Data\\My Conf");
    EXPECT_TRUE(commandLine.GetTokens().IsEmpty());
}

TEST(CommandLineFolder, SwitchWithoutValueFailsWithItsReport) {
    VCommandLine commandLine;
    VReportMessageParams report;
    EXPECT_FALSE(commandLine.Parse(L"/S x /F", report));
    EXPECT_EQ(report.GetMessageCode(), CONFIG_OPTION_VALUE_MISSING);
    EXPECT_TRUE(commandLine.GetConfigFolder().IsEmpty());
}

TEST(CommandLineFolder, ALinkMeansNoFolder) {
    VCommandLine commandLine;
    VReportMessageParams report(CONFIG_OPTION_VALUE_MISSING);
    EXPECT_TRUE(commandLine.Parse(L"/F C:\\Conf ssh://host", report));
    EXPECT_TRUE(commandLine.GetConfigFolder().IsEmpty());
    EXPECT_EQ(report.GetMessageCode(), 0u);
}

TEST(CommandLineFolder, LongerSwitchDoesNotMatch) {
    VCommandLine commandLine;
    VReportMessageParams report;
    EXPECT_TRUE(commandLine.Parse(L"/Folder C:\\Conf", report));
    EXPECT_TRUE(commandLine.GetConfigFolder().IsEmpty());
    EXPECT_TRUE(commandLine.Parse(L"", report));
}

TEST(CommandLineOptions, LookupConsumesSoTheNextOccurrenceComesSecond) {
    VCommandLine commandLine;
    VReportMessageParams report;
    ASSERT_TRUE(commandLine.Parse(L"/S first keep /s second", report));
    VUnicodeString value;
    EXPECT_TRUE(commandLine.GetTextOption(L"/S", value, report, true));
    EXPECT_EQ(value, L"first");
    EXPECT_TRUE(commandLine.GetTextOption(L"-S", value, report, true));
    EXPECT_EQ(value, L"second");
    EXPECT_FALSE(commandLine.GetTextOption(L"/S", value, report, true));
    EXPECT_TRUE(commandLine.GetTextOption(L"/S", value, report, false));
    EXPECT_TRUE(value.IsEmpty());
    EXPECT_EQ(commandLine.GetTokens(), VArray<VUnicodeString>{L"keep"});
    EXPECT_FALSE(commandLine.GetTextOption(L"S", value, report, false));  // not a switch
}

TEST(CommandLineOptions, NumbersAcceptOnlyDecimalDigits) {
    VCommandLine commandLine;
    VReportMessageParams report;
    ASSERT_TRUE(commandLine.Parse(L"/N 4096 /N 12x /N -1", report));
    uint32_t number = 7;
    EXPECT_TRUE(commandLine.GetNumberOption(L"/N", number, report, true));
    EXPECT_EQ(number, 4096u);
    EXPECT_FALSE(commandLine.GetNumberOption(L"/N", number, report, true));
    EXPECT_EQ(report.GetMessageCode(), CONFIG_OPTION_NOT_A_NUMBER);
    EXPECT_EQ(report.GetArguments()[1], L"12x");
    EXPECT_FALSE(commandLine.GetNumberOption(L"/N", number, report, true));
    EXPECT_EQ(number, 0u);
    EXPECT_TRUE(commandLine.GetNumberOption(L"/N", number, report, false));
    EXPECT_EQ(number, 0u);
}

TEST(CommandLineOptions, PassPhraseComesBackSensitiveAndLeavesNoToken) {
    VCommandLine commandLine;
    VReportMessageParams report;
    ASSERT_TRUE(commandLine.Parse(L"/ConfigPassphrase \"open sesame\" /F C:\\Conf", report));
    VUnicodeString passphrase;
    ASSERT_TRUE(commandLine.GetTextOption(L"/ConfigPassphrase", passphrase, report, true));
    EXPECT_EQ(passphrase, L"open sesame");
    EXPECT_TRUE(passphrase.IsSensitive());
    EXPECT_TRUE(commandLine.GetTokens().IsEmpty());

    ASSERT_TRUE(commandLine.Parse(L"/configpassphrase plain", report));
    ASSERT_TRUE(commandLine.GetTextOption(L"/configpassphrase", passphrase, report, true));
    EXPECT_TRUE(passphrase.IsSensitive());  // the variable was sensitive: it stays so
    VUnicodeString other;
    ASSERT_TRUE(commandLine.Parse(L"/configpassphrase plain", report));
    ASSERT_TRUE(commandLine.GetTextOption(L"/configpassphrase", other, report, true));
    EXPECT_FALSE(other.IsSensitive());  // only the exact spelling is treated as secret
}

}  // namespace
