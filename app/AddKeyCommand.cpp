#include "AddKeyCommand.h"

#include "AgentPipeServer.h"
#include "AgentService.h"
#include "TraywellMessages.h"
#include "VCommandLine.h"
#include "VMessageBox.h"

bool AddKeyCommand::Read(const VUnicodeString& commandLine, VReportMessageParams& report) {
    file_.Empty();
    options_ = AgentKeyOptions();
    VCommandLine parser;
    parser.Parse(commandLine, report);  // the folder is not this command's business
    VUnicodeString file;
    const wchar_t* failed = nullptr;
    if (!parser.GetTextOption(L"/AddKey", file, report, false))
        failed = L"/AddKey";
    else if (!file.IsEmpty() &&
             !parser.GetNumberOption(L"/Lifetime", options_.lifetimeMinutes, report, false))
        failed = L"/Lifetime";
    if (failed) {
        report.Set(TRAY_ADD_KEY_USAGE, failed);
        return false;
    }
    options_.confirm = parser.TakeSwitch(L"/Confirm");
    file_ = file;
    return true;
}

bool AddKeyCommand::Run(VDialog** openDialog) const {
    VReportMessageParams report;
    if (AddKeyThroughAgent(file_, options_, AgentPipeServer::DefaultPipeName, report, openDialog))
        return true;
    if (report.GetMessageCode() != 0) VMessageBox(report, MB_OK | MB_ICONEXCLAMATION);
    return false;
}
