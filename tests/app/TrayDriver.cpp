#include "TrayDriver.h"

#include <gtest/gtest.h>

#include "ClientProtocol.h"
#include "Installation.h"
#include "ProgramFolder.h"
#include "TrayIcon.h"
#include "TraywellResources.h"

namespace {

struct WindowSearch {
    DWORD process;
    const wchar_t* className;
    bool visibleOnly;
    std::vector<HWND> found;

    static BOOL CALLBACK Visit(HWND window, LPARAM self) {
        auto& search = *reinterpret_cast<WindowSearch*>(self);
        DWORD owner = 0;
        wchar_t className[256];
        GetWindowThreadProcessId(window, &owner);
        if (owner == search.process && GetClassNameW(window, className, 256) &&
            VUnicodeString(className) == search.className &&
            (!search.visibleOnly || IsWindowVisible(window)))
            search.found.push_back(window);
        return TRUE;
    }
};

void SetValue(const wchar_t* client, const wchar_t* name, DWORD type, const void* data,
              size_t size) {
    const VUnicodeString key =
        VUnicodeString(InstallationKeyPath) + (client ? L"\\" : L"") + (client ? client : L"");
    RegSetKeyValueW(HKEY_CURRENT_USER, key.c_str(), name, type, data, static_cast<DWORD>(size));
}

// A message box's text (its static controls but the icon); empty for the
// program's own dialogs.
VUnicodeString BoxText(HWND box) {
    VUnicodeString text;
    for (const int control : {IDC_EXIT_TEXT, IDC_SESSIONS_LIST, IDC_ABOUT_VERSION})
        if (GetDlgItem(box, control)) return text;
    for (HWND child = GetWindow(box, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT)) {
        wchar_t className[32], part[1024];
        if (!GetClassNameW(child, className, 32) || _wcsicmp(className, L"Static") != 0) continue;
        if ((GetWindowLongW(child, GWL_STYLE) & SS_TYPEMASK) == SS_ICON) continue;
        if (SendMessageW(child, WM_GETTEXT, 1024, reinterpret_cast<LPARAM>(part)) > 0) text += part;
    }
    return text;
}

}  // namespace

TestProcess::TestProcess(const VUnicodeString& program, const VUnicodeString& arguments) {
    VUnicodeString commandLine = VUnicodeString(L"\"") + program + L"\" " + arguments;
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process{};
    if (CreateProcessW(program.c_str(), commandLine.GetBuffer(commandLine.GetLength()), nullptr,
                       nullptr, FALSE, 0, nullptr, nullptr, &startup, &process)) {
        process_.Reset(process.hProcess);
        CloseHandle(process.hThread);
        id_ = process.dwProcessId;
    }
}

bool TestProcess::Exited(DWORD limit, DWORD* code) const {
    if (!process_ || WaitForSingleObject(process_.Get(), limit) != WAIT_OBJECT_0) return false;
    if (code) GetExitCodeProcess(process_.Get(), code);
    return true;
}

void TestProcess::Kill() {
    if (process_ && !Exited(0)) {
        TerminateProcess(process_.Get(), 99);
        Exited();
    }
}

std::vector<HWND> TestProcess::Windows(const wchar_t* className, size_t count,
                                       bool visibleOnly) const {
    WindowSearch search{id_, className, visibleOnly, {}};
    WaitUntil([&] {
        search.found.clear();
        EnumWindows(WindowSearch::Visit, reinterpret_cast<LPARAM>(&search));
        return search.found.size() >= count;
    });
    return search.found;
}

ClientHelper::ClientHelper(bool terminal, const Lines& sessions, const wchar_t* exitAnswer,
                           int windows)
    : windowClass(terminal ? ClientProtocol::TerminalWindowClass
                           : ClientProtocol::TransferWindowClass),
      process(GetPathBesideProgram(L"client_window_helper.exe"), [&] {
          VUnicodeString arguments;
          arguments.FormatPositional(L"--class %1 --exit %2 --windows %3!d! --log \"%4\"",
                                     terminal ? L"terminal" : L"transfer", exitAnswer, windows,
                                     (folder / L"client.log").c_str());
          for (const VUnicodeString& session : sessions)
              arguments += VUnicodeString(L" --session \"") + session + L"\"";
          return arguments;
      }()) {
    process.Windows(windowClass, static_cast<size_t>(windows));
}

Lines ClientHelper::Log(size_t count) const {
    Lines lines;
    WaitUntil([&] {
        return (lines = TraywellUnderTest::ReadLines(folder / L"client.log")).GetCount() >= count;
    });
    return lines;
}

InstalledClients::InstalledClients(bool termwright, bool filewright, bool integrated) {
    const VUnicodeString helper = GetPathBesideProgram(L"client_window_helper.exe");
    const VUnicodeString nowhere = L"C:\\nowhere\\client.exe";
    for (const auto& [client, installed] :
         {std::pair{L"Termwright", termwright}, {L"Termlet", false}, {L"Filewright", filewright}}) {
        const VUnicodeString& path = installed ? helper : nowhere;
        SetValue(client, L"Path", REG_SZ, path.c_str(), (path.GetLength() + 1) * sizeof(wchar_t));
    }
    const DWORD value = integrated;
    SetValue(nullptr, L"Integrated", REG_DWORD, &value, sizeof value);
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
    for (const wchar_t* key = keys; !menus.empty() && *key; ++key) {
        const UINT virtualKey = *key == L'v'   ? VK_DOWN
                                : *key == L'^' ? VK_UP
                                : *key == L'>' ? VK_RIGHT
                                : *key == L'!' ? VK_RETURN
                                               : 0;
        if (virtualKey)
            PostMessageW(menus[0], WM_KEYDOWN, virtualKey, 0);
        else
            PostMessageW(menus[0], WM_CHAR, *key, 0);
        Sleep(100);  // a submenu opens before the next key
    }
    WaitUntil([&] { return process.Windows(L"#32768").empty(); });
}

VUnicodeString TraywellUnderTest::TakeBoxText() const {
    HWND box = nullptr;
    WaitUntil([&] {
        for (HWND window : process.Windows(L"#32770"))
            if (!BoxText(window).IsEmpty()) box = window;
        return box != nullptr;
    });
    const VUnicodeString text = box ? BoxText(box) : VUnicodeString();
    PostMessageW(box, WM_COMMAND, IDOK, 0);
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

Lines TraywellUnderTest::ReadLines(const VUnicodeString& file) {
    Lines lines;
    const std::string bytes = ReadWholeFile(file);
    for (size_t start = 0, end; (end = bytes.find('\n', start)) != std::string::npos;
         start = end + 1)
        lines.Add(VUnicodeString(VString(bytes.substr(start, end - start).c_str())));
    return lines;
}

void PrintTo(const VUnicodeString& text, std::ostream* out) {
    *out << testing::PrintToString(std::wstring(text.c_str(), text.GetLength()));
}
