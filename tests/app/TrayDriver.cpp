#include "TrayDriver.h"

#include <gtest/gtest.h>

#include <cwchar>
#include <utility>

#include "ClientProtocol.h"
#include "Installation.h"
#include "ProgramFolder.h"
#include "TrayIcon.h"

constexpr int MessageBoxTextId = 0xFFFF;  // the control of a message box that holds its text

Lines ReadLines(const VUnicodeString& file) {
    Lines lines;
    const std::string bytes = ReadWholeFile(file);
    for (size_t start = 0, end; (end = bytes.find('\n', start)) != std::string::npos;
         start = end + 1)
        lines.Add(VUnicodeString(VString(bytes.substr(start, end - start).c_str())));
    return lines;
}

ClientHelper::ClientHelper(bool terminal, const Lines& sessions, const wchar_t* exitAnswer,
                           int windows)
    : windowClass(terminal ? ClientProtocol::TerminalWindowClass
                           : ClientProtocol::TransferWindowClass),
      process(GetPathBesideProgram(L"client_window_helper.exe"), [&] {
          VUnicodeString arguments;
          arguments.FormatPositional(L"--%1 \"%2\" %3!d! %4", terminal ? L"terminal" : L"transfer",
                                     (folder / L"client.log").c_str(), windows, exitAnswer);
          for (const VUnicodeString& session : sessions)
              arguments += VUnicodeString(L" \"") + session + L"\"";
          return arguments;
      }()) {
    process.Windows(windowClass, static_cast<size_t>(windows));
}

Lines ClientHelper::Log(size_t count) const {
    Lines lines;
    WaitUntil([&] { return (lines = ReadLines(folder / L"client.log")).GetCount() >= count; });
    return lines;
}

// Clients not named keep the default path, beside the test, where there is none.
InstalledClients::InstalledClients(bool termwright, bool filewright, bool integrated) {
    const VUnicodeString helper = GetPathBesideProgram(L"client_window_helper.exe");
    for (const auto& [client, installed] :
         {std::pair{L"Termwright", termwright}, {L"Filewright", filewright}})
        if (installed)
            RegSetKeyValueW(HKEY_CURRENT_USER,
                            (VUnicodeString(InstallationKeyPath) + L"\\" + client).c_str(), L"Path",
                            REG_SZ, helper.c_str(),
                            static_cast<DWORD>((helper.GetLength() + 1) * sizeof(wchar_t)));
    const DWORD value = integrated;
    RegSetKeyValueW(HKEY_CURRENT_USER, InstallationKeyPath, L"Integrated", REG_DWORD, &value,
                    sizeof value);
}

InstalledClients::~InstalledClients() { RegDeleteTreeW(HKEY_CURRENT_USER, InstallationKeyPath); }

TraywellUnderTest::TraywellUnderTest(const wchar_t* arguments, bool waitForIcon)
    : process(GetPathBesideProgram(L"traywell.exe"), [&] {
          // Inherited by Traywell, and from it by the helper when it is started as a client.
          SetEnvironmentVariableW(L"TRAYWELL_HELPER_LAUNCH_LOG",
                                  (folder / L"launches.log").c_str());
          return arguments ? VUnicodeString(arguments)
                           : VUnicodeString(L"/F \"") + folder.Path() + L"\"";
      }()) {
    if (waitForIcon) process.Windows(TrayIcon::WindowClassName, 1, false);
}

void TraywellUnderTest::OpenMenu() const {
    const auto icons = process.Windows(TrayIcon::WindowClassName, 1, false);
    if (!icons.empty())
        PostMessageW(icons[0], TrayIcon::CallbackMessage, TrayIcon::IconId, WM_RBUTTONUP);
    process.Windows(L"#32768", 1);
}

void TraywellUnderTest::Type(const wchar_t* keys) const {
    const auto menus = process.Windows(L"#32768", 1);
    static constexpr wchar_t named[] = L"v^>!";
    static constexpr UINT virtualKeys[] = {VK_DOWN, VK_UP, VK_RIGHT, VK_RETURN};
    for (const wchar_t* key = keys; !menus.empty() && *key; ++key) {
        if (const wchar_t* name = std::wcschr(named, *key))
            PostMessageW(menus[0], WM_KEYDOWN, virtualKeys[name - named], 0);
        else
            PostMessageW(menus[0], WM_CHAR, *key, 0);
        Sleep(100);  // a submenu opens before the next key
    }
    WaitUntil([&] { return process.Windows(L"#32768").empty(); });
}

VUnicodeString TraywellUnderTest::TakeBoxText(int button) const {
    const HWND box = WaitForDialog(MessageBoxTextId);
    const VUnicodeString text = ItemText(box, MessageBoxTextId);
    PostMessageW(box, WM_COMMAND, static_cast<WPARAM>(button), 0);
    WaitUntil([&] { return !IsWindow(box); });
    return text;
}

HWND TraywellUnderTest::WaitForDialog(int controlId) const {
    HWND dialog = nullptr;
    WaitUntil([&] {
        for (HWND window : process.Windows(L"#32770"))
            if (GetDlgItem(window, controlId)) dialog = window;
        return dialog != nullptr;
    });
    return dialog;
}

void PrintTo(const VUnicodeString& text, std::ostream* out) {
    *out << testing::PrintToString(std::wstring(text.c_str(), text.GetLength()));
}
