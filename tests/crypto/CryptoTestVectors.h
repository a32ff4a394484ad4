// Reads the known-answer files that Crypto++'s source ships (TestVectors/*.txt),
// so that our hashers and ciphers are checked against published NIST and RFC
// data rather than values we computed ourselves.
//
// A .txt file is a list of sections separated by blank lines; each field line
// "Name: value" sets a field, and each "Test: kind" line is one test that sees
// the latest value of every field set before it in its section.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

using Bytes = std::vector<uint8_t>;

struct CryptoTestCase {
    std::string file;
    std::string test;                           // the Test field: "Verify", "Encrypt", ...
    std::map<std::string, std::string> fields;  // raw field values, by name

    const std::string& Text(const std::string& name) const;
    // A field in the files' encoded-string notation: "quoted text", hex digits
    // with or without 0x (blanks between groups allowed), rN repeating the
    // next item N times, items concatenated.
    Bytes Decoded(const std::string& name) const;
    // A one-line description for failure messages.
    std::string Describe() const;
};

// Every test of TestVectors\fileName. Throws std::runtime_error when the file
// cannot be read or holds a field the reader does not understand.
std::vector<CryptoTestCase> ReadTestVectorFile(const std::string& fileName);

Bytes DecodeHex(const std::string& digits);
std::string EncodeHex(const uint8_t* bytes, size_t count);
inline std::string EncodeHex(const Bytes& bytes) { return EncodeHex(bytes.data(), bytes.size()); }
