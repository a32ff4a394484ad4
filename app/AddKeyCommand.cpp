#include "AddKeyCommand.h"

#include "AgentPipeServer.h"
#include "AgentService.h"
#include "TraywellMessages.h"
#include "VCommandLine.h"
#include "VMessageBox.h"

bool AddKeyCommand::Read(const VUnicodeString& commandLine, VReportMessageParams& report) {
    files_.RemoveAll();
    options_ = AgentKeyOptions();
    VCommandLine parser;
    parser.Parse(commandLine, report);  // the folder is not this command's business
    VArray<VUnicodeString> files;
    const wchar_t* failed = nullptr;
    // Each lookup takes one "/AddKey" away; the last finds none.
    for (;;) {
        VUnicodeString file;
        if (!parser.GetTextOption(L"/AddKey", file, report, false)) {
            failed = L"/AddKey";
            break;
        }
        if (file.IsEmpty()) break;
        files.Add(file);
    }
    if (!failed && !files.IsEmpty() &&
        !parser.GetNumberOption(L"/Lifetime", options_.lifetimeMinutes, report, false))
        failed = L"/Lifetime";
    if (failed) {
        report.Set(TRAY_ADD_KEY_USAGE, failed);
        return false;
    }
    options_.confirm = parser.TakeSwitch(L"/Confirm");
    files_ = files;
    return true;
}

bool AddKeyCommand::Run(VDialog** openDialog) const {
    bool added = true;
    for (const VUnicodeString& file : files_) {
        VReportMessageParams report;
        if (AddKeyThroughAgent(file, options_, AgentPipeServer::DefaultPipeName, report,
                               openDialog))
            continue;
        added = false;
        if (report.GetMessageCode() != 0) VMessageBox(report, MB_OK | MB_ICONEXCLAMATION);
    }
    return added;
}
