// The firewall credential prompts for real: a host program (FirewallPromptHost)
// asks for a credential, and the test finds its dialog among the windows of
// the desktop, types into it as a user would, ticks Save or not, presses OK
// or Cancel, and checks what the host was handed and what reached the store.
#include <gtest/gtest.h>

#include <windows.h>

#include <string>

#include "FirewallConfig.h"
#include "TempFolder.h"
#include "VIniFileStoreFactory.h"
#include "Win32Handle.h"

namespace {

constexpr int TextId = 1002;
constexpr int SaveId = 1003;
constexpr wchar_t Passphrase[] = L"pass phrase";

// The visible dialog ("#32770") of process, waiting up to 20 seconds.
HWND FindDialogOf(DWORD process) {
    struct Search {
        DWORD process;
        HWND found;
    } search{process, nullptr};
    for (int attempt = 0; attempt < 400 && !search.found; ++attempt) {
        EnumWindows(
            [](HWND window, LPARAM parameter) -> BOOL {
                auto& wanted = *reinterpret_cast<Search*>(parameter);
                DWORD owner = 0;
                GetWindowThreadProcessId(window, &owner);
                wchar_t name[16] = {};
                GetClassNameW(window, name, 16);
                if (owner != wanted.process || !IsWindowVisible(window) ||
                    std::wstring(name) != L"#32770")
                    return TRUE;
                wanted.found = window;
                return FALSE;
            },
            reinterpret_cast<LPARAM>(&search));
        if (!search.found) Sleep(50);
    }
    return search.found;
}

struct Prompt {
    const wchar_t* credential;  // "user" or "password"
    const wchar_t* typed;
    bool tickSave;
    int button;
};

// Runs the host for firewall "corp" of folder, answers its prompt, and
// returns what it printed.
std::string RunHost(const VUnicodeString& folder, const Prompt& prompt) {
    wchar_t path[MAX_PATH];
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    std::wstring host(path);
    host = host.substr(0, host.rfind(L'\\')) + L"\\firewall_prompt_host.exe";
    std::wstring line = L"\"" + host + L"\" \"" + folder.c_str() + L"\" corp " + prompt.credential +
                        L" \"" + Passphrase + L"\"";
    SECURITY_ATTRIBUTES inherit{sizeof inherit, nullptr, TRUE};
    HANDLE readEnd = nullptr, writeEnd = nullptr;
    EXPECT_TRUE(CreatePipe(&readEnd, &writeEnd, &inherit, 0));
    const KernelHandle reader(readEnd);
    KernelHandle writer(writeEnd);
    SetHandleInformation(readEnd, HANDLE_FLAG_INHERIT, 0);
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = writeEnd;
    startup.hStdError = writeEnd;
    PROCESS_INFORMATION started{};
    if (!CreateProcessW(host.c_str(), line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                        &startup, &started)) {
        ADD_FAILURE() << "the host did not start: " << GetLastError();
        return {};
    }
    const KernelHandle process(started.hProcess);
    const KernelHandle thread(started.hThread);
    writer.Reset();
    const HWND dialog = FindDialogOf(started.dwProcessId);
    EXPECT_NE(dialog, nullptr) << "no prompt appeared";
    if (dialog) {
        const HWND field = GetDlgItem(dialog, TextId);
        for (const wchar_t* character = prompt.typed; *character; ++character)
            SendMessageW(field, WM_CHAR, *character, 1);
        if (prompt.tickSave) SendMessageW(GetDlgItem(dialog, SaveId), BM_CLICK, 0, 0);
        PostMessageW(GetDlgItem(dialog, prompt.button), BM_CLICK, 0, 0);
    }
    EXPECT_EQ(WaitForSingleObject(process.Get(), 20000), WAIT_OBJECT_0);
    std::string output;
    char buffer[512];
    DWORD got = 0;
    while (ReadFile(reader.Get(), buffer, sizeof buffer, &got, nullptr) && got > 0)
        output.append(buffer, got);
    return output;
}

TEST(FirewallPromptWindows, WhatIsTypedIsHandedBackAndSavedOnlyWhenAskedTo) {
    const struct {
        Prompt prompt;
        const char* handed;
        bool saved;
    } cases[] = {
        {{L"user", L"carol", true, IDOK}, "confirmed=1\ntext=carol\nsensitive=1\nreport=0\n", true},
        {{L"password", L"s3cret pass", true, IDOK},
         "confirmed=1\ntext=s3cret pass\nsensitive=1\nreport=0\n",
         true},
        {{L"user", L"dave", false, IDOK}, "confirmed=1\ntext=dave\nsensitive=1\nreport=0\n", false},
        {{L"password", L"never", true, IDCANCEL},
         "confirmed=0\ntext=(none)\nsensitive=1\nreport=0\n",
         false},
    };
    for (const auto& c : cases) {
        TempFolder folder;
        VIniFileStoreFactory factory(folder.Path(), VUnicodeString());
        {
            VProfileStore store(&factory);
            auto key = FirewallConfig::OpenKey(store.GetRootKey(), L"corp", true);
            key->SetString(L"Firewall Type", L"HTTP_BASICAUTH");
        }
        std::string output = RunHost(folder.Path(), c.prompt);
        for (size_t at; (at = output.find('\r')) != std::string::npos;) output.erase(at, 1);
        EXPECT_EQ(output, c.handed);

        auto provider =
            VRefPtr<IPassphraseProvider>::Adopt(new VFixedPassphraseProvider(Passphrase));
        VProfileStore store(&factory, true);
        const FirewallConfig stored(
            L"corp", FirewallConfig::OpenKey(store.GetRootKey(), L"corp", false).get(),
            provider.Get());
        const bool password = std::wstring(c.prompt.credential) == L"password";
        VUnicodeString value;
        VReportMessageParams report;
        if (password) {
            EXPECT_TRUE(stored.FirewallPassword.GetPlainText(value, report));
        } else {
            value = stored.FirewallUser.Get();
        }
        EXPECT_EQ(value == c.prompt.typed, c.saved) << VString(value).c_str();
        EXPECT_EQ(value.IsEmpty(), !c.saved);
        if (password && c.saved) {
            EXPECT_TRUE(stored.FirewallPassword.Get().StartsWith(L"02:"));
        }
    }
}

}  // namespace
