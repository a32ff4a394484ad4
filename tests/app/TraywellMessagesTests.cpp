// The tray program's message table, as compiled into its module.
#include <gtest/gtest.h>

#include "TraywellMessages.h"
#include "VReportMessageParams.h"

namespace {

TEST(TraywellMessages, EveryCodeHasItsExactText) {
    const struct {
        DWORD code;
        const wchar_t* text;
    } expected[] = {
        {0x61450001, L"About\r\n"},
        {0x61450002, L"Version\r\n"},
        {0xE1450003, L"Traywell failed to initialize.\r\nError: %1\r\n"},
        {0xE1450004, L"Could not initialize SSH2:\r\n%1\r\n"},
        {0x61450005,
         L"One or more sessions are locked or a dialog is open. Traywell cannot exit until all "
         L"sessions are unlocked or the dialog is closed.\r\n"},
        {0x61450006, L"A dialog is open. Traywell cannot exit until the dialog is closed.\r\n"},
        {0x61450007, L"Exiting %1 will close all windows listed on the menu.\r\n"},
        {0x61450008, L"Sessions\r\n"},
        {0xE1450009, L"One or more windows you have selected no longer exist.\r\n"},
        {0xE145000A, L"The window you have selected no longer exists.\r\n"},
        {0x6145000B, L"&Connect...\r\n"},
        {0x6145000C, L"&Recent Terminal Sessions\r\n"},
        {0x6145000D, L"&Recent Transfer Sessions\r\n"},
        {0x6145000E, L"&Recent Sessions\r\n"},
        {0x6145000F, L"&Minimize All\r\n"},
        {0x61450010, L"Restore &All\r\n"},
        {0x61450011, L"Sessions...\r\n"},
        {0x61450012, L"Ma&nage Agent Keys...\r\n"},
        {0x61450013, L"&About\r\n"},
        {0x61450014, L"E&xit\r\n"},
    };
    for (const auto& message : expected) {
        VReportMessageParams report(message.code);
        EXPECT_STREQ(report.GetText(), message.text) << std::hex << message.code;
    }
    EXPECT_EQ(TRAY_EXIT_CLOSES_WINDOWS, 0x61450007u);
}

TEST(TraywellMessages, InsertsAreFilled) {
    VReportMessageParams report(TRAY_INIT_FAILED);
    report.AddArgument(L"Access is denied.");
    EXPECT_EQ(report.GetTextAsString(),
              L"Traywell failed to initialize.\r\nError: Access is denied.");
}

}  // namespace
