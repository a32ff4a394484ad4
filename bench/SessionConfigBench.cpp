// How fast sessions load as SessionConfig objects, from a tree of INI files
// and from the registry, against the floor measured in the same run on the
// same data: every session's values file read with ReadFile and converted
// with one MultiByteToWideChar, or every value of every session key read
// with one RegQueryValueExW, with no parsing and no typing.
//
//   session_config_bench [sessions] [rounds] [changed|whole]   (default 5000, 3, changed)
//
// The sessions sit in 50 folders below "Sessions". Each is what a user sets
// up for a server: a host, a user, a port, a login script, a description,
// bookmarks, a log and a few terminal choices. "changed" stores what differs
// from the defaults (27 values), as a client saves a session; "whole" stores
// every value (215), as a session saved with force holds them. A load opens
// the session's key in a store opened once and builds a SessionConfig with
// the protocol table: every value of the session, the terminal block, the
// remote host and every protocol's part. Beside it: the objects alone (built
// from no key), and the store alone (the key opened and the values it holds
// read with the getter of their kind, untyped).
#include <windows.h>

#include <cstdio>
#include <cwchar>
#include <string>
#include <vector>

#include "BenchSupport.h"
#include "ConnectProtocols.h"
#include "FileSystem.h"
#include "ProtocolConnectConfig.h"
#include "SessionConfig.h"
#include "VIniFileStoreFactory.h"
#include "VRegistryStoreFactory.h"

namespace {

VUnicodeString SessionPath(size_t index) {
    const std::wstring path = L"Folder " + std::to_wstring(index % 50) + L"\\host-" +
                              std::to_wstring(index) + L".example.org";
    return VUnicodeString(path.c_str());
}

// What a user sets up in a new session.
void Fill(VProfileStoreFactory& factory, size_t sessions, bool whole) {
    VProfileStore store(&factory);
    VReportMessageParams report;
    for (size_t i = 0; i < sessions; ++i) {
        const VUnicodeString path = SessionPath(i);
        SessionConfig session(nullptr, path, SessionMode::Terminal, &GetConnectProtocolTable());
        RemoteHostConfig& host = session.GetRemoteHostConfig();
        host.SetHostname(session.GetSessionName());
        host.SetUsername(L"operator");
        session.SetProtocolName(L"SSH2");
        dynamic_cast<ProtocolConnectConfig&>(*session.GetCurrentConnectConfig())
            .GetNumber(0)
            ->Set(2200 + i % 100);
        session.LoginScript.SetPlainText(L"ogin:\r\noperator\r\n$ \r\ncd /var/log", report);
        session.UseLoginScript.Set(true);
        session.Description.Set(L"Build server\r\nRack 4, ask the night shift first");
        session.FilewrightBookmarks.Set({L"/var/log", L"/srv/builds", L"C:\\Transfers"});
        session.LogFilename.Set(L"${QLS_USER_DATA_PATH}\\Logs\\%H-%Y%M%D.log");
        session.TimeZone.Set(L"W. Europe Standard Time");
        session.Terminal.Rows.Set(40);
        session.Terminal.Cols.Set(132);
        session.Terminal.Scrollback.Set(20000);
        session.Terminal.ColorScheme.Set(L"Solarized Dark");
        session.Terminal.NormalFontV2.Set(VLogFont(L"Consolas", -15));
        session.Terminal.Emulation.Set(L"VT220");
        session.Terminal.AudioBell.Set(false);
        session.Terminal.CursorStyle.Set(2);
        session.UseTitleBar.Set(true);
        session.TitleBar.Set(L"%S - build");
        session.StartLogUponConnect.Set(true);
        session.LogMode.Set(1);
        session.IdleNoOpCheck.Set(true);
        session.IdleNoOpTimeout.Set(120);
        session.FilenamesAlwaysUseUtf8.Set(VTriState::Yes);
        session.DownloadDirectory.Set(L"D:\\Builds");
        const auto key = SessionConfig::OpenKey(store.GetRootKey(), path, true);
        if (!session.Save(*key, whole)) std::printf("  !! session %zu was not saved\n", i);
    }
}

// The objects alone: every session built with its defaults, from no key.
size_t BuildAll(size_t sessions) {
    size_t marked = 0;
    for (size_t i = 0; i < sessions; ++i) {
        const SessionConfig session(nullptr, SessionPath(i), SessionMode::Terminal,
                                    &GetConnectProtocolTable());
        marked += !session.IsMarkedAsSession();
    }
    return marked;
}

size_t LoadAll(VProfileStoreFactory& factory, size_t sessions) {
    VProfileStore store(&factory, true);
    size_t marked = 0;
    for (size_t i = 0; i < sessions; ++i) {
        const VUnicodeString path = SessionPath(i);
        const auto key = SessionConfig::OpenKey(store.GetRootKey(), path, false);
        const SessionConfig session(key.get(), path, SessionMode::Terminal,
                                    &GetConnectProtocolTable());
        marked += session.IsMarkedAsSession();
    }
    return marked;
}

// What the store alone costs: each session's key opened and every value it
// holds read with the getter of its kind, untyped; the number read.
using StoredValues = std::vector<std::pair<VUnicodeString, uint32_t>>;

StoredValues ListValues(VProfileStoreFactory& factory, const VUnicodeString& path) {
    VProfileStore store(&factory, true);
    const auto key = SessionConfig::OpenKey(store.GetRootKey(), path, false);
    StoredValues values;
    VProfileKeyIterator iterator(*key, true);
    VUnicodeString name;
    uint32_t kind = 0;
    while (iterator.Next(name, kind)) values.emplace_back(name, kind);
    return values;
}

size_t ReadUntyped(VProfileStoreFactory& factory, size_t sessions, const StoredValues& values) {
    VProfileStore store(&factory, true);
    size_t read = 0;
    uint32_t number = 0;
    VUnicodeString text;
    VArray<VUnicodeString> strings;
    uint8_t buffer[256];
    for (size_t i = 0; i < sessions; ++i) {
        const auto key = SessionConfig::OpenKey(store.GetRootKey(), SessionPath(i), false);
        for (const auto& [name, kind] : values) {
            uint32_t size = sizeof buffer;
            switch (kind) {
                case ProfileDword:
                    read += key->GetDword(name, number);
                    break;
                case ProfileString:
                    read += key->GetString(name, text);
                    break;
                case ProfileBinary:
                    read += key->GetBinary(name, buffer, size);
                    break;
                default:
                    read += key->GetMultiString(name, strings);
            }
        }
    }
    return read;
}

void Report(const char* backEnd, size_t sessions, size_t values, size_t bytes,
            const std::vector<double>& times, size_t marked) {
    std::printf("\n%s: %zu sessions, %zu values, %zu bytes\n  %-22s %10s %10s %8s\n", backEnd,
                sessions, values, bytes, "case", "s", "ms/session", "x floor");
    const char* names[] = {"floor", "SessionConfig", "the objects alone", "the store alone"};
    for (size_t i = 0; i < times.size(); ++i)
        std::printf("  %-22s %10.3f %10.4f %8.2f\n", names[i], times[i],
                    times[i] * 1e3 / static_cast<double>(sessions), times[i] / times[0]);
    if (marked != sessions) std::printf("  !! %zu sessions read as marked\n", marked);
}

void IniFiles(size_t sessions, int rounds, bool whole) {
    const std::wstring folder = TempPath() + L"session_config_bench";
    CreateDirectoryW(folder.c_str(), nullptr);
    // No personal data folder: one values file per session, as by default.
    VIniFileStoreFactory factory(VUnicodeString(folder.c_str()), VUnicodeString());
    Fill(factory, sessions, whole);
    std::vector<std::wstring> files;
    size_t bytes = 0;
    for (size_t i = 0; i < sessions; ++i) {
        files.push_back(folder + L"\\Sessions\\" + SessionPath(i).c_str() + L".ini");
        WIN32_FILE_ATTRIBUTE_DATA data{};
        GetFileAttributesExW(files.back().c_str(), GetFileExInfoStandard, &data);
        bytes += data.nFileSizeLow;
    }
    const StoredValues stored = ListValues(factory, SessionPath(0));
    std::vector<char> buffer(1 << 20);
    std::vector<wchar_t> text(buffer.size());
    size_t marked = 0;
    const std::vector<double> times =
        BestTimes({[&] {
                       for (const std::wstring& file : files) ReadFloor(file, buffer, text);
                   },
                   [&] { marked = LoadAll(factory, sessions); }, [&] { BuildAll(sessions); },
                   [&] { ReadUntyped(factory, sessions, stored); }},
                  rounds);
    Report("INI files", sessions, stored.size() * sessions, bytes, times, marked);
    DeleteTree(VUnicodeString(folder.c_str()));
}

void Registry(size_t sessions, int rounds, bool whole) {
    const std::wstring root =
        L"Software\\TraywellBench\\sessions-" + std::to_wstring(GetCurrentProcessId());
    VRegistryStoreFactory factory(HKEY_CURRENT_USER, VUnicodeString(root.c_str()));
    Fill(factory, sessions, whole);
    // Every session key with the names of its values, listed beforehand.
    std::vector<std::pair<std::wstring, std::vector<std::wstring>>> keys;
    size_t values = 0;
    size_t bytes = 0;
    for (size_t i = 0; i < sessions; ++i) {
        keys.push_back({root + L"\\Sessions\\" + SessionPath(i).c_str(), {}});
        HKEY key = nullptr;
        RegOpenKeyExW(HKEY_CURRENT_USER, keys.back().first.c_str(), 0, KEY_READ, &key);
        wchar_t name[256];
        DWORD nameLength = 256;
        DWORD size = 0;
        for (DWORD index = 0; RegEnumValueW(key, index, name, &nameLength, nullptr, nullptr,
                                            nullptr, &size) == ERROR_SUCCESS;
             ++index, nameLength = 256) {
            keys.back().second.emplace_back(name, nameLength);
            bytes += size;
        }
        values += keys.back().second.size();
        RegCloseKey(key);
    }
    const StoredValues stored = ListValues(factory, SessionPath(0));
    size_t marked = 0;
    const std::vector<double> times =
        BestTimes({[&] {
                       BYTE data[4096];
                       for (const auto& [path, names] : keys) {
                           HKEY key = nullptr;
                           RegOpenKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, KEY_READ, &key);
                           for (const std::wstring& name : names) {
                               DWORD size = sizeof data;
                               DWORD type = REG_NONE;
                               RegQueryValueExW(key, name.c_str(), nullptr, &type, data, &size);
                           }
                           RegCloseKey(key);
                       }
                   },
                   [&] { marked = LoadAll(factory, sessions); }, [&] { BuildAll(sessions); },
                   [&] { ReadUntyped(factory, sessions, stored); }},
                  rounds);
    Report("registry", sessions, values, bytes, times, marked);
    RegDeleteTreeW(HKEY_CURRENT_USER, root.c_str());
    RegDeleteKeyW(HKEY_CURRENT_USER, L"Software\\TraywellBench");
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
    const size_t sessions = argc > 1 ? std::wcstoul(argv[1], nullptr, 10) : 5000;
    const int rounds = argc > 2 ? static_cast<int>(std::wcstol(argv[2], nullptr, 10)) : 3;
    const bool whole = argc > 3 && std::wcscmp(argv[3], L"whole") == 0;
    std::printf(
        "session_config_bench: %zu sessions saved %s, best of %d rounds; \"x floor\" is the "
        "time ratio to the floor\n",
        sessions, whole ? "whole" : "with what changed", rounds);
    IniFiles(sessions, rounds, whole);
    Registry(sessions, rounds, whole);
    return 0;
}
