// SSH2 start-up: the self-tests pass, and a broken one stops start-up in FIPS mode only.

#include <gtest/gtest.h>

#include <string>

#include "Ssh2.h"
#include "Ssh2TestSeam.h"

TEST(Ssh2Test, EachBrokenSelfTestStopsFipsModeOnlyAndIsNamed) {
    VReportMessageParams report(1234);
    ASSERT_TRUE(SSH2::Init(true, true, report)) << "the real code passes";
    EXPECT_EQ(report.GetMessageCode(), 0u);
    EXPECT_TRUE(SSH2::IsInitialized() && SSH2::IsFipsMode() &&
                SSH2::IsDisconnectOnSmartCardRemoval());
    SSH2::CleanupForUnload();
    EXPECT_FALSE(SSH2::IsInitialized() || SSH2::IsFipsMode() ||
                 SSH2::IsDisconnectOnSmartCardRemoval());

    for (const wchar_t* name : {L"md5", L"sha1", L"sha224", L"sha256", L"sha384", L"sha512",
                                L"aes128-cbc", L"aes192-cbc", L"aes256-cbc"}) {
        ASSERT_TRUE(SSH2::Testing::BreakSelfTest(name)) << name;
        EXPECT_FALSE(SSH2::Init(true, false, report)) << name;
        EXPECT_FALSE(SSH2::IsInitialized());
        const std::wstring text = report.GetText();
        EXPECT_NE(text.find(std::wstring(L"The self-test of the ") + name + L" code"),
                  std::wstring::npos)
            << text;
        EXPECT_NE(text.find(L"FIPS mode"), std::wstring::npos) << text;

        EXPECT_TRUE(SSH2::Init(false, false, report)) << name;
        EXPECT_EQ(std::wstring(SSH2::GetFailedSelfTest()), name);
        SSH2::CleanupForUnload();
    }
    SSH2::Testing::RepairSelfTests();
    EXPECT_FALSE(SSH2::Testing::BreakSelfTest(L"rc4"));
    EXPECT_TRUE(SSH2::Init(true, false, report));
    EXPECT_EQ(SSH2::GetFailedSelfTest(), nullptr);
}
