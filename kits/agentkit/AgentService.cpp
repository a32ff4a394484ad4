#include "AgentService.h"

#include "AgentMessages.h"
#include "AgentPipeClient.h"
#include "KeyFile.h"
#include "Utf8Text.h"
#include "VMessageBox.h"

namespace {

// A login script may start Traywell and add keys right after it.
constexpr DWORD AgentStartWaitMs = 10000;

}  // namespace

bool MessageBoxConfirm::ConfirmUse(const AgentKeyInfo& key, const VUnicodeString& client) {
    VUnicodeString comment;
    if (!ReadUtf8(reinterpret_cast<const uint8_t*>(key.comment.data()), key.comment.size(),
                  comment))
        comment = L"?";
    const wchar_t* label;
    unsigned bits;
    DescribePublicKey(key.publicBlob, label, bits);
    const AgentText fingerprint = KeyFingerprint(key.publicBlob);
    VReportMessageParams question;
    SetAgentReport(question, AGENT_CONFIRM_QUESTION, client, comment, VUnicodeString(label),
                   VString(fingerprint.c_str()));
    return VMessageBox(question, MB_YESNO | MB_ICONQUESTION | MB_DEFBUTTON2 | MB_TOPMOST) == IDYES;
}

AgentService::AgentService()
    : protocol_(store_, confirm_), server_(protocol_, store_, AgentPipeServer::DefaultPipeName) {}

bool AgentService::Start(bool holdStore, VReportMessageParams& report) {
    return (!holdStore || store_.CheckOpen(report)) && server_.Start(report);
}

bool AddKeyThroughAgent(const VUnicodeString& path, AgentKeyOptions options,
                        const wchar_t* pipeName, VReportMessageParams& report,
                        VDialog** openDialog) {
    LoadedKey key;
    if (!LoadKeyAsking(path, false, nullptr, options, key, report, openDialog)) return false;
    AgentPipeClient client;
    if (!client.Connect(pipeName, AgentStartWaitMs, report)) return false;
    if (client.Add(key.key, key.comment, options.LifetimeSeconds(), options.confirm)) return true;
    SetAgentReport(report, AGENT_REFUSED, path);
    return false;
}
