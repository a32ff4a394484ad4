// The frame: application life cycle, modal dialogs from a template, message boxes.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ModalProbe.h"
#include "VDialog.h"
#include "VMessageBox.h"
#include "VMessageBoxHook.h"
#include "VWinApp.h"

namespace {

class RecordingApp : public VWinApp {
public:
    explicit RecordingApp(bool startUp) : startUp_(startUp) {}
    std::vector<std::string> calls;

protected:
    bool InitInstance() override {
        calls.push_back("init");
        PostThreadMessageW(GetCurrentThreadId(), WM_APP, 0, 0);
        PostQuitMessage(7);
        return startUp_;
    }
    int Run() override {
        calls.push_back("run");
        return VWinApp::Run();
    }
    int ExitInstance() override {
        calls.push_back("exit");
        return VWinApp::ExitInstance();
    }
    bool PreTranslateMessage(MSG& message) override {
        if (message.message == WM_APP) calls.push_back("message");
        return false;
    }

private:
    bool startUp_;
};

TEST(VWinAppTest, ExitRunsAfterTheLoopAndAfterAFailedStartUp) {
    const struct {
        bool startUp;
        std::vector<std::string> calls;
        int exitCode;
    } cases[] = {{true, {"init", "run", "message", "exit"}, 7}, {false, {"init", "exit"}, 1}};
    for (const auto& test : cases) {
        RecordingApp app(test.startUp);
        EXPECT_EQ(VWinApp::GetApp(), &app);
        EXPECT_THROW(RecordingApp(true), std::logic_error) << "one application object";
        EXPECT_EQ(app.Main(GetModuleHandleW(nullptr), SW_SHOW), test.exitCode);
        EXPECT_EQ(app.calls, test.calls);
        MSG left;  // what the failed start-up posted must not reach the next case
        while (PeekMessageW(&left, nullptr, 0, 0, PM_REMOVE)) {
        }
    }
    EXPECT_EQ(VWinApp::GetApp(), nullptr);
}

class SampleDialog : public VDialog {
public:
    using VDialog::VDialog;
    wchar_t initialText[64] = {};

protected:
    bool OnInitDialog() override {
        GetWindowTextW(GetItem(100), initialText, 64);
        return true;
    }
};

TEST(VDialogTest, InMemoryTemplateShowsItsControlsAndEndsWithTheChosenResult) {
    VDialogTemplate dialogTemplate(L"Sample", 160, 80);
    dialogTemplate.AddControl(L"Edit", L"hello", 100, 5, 5, 100, 12, ES_AUTOHSCROLL);
    dialogTemplate.AddControl(L"Button", L"OK", IDOK, 5, 25, 40, 14, BS_DEFPUSHBUTTON);
    // A command of 0 stands for the dialog's own EndDialog(42).
    for (const WPARAM command : {IDOK, IDCANCEL, 0}) {
        SampleDialog dialog(dialogTemplate);
        ModalProbe probe([&] {
            if (!command) dialog.EndDialog(42);
            return !command || PostMessageW(dialog.GetHwnd(), WM_COMMAND, command, 0);
        });
        EXPECT_EQ(dialog.DoModal(), command ? static_cast<INT_PTR>(command) : 42) << command;
        EXPECT_STREQ(dialog.initialText, L"hello");
        EXPECT_EQ(dialog.GetHwnd(), nullptr);
    }
    EXPECT_EQ(VDialog(9999).DoModal(), -1) << "no such template resource";
}

// Real boxes, shown when no hook is set, the tray program's end-to-end tests read and answer.
TEST(VMessageBoxTest, TheHookSeesEveryBoxWithItsTextAndCaption) {
    static std::vector<VMessageBoxCall> boxes;
    const VMessageBoxHook record = [](const VMessageBoxCall& call) {
        boxes.push_back(call);
        return IDRETRY;
    };
    SetMessageBoxHookForTests(record);
    EXPECT_EQ(VMessageBox(L"plain text", MB_ICONEXCLAMATION), IDRETRY);
    VReportMessageParams report(ERROR_ACCESS_DENIED);
    EXPECT_EQ(VMessageBox(report), IDRETRY);
    EXPECT_EQ(SetMessageBoxHookForTests(nullptr), record);
    ASSERT_EQ(boxes.size(), 2u);
    EXPECT_EQ(boxes[0].type, static_cast<UINT>(MB_ICONEXCLAMATION));
    EXPECT_EQ(std::vector<VUnicodeString>({boxes[0].text, boxes[1].text}),
              std::vector<VUnicodeString>({L"plain text", report.GetText()}));
    for (const VMessageBoxCall& call : boxes) EXPECT_EQ(call.caption, L"Quillon Software Traywell");
}

}  // namespace
