#include "CryptoTestVectors.h"

#include <cctype>
#include <cstdio>
#include <memory>
#include <sstream>
#include <stdexcept>

namespace {

std::wstring Widened(const char* text) {
    return std::wstring(text, text + std::char_traits<char>::length(text));
}

std::string ReadWholeFile(const std::wstring& path) {
    std::unique_ptr<FILE, int (*)(FILE*)> file(_wfopen(path.c_str(), L"rb"), fclose);
    if (!file) throw std::runtime_error("cannot open a test vector file");
    std::string content;
    char buffer[65536];
    size_t read;
    while ((read = fread(buffer, 1, sizeof buffer, file.get())) > 0) content.append(buffer, read);
    return content;
}

std::string Trimmed(const std::string& text) {
    size_t start = 0;
    size_t end = text.size();
    while (start < end && std::isspace(static_cast<unsigned char>(text[start]))) ++start;
    while (end > start && std::isspace(static_cast<unsigned char>(text[end - 1]))) --end;
    return text.substr(start, end - start);
}

int HexValue(char digit) {
    if (digit >= '0' && digit <= '9') return digit - '0';
    if (digit >= 'a' && digit <= 'f') return digit - 'a' + 10;
    if (digit >= 'A' && digit <= 'F') return digit - 'A' + 10;
    throw std::runtime_error(std::string("not a hexadecimal digit: ") + digit);
}

// The folder of the .txt files, as a Windows path.
std::wstring TestVectorsFolder() { return Widened(CRYPTOPP_TEST_VECTORS_DIR); }

}  // namespace

Bytes DecodeHex(const std::string& digits) {
    if (digits.size() % 2 != 0)
        throw std::runtime_error("odd number of hexadecimal digits: " + digits);
    Bytes bytes;
    for (size_t index = 0; index < digits.size(); index += 2)
        bytes.push_back(
            static_cast<uint8_t>(HexValue(digits[index]) << 4 | HexValue(digits[index + 1])));
    return bytes;
}

std::string EncodeHex(const uint8_t* bytes, size_t count) {
    static const char digits[] = "0123456789abcdef";
    std::string text;
    for (size_t index = 0; index < count; ++index) {
        text += digits[bytes[index] >> 4];
        text += digits[bytes[index] & 15];
    }
    return text;
}

const std::string& CryptoTestCase::Text(const std::string& name) const {
    auto found = fields.find(name);
    if (found == fields.end()) throw std::runtime_error("no field " + name + " in " + Describe());
    return found->second;
}

Bytes CryptoTestCase::Decoded(const std::string& name) const {
    const std::string& value = Text(name);
    Bytes result;
    size_t index = 0;
    size_t repeat = 1;
    while (index < value.size()) {
        const char c = value[index];
        if (std::isspace(static_cast<unsigned char>(c))) {
            ++index;
            continue;
        }
        Bytes item;
        if (c == '"') {
            const size_t close = value.find('"', index + 1);
            if (close == std::string::npos)
                throw std::runtime_error("unterminated quote in " + Describe());
            item.assign(value.begin() + static_cast<std::ptrdiff_t>(index + 1),
                        value.begin() + static_cast<std::ptrdiff_t>(close));
            index = close + 1;
        } else if (c == 'r' && index + 1 < value.size() &&
                   std::isdigit(static_cast<unsigned char>(value[index + 1]))) {
            size_t end = index + 1;
            while (end < value.size() && std::isdigit(static_cast<unsigned char>(value[end])))
                ++end;
            repeat = std::stoul(value.substr(index + 1, end - index - 1));
            index = end;
            continue;
        } else {
            size_t end = index;
            while (end < value.size() && !std::isspace(static_cast<unsigned char>(value[end])))
                ++end;
            std::string digits = value.substr(index, end - index);
            if (digits.rfind("0x", 0) == 0) digits.erase(0, 2);
            item = DecodeHex(digits);
            index = end;
        }
        for (size_t copy = 0; copy < repeat; ++copy)
            result.insert(result.end(), item.begin(), item.end());
        repeat = 1;
    }
    return result;
}

std::string CryptoTestCase::Describe() const {
    std::string text = file;
    for (const char* name : {"Name", "Source", "Comment"}) {
        auto found = fields.find(name);
        if (found != fields.end()) text += " | " + found->second;
    }
    return text;
}

std::vector<CryptoTestCase> ReadTestVectorFile(const std::string& fileName) {
    const std::string content =
        ReadWholeFile(TestVectorsFolder() + L"\\" + Widened(fileName.c_str()));
    std::vector<CryptoTestCase> cases;
    std::map<std::string, std::string> fields;
    std::istringstream lines(content);
    std::string line;
    std::string pendingName;  // a field continued on the next line with a trailing backslash
    std::string pendingValue;
    while (std::getline(lines, line)) {
        // A blank line ends a section; a line emptied by a comment does not.
        const bool blank = Trimmed(line).empty();
        const size_t hash = line.find('#');
        if (hash != std::string::npos) line.erase(hash);
        line = Trimmed(line);
        if (!pendingName.empty()) {
            const bool more = !line.empty() && line.back() == '\\';
            pendingValue += " " + (more ? line.substr(0, line.size() - 1) : line);
            if (more) continue;
            fields[pendingName] = Trimmed(pendingValue);
            pendingName.clear();
            continue;
        }
        if (blank) fields.clear();
        if (line.empty()) continue;
        const size_t colon = line.find(':');
        if (colon == std::string::npos) throw std::runtime_error("no field name in line: " + line);
        const std::string name = Trimmed(line.substr(0, colon));
        std::string value = Trimmed(line.substr(colon + 1));
        if (!value.empty() && value.back() == '\\') {
            pendingName = name;
            pendingValue = value.substr(0, value.size() - 1);
            continue;
        }
        if (name == "Test") {
            cases.push_back(CryptoTestCase{fileName, value, fields});
        } else {
            fields[name] = value;
        }
    }
    return cases;
}
