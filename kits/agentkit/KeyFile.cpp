#include "KeyFile.h"

#include <cryptopp/base64.h>

#include <string>
#include <string_view>

#include "AgentMessages.h"
#include "OpenSshKeyFile.h"
#include "PemKeyFile.h"
#include "Utf8Text.h"
#include "Win32Handle.h"

namespace {

constexpr DWORD MaximumFileBytes = 1 << 20;

enum class BlockKind { OpenSsh, PemRsa, PemEc };

struct Armor {
    BlockKind kind;
    std::string dekInfo;
    AgentBytes body;
};

constexpr struct {
    const char* label;
    BlockKind kind;
} Labels[] = {
    {"OPENSSH PRIVATE KEY", BlockKind::OpenSsh},
    {"RSA PRIVATE KEY", BlockKind::PemRsa},
    {"EC PRIVATE KEY", BlockKind::PemEc},
};

std::string_view Trimmed(std::string_view line) {
    while (!line.empty() && (line.back() == '\r' || line.back() == ' ' || line.back() == '\t'))
        line.remove_suffix(1);
    while (!line.empty() && (line.front() == ' ' || line.front() == '\t')) line.remove_prefix(1);
    return line;
}

// Finds the first key block: "-----BEGIN <label>-----", optional "Name: value"
// headers, Base64 lines, "-----END <label>-----".
bool ReadArmor(const AgentBytes& content, Armor& armor) {
    const std::string_view text(reinterpret_cast<const char*>(content.data()), content.size());
    for (const auto& label : Labels) {
        const std::string begin = std::string("-----BEGIN ") + label.label + "-----";
        const std::string end = std::string("-----END ") + label.label + "-----";
        size_t position = text.find(begin);
        if (position == std::string_view::npos) continue;
        position += begin.size();
        const size_t stop = text.find(end, position);
        if (stop == std::string_view::npos) return false;
        AgentText base64;
        armor = Armor{label.kind, {}, {}};
        std::string_view rest = text.substr(position, stop - position);
        while (!rest.empty()) {
            const size_t lineEnd = rest.find('\n');
            const std::string_view line = Trimmed(rest.substr(0, lineEnd));
            rest =
                lineEnd == std::string_view::npos ? std::string_view() : rest.substr(lineEnd + 1);
            if (const size_t colon = line.find(':'); colon != std::string_view::npos) {
                if (line.substr(0, colon) == "DEK-Info")
                    armor.dekInfo = std::string(Trimmed(line.substr(colon + 1)));
                continue;
            }
            base64.append(line.data(), line.size());
        }
        CryptoPP::Base64Decoder decoder;
        decoder.Put(reinterpret_cast<const uint8_t*>(base64.data()), base64.size());
        decoder.MessageEnd();
        armor.body.resize(static_cast<size_t>(decoder.MaxRetrievable()));
        decoder.Get(armor.body.data(), armor.body.size());
        return !armor.body.empty();
    }
    return false;
}

}  // namespace

bool KeyFileNeedsPassphrase(const AgentBytes& content) {
    Armor armor;
    if (!ReadArmor(content, armor)) return false;
    return armor.kind == BlockKind::OpenSsh ? OpenSshKeyIsSealed(armor.body)
                                            : !armor.dekInfo.empty();
}

KeyFileError ParseKeyFile(const AgentBytes& content, const AgentBytes& passphrase, LoadedKey& key,
                          AgentText& unsupportedWhat) {
    key = LoadedKey();
    Armor armor;
    if (!ReadArmor(content, armor)) return KeyFileError::NotAKeyFile;
    if (armor.kind == BlockKind::OpenSsh)
        return ParseOpenSshKey(armor.body, passphrase, key, unsupportedWhat);
    return ParsePemKey(armor.kind == BlockKind::PemRsa ? PemKind::Rsa : PemKind::Ec, armor.dekInfo,
                       armor.body, passphrase, key, unsupportedWhat);
}

bool ReadKeyFileBytes(const wchar_t* path, AgentBytes& content, VReportMessageParams& report) {
    report.Clear();
    FileHandle file(CreateFileW(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    LARGE_INTEGER size{};
    DWORD read = 0;
    if (file && GetFileSizeEx(file.Get(), &size)) {
        if (size.QuadPart > MaximumFileBytes) {
            SetAgentReport(report, AGENT_KEY_FILE_NOT_A_KEY, path);
            return false;
        }
        content.resize(static_cast<size_t>(size.QuadPart));
        if (ReadFile(file.Get(), content.data(), static_cast<DWORD>(content.size()), &read,
                     nullptr) &&
            read == content.size())
            return true;
    }
    SetAgentReport(report, AGENT_KEY_FILE_UNREADABLE, path, ErrorCodeText(GetLastError()));
    content.clear();
    return false;
}

AgentBytes Utf8Bytes(const VUnicodeString& text) {
    size_t count = 0;
    if (!MeasureUtf8(text, count)) return AgentBytes();
    AgentBytes bytes(count);
    if (count) WriteUtf8(text, bytes.data());
    return bytes;
}

bool LoadKeyFile(const wchar_t* path, const VUnicodeString& passphrase, LoadedKey& key,
                 VReportMessageParams& report, KeyFileError* error) {
    AgentBytes content;
    if (error) *error = KeyFileError::None;
    if (!ReadKeyFileBytes(path, content, report)) return false;
    AgentText unsupported;
    const KeyFileError result = ParseKeyFile(content, Utf8Bytes(passphrase), key, unsupported);
    if (error) *error = result;
    switch (result) {
        case KeyFileError::None:
            if (key.comment.empty()) {  // a PEM key is named by its path, as SSH clients do
                const AgentBytes name = Utf8Bytes(VUnicodeString(path));
                key.comment.assign(name.begin(), name.end());
            }
            return true;
        case KeyFileError::NotAKeyFile:
            SetAgentReport(report, AGENT_KEY_FILE_NOT_A_KEY, path);
            break;
        case KeyFileError::Damaged:
            SetAgentReport(report, AGENT_KEY_FILE_DAMAGED, path);
            break;
        case KeyFileError::NeedsPassphrase:
            SetAgentReport(report, AGENT_KEY_FILE_NEEDS_PASSPHRASE, path);
            break;
        case KeyFileError::WrongPassphrase:
            SetAgentReport(report, AGENT_KEY_FILE_WRONG_PASSPHRASE, path);
            break;
        case KeyFileError::TooSmall:
            SetAgentReport(report, AGENT_KEY_TOO_SMALL, path);
            break;
        case KeyFileError::Unsupported:
            SetAgentReport(report, AGENT_KEY_FILE_UNSUPPORTED, path, VString(unsupported.c_str()));
            break;
    }
    return false;
}
