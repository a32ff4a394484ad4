#include "SshWire.h"

#include <cstring>

void SshWriter::Uint32(uint32_t value) {
    const uint8_t bytes[4] = {static_cast<uint8_t>(value >> 24), static_cast<uint8_t>(value >> 16),
                              static_cast<uint8_t>(value >> 8), static_cast<uint8_t>(value)};
    Raw(bytes, sizeof bytes);
}

void SshWriter::Uint64(uint64_t value) {
    Uint32(static_cast<uint32_t>(value >> 32));
    Uint32(static_cast<uint32_t>(value));
}

void SshWriter::String(const void* data, size_t count) {
    Uint32(static_cast<uint32_t>(count));
    Raw(data, count);
}

void SshWriter::Mpint(const CryptoPP::Integer& value) {
    if (value.IsZero()) {
        Uint32(0);
        return;
    }
    // A leading zero byte keeps a number whose top bit is set positive.
    const size_t count = value.MinEncodedSize();
    const bool pad = value.GetByte(count - 1) & 0x80;
    Uint32(static_cast<uint32_t>(count + (pad ? 1 : 0)));
    if (pad) Byte(0);
    const size_t start = out_.size();
    out_.resize(start + count);
    value.Encode(out_.data() + start, count);
}

void SshWriter::Raw(const void* data, size_t count) {
    const auto* bytes = static_cast<const uint8_t*>(data);
    out_.insert(out_.end(), bytes, bytes + count);
}

bool SshReader::Take(size_t count, const uint8_t*& data) {
    if (!ok_ || count > left_) {
        ok_ = false;
        return false;
    }
    data = data_;
    data_ += count;
    left_ -= count;
    return true;
}

bool SshReader::Raw(size_t count, const uint8_t*& data) { return Take(count, data); }

bool SshReader::Byte(uint8_t& value) {
    const uint8_t* data;
    if (!Take(1, data)) return false;
    value = data[0];
    return true;
}

bool SshReader::Uint32(uint32_t& value) {
    const uint8_t* data;
    if (!Take(4, data)) return false;
    value =
        (uint32_t{data[0]} << 24) | (uint32_t{data[1]} << 16) | (uint32_t{data[2]} << 8) | data[3];
    return true;
}

bool SshReader::Uint64(uint64_t& value) {
    uint32_t high, low;
    if (!Uint32(high) || !Uint32(low)) return false;
    value = (uint64_t{high} << 32) | low;
    return true;
}

bool SshReader::String(const uint8_t*& data, size_t& count) {
    uint32_t length;
    if (!Uint32(length) || !Take(length, data)) return false;
    count = length;
    return true;
}

bool SshReader::String(AgentBytes& value) {
    const uint8_t* data;
    size_t count;
    if (!String(data, count)) return false;
    value.assign(data, data + count);
    return true;
}

bool SshReader::String(AgentText& value) {
    const uint8_t* data;
    size_t count;
    if (!String(data, count)) return false;
    value.assign(reinterpret_cast<const char*>(data), count);
    return true;
}

bool SshReader::Mpint(CryptoPP::Integer& value) {
    const uint8_t* data;
    size_t count;
    if (!String(data, count)) return false;
    const bool negative = count > 0 && (data[0] & 0x80);
    const bool padded = count > 1 && data[0] == 0 && !(data[1] & 0x80);
    if (negative || padded || (count == 1 && data[0] == 0)) {
        ok_ = false;
        return false;
    }
    value.Decode(data, count);
    return true;
}
