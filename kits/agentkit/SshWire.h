// The SSH wire encoding that the agent protocol and the key files share:
// big-endian 32-bit numbers, length-prefixed strings and multiple-precision
// integers (two's complement, shortest form).
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include <cryptopp/integer.h>

#include "AgentBytes.h"

// Appends to a buffer it does not own.
class SshWriter {
public:
    explicit SshWriter(AgentBytes& out) : out_(out) {}
    void Byte(uint8_t value) { out_.push_back(value); }
    void Uint32(uint32_t value);
    void Uint64(uint64_t value);
    void String(const void* data, size_t count);
    void String(std::string_view text) { String(text.data(), text.size()); }
    void String(const AgentBytes& bytes) { String(bytes.data(), bytes.size()); }
    // Non-negative integers only (all the key fields are).
    void Mpint(const CryptoPP::Integer& value);
    void Raw(const void* data, size_t count);

private:
    AgentBytes& out_;
};

// Reads from bytes it does not own; each read fails (false, nothing consumed)
// past the end, and a failed reader stays failed.
class SshReader {
public:
    SshReader(const uint8_t* data, size_t count) : data_(data), left_(count) {}
    explicit SshReader(const AgentBytes& bytes) : SshReader(bytes.data(), bytes.size()) {}

    bool Byte(uint8_t& value);
    bool Uint32(uint32_t& value);
    bool Uint64(uint64_t& value);
    // A view into the reader's bytes.
    bool String(const uint8_t*& data, size_t& count);
    bool String(AgentBytes& value);
    bool String(AgentText& value);
    // Refuses negative numbers and non-shortest forms, which no key field has.
    bool Mpint(CryptoPP::Integer& value);
    bool Raw(size_t count, const uint8_t*& data);

    bool IsOk() const noexcept { return ok_; }
    bool AtEnd() const noexcept { return ok_ && left_ == 0; }
    size_t GetLeft() const noexcept { return left_; }
    const uint8_t* GetPosition() const noexcept { return data_; }

private:
    bool Take(size_t count, const uint8_t*& data);

    const uint8_t* data_;
    size_t left_;
    bool ok_ = true;
};
