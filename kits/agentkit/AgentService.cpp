#include "AgentService.h"

#include "AddKeyDialog.h"
#include "AgentMessages.h"
#include "AgentPipeClient.h"
#include "KeyFile.h"
#include "Utf8Text.h"
#include "VMessageBox.h"

bool MessageBoxConfirm::ConfirmUse(const AgentKeyInfo& key, const VUnicodeString& client) {
    VUnicodeString comment;
    if (!ReadUtf8(reinterpret_cast<const uint8_t*>(key.comment.data()), key.comment.size(), comment)) comment = L"?";
    const wchar_t* label;
    unsigned bits;
    DescribePublicKey(key.publicBlob, label, bits);
    const AgentText fingerprint = KeyFingerprint(key.publicBlob);
    VReportMessageParams question;
    SetAgentReport(question, AGENT_CONFIRM_QUESTION, client, comment, VUnicodeString(label),
                   VString(fingerprint.c_str()));
    return VMessageBox(question, MB_YESNO | MB_ICONQUESTION | MB_DEFBUTTON2 | MB_TOPMOST) == IDYES;
}

AgentService::AgentService(const wchar_t* pipeName, const wchar_t* storeName)
    : store_(storeName), protocol_(store_, confirm_), server_(protocol_, store_, pipeName) {}

bool AgentService::Start(VReportMessageParams& report) { return store_.CheckOpen(report) && server_.Start(report); }

bool AddKeyThroughAgent(const wchar_t* path, const wchar_t* pipeName, VReportMessageParams& report) {
    AgentBytes content;
    if (!ReadKeyFileBytes(path, content, report)) return false;
    const bool sealed = KeyFileNeedsPassphrase(content);
    VUnicodeString prompt;
    for (;;) {
        VUnicodeString passphrase(Str::Sensitive);
        uint32_t lifetime = 0;
        bool confirm = false;
        if (sealed) {
            AddKeyDialog options(VUnicodeString(path), true, prompt, nullptr);
            if (options.DoModal() != IDOK) {
                report.Clear();
                return false;
            }
            passphrase = options.GetPassphrase();
            lifetime = options.GetLifetimeSeconds();
            confirm = options.GetConfirm();
        }
        LoadedKey key;
        KeyFileError error;
        if (!LoadKeyFile(path, passphrase, key, report, &error)) {
            if (sealed && error == KeyFileError::WrongPassphrase) {
                prompt = report.GetTextAsString();
                continue;
            }
            return false;
        }
        AgentPipeClient client;
        if (!client.Connect(pipeName, 5000, report)) return false;
        if (client.Add(key.key, key.comment, lifetime, confirm)) return true;
        SetAgentReport(report, AGENT_REFUSED, path);
        return false;
    }
}
