// How fast VTextFile reads and writes lines, against the floor in the same
// run: the same bytes read with ReadFile and converted with one
// MultiByteToWideChar (reading), or the same text converted and written in
// large pieces (writing). Prints MB/s, lines per second and the ratios.
//
//   text_file_bench [lines]     (default 200000 lines of profile-like text)
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <cwchar>
#include <functional>
#include <string>
#include <vector>

#include "BenchSupport.h"
#include "VTextFile.h"

namespace {

// Lines shaped like a values file: headers of the four kinds, binary data
// lines and multi-string lines, with some non-ASCII text.
std::vector<std::wstring> ProfileLines(size_t count) {
    std::vector<std::wstring> lines;
    lines.reserve(count);
    std::wstring data;  // 32 pairs, as the writer puts them on a line
    for (int i = 0; i < 32; ++i) {
        wchar_t pair[4];
        swprintf(pair, 4, L" %02x", i * 7 & 0xFF);
        data += pair;
    }
    wchar_t line[160];
    for (size_t i = 0; lines.size() < count; ++i) {
        swprintf(line, 160, L"D:\"Option %zu\"=%08zx", i, i * 7919);
        lines.emplace_back(line);
        swprintf(line, 160,
                 L"S:\"Title %zu\"=Caf\u00e9 session \u00bb%zu\u00ab on host-%zu.example.com", i, i,
                 i % 97);
        lines.emplace_back(line);
        if (i % 4 == 0) {
            lines.emplace_back(L"B:\"Data\"=00000020");
            lines.push_back(data);
        }
        if (i % 8 == 0) {
            lines.emplace_back(L"Z:\"Commands\"=00000002");
            lines.emplace_back(L" ls -la");
            lines.emplace_back(L" cd /var/log");
        }
    }
    lines.resize(count);
    return lines;
}

std::string Encoded(const std::vector<std::wstring>& lines, UINT codePage) {
    std::wstring text;
    for (const std::wstring& line : lines) text += line + L"\r\n";
    std::string bytes(text.size() * 3, '\0');
    bytes.resize(static_cast<size_t>(
        WideCharToMultiByte(codePage, 0, text.c_str(), static_cast<int>(text.size()), bytes.data(),
                            static_cast<int>(bytes.size()), nullptr, nullptr)));
    return bytes;
}

size_t ReadLines(const std::wstring& path, bool blockLocking) {
    VTextFile file;
    file.SetBlockLocking(blockLocking);
    file.Open(VUnicodeString(path.c_str()), GENERIC_READ, OPEN_EXISTING);
    VUnicodeString line;
    size_t count = 0;
    while (file.ReadLine(line)) ++count;
    return count;
}

void WriteLines(const std::wstring& path, const std::vector<std::wstring>& lines) {
    VTextFile file;
    file.SetBlockLocking(false);
    file.Open(VUnicodeString(path.c_str()), GENERIC_READ | GENERIC_WRITE, CREATE_ALWAYS);
    file.SetEncoding(TextEncodingUtf8);
    file.Truncate(0);
    for (const std::wstring& line : lines) {
        file.Write(line.c_str(), line.size());
        file.Write(L"\r\n", 2);
    }
    file.Flush();
}

// The floor of writing: the whole text, ready in memory, converted in pieces
// into one 64 KB buffer and written piece by piece.
void WriteFloor(const std::wstring& path, const std::wstring& text) {
    const HANDLE file =
        CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    DWORD written = 0;
    WriteFile(file, "\xEF\xBB\xBF", 3, &written, nullptr);
    static char buffer[3 * 16384];
    for (size_t at = 0; at < text.size(); at += 16384) {
        const int size =
            WideCharToMultiByte(CP_UTF8, 0, text.c_str() + at,
                                static_cast<int>(std::min<size_t>(16384, text.size() - at)), buffer,
                                sizeof buffer, nullptr, nullptr);
        WriteFile(file, buffer, static_cast<DWORD>(size), &written, nullptr);
    }
    CloseHandle(file);
}

void Report(const char* what, double seconds, size_t bytes, size_t lines, double floorSeconds) {
    std::printf("  %-44s %8.1f MB/s %10.0f lines/s  %5.2fx the floor's time\n", what,
                static_cast<double>(bytes) / seconds / 1e6, static_cast<double>(lines) / seconds,
                seconds / floorSeconds);
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
    const size_t count = argc > 1 ? std::wcstoul(argv[1], nullptr, 10) : 200000;
    const std::wstring utf8Path = TempPath() + L"text_file_bench_utf8.ini";
    const std::wstring utf16Path = TempPath() + L"text_file_bench_utf16.ini";
    const std::wstring outPath = TempPath() + L"text_file_bench_out.ini";

    const std::vector<std::wstring> lines = ProfileLines(count);
    const std::string utf8 = "\xEF\xBB\xBF" + Encoded(lines, CP_UTF8);
    std::wstring wide;
    for (const std::wstring& line : lines) wide += line + L"\r\n";
    const std::string utf16 =
        "\xFF\xFE" + std::string(reinterpret_cast<const char*>(wide.data()), wide.size() * 2);
    WriteRaw(utf8Path, utf8);
    WriteRaw(utf16Path, utf16);
    std::printf("%zu lines, %zu bytes as UTF-8, %zu bytes as UTF-16\n", count, utf8.size(),
                utf16.size());

    std::vector<char> bytes(utf8.size() + 4096);
    std::vector<wchar_t> text(utf8.size());
    size_t characters = 0;
    size_t read[3] = {};
    const std::vector<double> reading = BestTimes({
        [&] { characters = ReadFloor(utf8Path, bytes, text); },
        [&] { read[0] = ReadLines(utf8Path, false); },
        [&] { read[1] = ReadLines(utf8Path, true); },
        [&] { read[2] = ReadLines(utf16Path, false); },
    });
    std::printf(
        "reading (floor: ReadFile in 4096-byte blocks + one MultiByteToWideChar, %zu characters)\n",
        characters);
    Report("floor", reading[0], utf8.size(), count, reading[0]);
    Report("ReadLine, UTF-8, no block locks", reading[1], utf8.size(), count, reading[0]);
    Report("ReadLine, UTF-8, a shared lock per block", reading[2], utf8.size(), count, reading[0]);
    Report("ReadLine, UTF-16 LE, no block locks", reading[3], utf16.size(), count, reading[0]);
    for (size_t lines : read)
        if (lines != count) std::printf("  !! read %zu lines of %zu\n", lines, count);

    const std::vector<double> writing = BestTimes({
        [&] { WriteFloor(outPath, wide); },
        [&] { WriteLines(outPath, lines); },
    });
    std::printf(
        "writing (floor: the text converted in 16384-character pieces, each written at once)\n");
    Report("floor", writing[0], utf8.size(), count, writing[0]);
    Report("Write per line, UTF-8", writing[1], utf8.size(), count, writing[0]);

    DeleteFileW(utf8Path.c_str());
    DeleteFileW(utf16Path.c_str());
    DeleteFileW(outPath.c_str());
    return 0;
}
