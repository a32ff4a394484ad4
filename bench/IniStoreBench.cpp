// How fast the INI-file store loads and saves keys, against two baselines
// measured in the same run on the same data:
//   floor   the same bytes read with ReadFile and converted with one
//           MultiByteToWideChar: what no parser can beat;
//   GPPS    the same values read one by one with GetPrivateProfileStringW
//           from a classic INI file (UTF-16, one "name=text" line each):
//           what a Windows developer would use instead.
// Saving is set against writing the same bytes with WriteFile, and against
// WritePrivateProfileSectionW writing the classic file's section at once.
// The key of 100,000 values (5 MB) is not given to the classic functions,
// which would take many minutes over it.
//
// A typed read of a value already loaded is set against reading a plain
// variable.
//
//   bench_ini_store [sessions]     (default 5000 session keys in the tree)
//
// A load is what a configuration object does: open the key and read every
// value with the getter of its kind.
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <cwchar>
#include <random>
#include <string>
#include <vector>

#include "BenchSupport.h"
#include "BenchValues.h"
#include "VIniFileKey.h"
#include "VProfile.h"

namespace {

// The classic INI file of the same values: one section, "name=text" lines,
// numbers in decimal, bytes in hexadecimal, lists joined with "|".
std::wstring ClassicSection(const std::vector<Value>& values) {
    std::wstring section;
    for (const Value& value : values) {
        section += value.name + L"=";
        switch (value.kind) {
            case ProfileDword:
                section += std::to_wstring(value.number);
                break;
            case ProfileString:
                section += value.text;
                break;
            case ProfileBinary:
                for (uint8_t byte : value.bytes) {
                    wchar_t pair[3];
                    std::swprintf(pair, 3, L"%02x", byte);
                    section += pair;
                }
                break;
            default:
                for (const std::wstring& string : value.strings) section += string + L"|";
        }
        section += L"\r\n";
    }
    return section;
}

void WriteClassicFile(const std::wstring& path, const std::vector<Value>& values) {
    const std::wstring text = L"\xFEFF[Values]\r\n" + ClassicSection(values);
    WriteRaw(path, std::string(reinterpret_cast<const char*>(text.data()),
                               text.size() * sizeof(wchar_t)));
}

size_t LoadClassic(const std::wstring& path, const std::vector<Value>& values) {
    wchar_t buffer[1024];
    size_t read = 0;
    for (const Value& value : values)
        read += GetPrivateProfileStringW(L"Values", value.name.c_str(), L"", buffer, 1024,
                                         path.c_str()) > 0;
    return read;
}

// The section text as WritePrivateProfileSectionW takes it: lines ended by
// zeros, the whole ended by one more.
std::wstring SectionStrings(const std::vector<Value>& values) {
    std::wstring lines = ClassicSection(values);
    std::wstring strings;
    for (size_t start = 0; start < lines.size();) {
        const size_t end = lines.find(L"\r\n", start);
        strings += lines.substr(start, end - start);
        strings += L'\0';
        start = end + 2;
    }
    return strings + L'\0';
}

std::string Utf8(const std::wstring& text) {
    std::string bytes(text.size() * 3, '\0');
    bytes.resize(static_cast<size_t>(
        WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), bytes.data(),
                            static_cast<int>(bytes.size()), nullptr, nullptr)));
    return bytes;
}

uint64_t FileSize(const std::wstring& path) {
    WIN32_FILE_ATTRIBUTE_DATA data;
    if (!GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &data)) return 0;
    return (static_cast<uint64_t>(data.nFileSizeHigh) << 32) | data.nFileSizeLow;
}

void PrintHeader(const char* what) {
    std::printf("\n%s\n  %-34s %10s %9s %12s %9s %9s\n", what, "case", "ms", "MB/s", "values/s",
                "x floor", "x GPPS");
}

// classic 0: not measured.
void PrintRow(const char* what, double seconds, uint64_t bytes, size_t values, double floor,
              double classic) {
    std::printf("  %-34s %10.3f %9.1f %12.0f %9.2f", what, seconds * 1e3,
                static_cast<double>(bytes) / seconds / 1e6, static_cast<double>(values) / seconds,
                seconds / floor);
    if (classic > 0)
        std::printf(" %9.3f\n", seconds / classic);
    else
        std::printf(" %9s\n", "-");
}

void CheckCount(const char* what, size_t read, size_t expected) {
    if (read != expected) std::printf("  !! %s read %zu values of %zu\n", what, read, expected);
}

void OneKey(const std::wstring& folder, size_t count, int rounds, bool withClassic) {
    const std::vector<Value> values = SessionLikeValues(count, static_cast<uint32_t>(count));
    const std::wstring name = L"key" + std::to_wstring(count);
    const VUnicodeString keyFolder = V(folder + name);
    const std::wstring valuesFile = folder + name + L".ini";
    const std::wstring classicFile = folder + name + L"-classic.ini";
    const std::wstring floorOut = folder + name + L"-floor-out.ini";
    {
        VIniFileKey key(keyFolder, VUnicodeString(), false, nullptr);
        Store(key, values);
    }
    if (withClassic) WriteClassicFile(classicFile, values);
    const uint64_t bytes = FileSize(valuesFile);
    std::vector<char> buffer(bytes + 4096);
    std::vector<wchar_t> text(bytes);
    size_t read[2] = {};

    const std::vector<double> loading =
        BestTimes({
                      [&] { ReadFloor(valuesFile, buffer, text); },
                      [&] { read[0] = withClassic ? LoadClassic(classicFile, values) : 0; },
                      [&] {
                          VIniFileKey key(keyFolder, VUnicodeString(), true, nullptr);
                          read[1] = LoadAll(key, values);
                      },
                  },
                  rounds);
    char title[128];
    std::snprintf(title, sizeof title, "one key of %zu values: %llu bytes", count,
                  static_cast<unsigned long long>(bytes));
    PrintHeader(title);
    const double classicLoad = withClassic ? loading[1] : 0;
    PrintRow("load: floor (ReadFile + convert)", loading[0], bytes, count, loading[0], classicLoad);
    if (withClassic)
        PrintRow("load: GetPrivateProfileStringW", loading[1], bytes, count, loading[0],
                 loading[1]);
    PrintRow("load: VIniFileKey", loading[2], bytes, count, loading[0], classicLoad);
    if (withClassic) CheckCount("GetPrivateProfileStringW", read[0], count);
    CheckCount("VIniFileKey", read[1], count);

    // Saving: the same bytes written at once, one section call, and a key
    // given every value and flushed.
    const std::wstring section = SectionStrings(values);
    const std::wstring sectionText = ClassicSection(values);
    // The last case times the save alone: a key whose values were set (not
    // timed) written to its file, as Flush or the key's end does.
    double flushOnly = 1e30;
    const std::vector<double> saving = BestTimes(
        {
            [&] { WriteRaw(floorOut, "\xEF\xBB\xBF" + Utf8(sectionText)); },
            [&] {
                if (withClassic)
                    WritePrivateProfileSectionW(L"Values", section.c_str(), classicFile.c_str());
            },
            [&] {
                VIniFileKey key(keyFolder, VUnicodeString(), false, nullptr);
                Store(key, values);
                key.Flush();
            },
            [&] {
                VIniFileKey key(keyFolder, VUnicodeString(), false, nullptr);
                Store(key, values);
                const double start = Now();
                key.Flush();
                flushOnly = std::min(flushOnly, Now() - start);
            },
        },
        rounds);
    const double classicSave = withClassic ? saving[1] : 0;
    PrintRow("save: floor (convert + WriteFile)", saving[0], bytes, count, saving[0], classicSave);
    if (withClassic)
        PrintRow("save: WritePrivateProfileSectionW", saving[1], bytes, count, saving[0],
                 saving[1]);
    PrintRow("save: VIniFileKey (set + flush)", saving[2], bytes, count, saving[0], classicSave);
    PrintRow("save: VIniFileKey (flush alone)", flushOnly, bytes, count, saving[0], classicSave);
    for (const std::wstring& file : {valuesFile, classicFile, floorOut}) DeleteFileW(file.c_str());
}

// A value already loaded, read as the program reads its options all the time:
// VProfile<T>::Get against a plain variable.
void TypedRead(const std::wstring& folder) {
    const VUnicodeString keyFolder = V(folder + L"typed");
    {
        VIniFileKey writer(keyFolder, VUnicodeString(), false, nullptr);
        writer.SetDword(L"Timeout", 180);
    }
    VProfileKey key(std::make_unique<VIniFileKey>(keyFolder, VUnicodeString(), true, nullptr));
    VProfile<unsigned long> timeout(L"Timeout", 0);
    timeout.Load(key);
    unsigned long plain = 180;
    // Read through volatile pointers, so that no read is hoisted out of the loop.
    VProfile<unsigned long>* volatile value = &timeout;
    unsigned long* volatile variable = &plain;
    constexpr int reads = 10000000;
    constexpr int rounds = 5;
    uint64_t sum[2] = {};
    const std::vector<double> times = BestTimes({
                                                    [&] {
                                                        for (int i = 0; i < reads; ++i)
                                                            sum[0] += *variable;
                                                    },
                                                    [&] {
                                                        for (int i = 0; i < reads; ++i)
                                                            sum[1] += value->Get();
                                                    },
                                                },
                                                rounds);
    std::printf("\ntyped read of a loaded value (%d reads)\n  %-34s %10s %9s\n", reads, "case",
                "ns/read", "x floor");
    std::printf("  %-34s %10.3f %9.2f\n", "floor (a plain variable)", times[0] / reads * 1e9, 1.0);
    std::printf("  %-34s %10.3f %9.2f\n", "VProfile<unsigned long>::Get", times[1] / reads * 1e9,
                times[1] / times[0]);
    CheckCount("typed read", static_cast<size_t>(sum[1] / 180),
               static_cast<size_t>(reads) * rounds);
    DeleteFileW((folder + L"typed.ini").c_str());
}

// A tree of session keys "Sessions\Snnnn", read as the session list does:
// open the folder key, list its subkeys, open each and read all its values.
void SessionTree(const std::wstring& folder, size_t sessions, size_t classicSessions) {
    const size_t perKey = 250;
    const std::vector<Value> values = SessionLikeValues(perKey, 7);
    const VUnicodeString root = V(folder + L"tree");
    std::vector<std::wstring> files;
    uint64_t bytes = 0;
    double start = Now();
    {
        VIniFileKey rootKey(root, VUnicodeString(), false, nullptr);
        auto sessionsKey = rootKey.OpenKey(VUnicodeString(L"Sessions"), true, nullptr);
        for (size_t i = 0; i < sessions; ++i) {
            wchar_t name[16];
            std::swprintf(name, 16, L"S%04zu", i);
            auto key = sessionsKey->OpenKey(VUnicodeString(name), true, nullptr);
            Store(static_cast<VIniFileKey&>(*key), values);
            key->Flush();
            files.push_back(folder + L"tree\\Sessions\\" + name + L".ini");
            bytes += FileSize(files.back());
        }
    }
    const double created = Now() - start;
    std::vector<std::wstring> classicFiles;
    for (size_t i = 0; i < classicSessions; ++i) {
        classicFiles.push_back(folder + L"classic" + std::to_wstring(i) + L".ini");
        WriteClassicFile(classicFiles.back(), values);
    }

    std::vector<char> buffer(bytes / sessions * 2 + 8192);
    std::vector<wchar_t> text(buffer.size());
    size_t read[2] = {};
    const std::vector<double> loading =
        BestTimes({
                      [&] {
                          for (const std::wstring& file : files) ReadFloor(file, buffer, text);
                      },
                      [&] {
                          read[0] = 0;
                          for (const std::wstring& file : classicFiles)
                              read[0] += LoadClassic(file, values);
                      },
                      [&] {
                          read[1] = 0;
                          VIniFileKey rootKey(root, VUnicodeString(), true, nullptr);
                          const auto sessionsKey =
                              rootKey.OpenKey(VUnicodeString(L"Sessions"), false, nullptr);
                          const auto iterator = sessionsKey->CreatePrivateKeyIterator(false);
                          VUnicodeString name;
                          std::vector<VUnicodeString> names;
                          while (iterator->Next(name)) names.push_back(name);
                          for (const VUnicodeString& session : names) {
                              const auto key = sessionsKey->OpenKey(session, false, nullptr);
                              read[1] += LoadAll(*key, values);
                          }
                      },
                  },
                  3);
    // GetPrivateProfileStringW opens the file for every value under Wine, so
    // it reads a sample of the sessions; its time is scaled to all of them.
    const double classic =
        loading[1] * static_cast<double>(sessions) / static_cast<double>(classicSessions);
    char title[160];
    std::snprintf(title, sizeof title,
                  "a tree of %zu session keys of %zu values: %llu bytes (made in %.1f s; GPPS "
                  "timed on %zu of them "
                  "and scaled)",
                  sessions, perKey, static_cast<unsigned long long>(bytes), created,
                  classicSessions);
    PrintHeader(title);
    const size_t allValues = sessions * perKey;
    PrintRow("floor (ReadFile + convert)", loading[0], bytes, allValues, loading[0], classic);
    PrintRow("GetPrivateProfileStringW", classic, bytes, allValues, loading[0], classic);
    PrintRow("open, list, open each, load all", loading[2], bytes, allValues, loading[0], classic);
    CheckCount("GetPrivateProfileStringW", read[0], classicSessions * perKey);
    CheckCount("VIniFileKey", read[1], allValues);

    VIniFileKey rootKey(V(folder), VUnicodeString(), false, nullptr);
    rootKey.DeleteKey(VUnicodeString(L"tree"));
    for (const std::wstring& file : classicFiles) DeleteFileW(file.c_str());
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
    const size_t sessions = argc > 1 ? std::wcstoul(argv[1], nullptr, 10) : 5000;
    const std::wstring folder = TempPath() + L"bench_ini_store\\";
    CreateDirectoryW(folder.c_str(), nullptr);

    std::printf(
        "bench_ini_store: best of several rounds; \"x floor\" and \"x GPPS\" are time ratios "
        "(below 1 is faster)\n");
    OneKey(folder, 1, 40, true);
    OneKey(folder, 250, 15, true);
    OneKey(folder, 10000, 3, true);
    OneKey(folder, 100000, 3, false);
    TypedRead(folder);
    if (sessions > 0) SessionTree(folder, sessions, std::min<size_t>(sessions, 20));
    RemoveDirectoryW(folder.c_str());
    return 0;
}
