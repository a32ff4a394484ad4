// The values of an INI-file key: one class per value kind, each answering the
// typed reads and writes of its own kind and writing itself as the lines of
// its entry in a values file.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "VContainers.h"
#include "VProfilePrivate.h"
#include "VString.h"

class VTextFile;

// The base answers every read and write with false; each concrete class
// answers only its own kind. Reads copy out; the object keeps its content.
class VIniFileData {
public:
    virtual ~VIniFileData() = default;
    virtual bool GetMultiString(VArray<VUnicodeString>& strings) const;
    // With no buffer, size receives the length. With a buffer, size is its
    // capacity on entry and the length on return; false, copying nothing, when
    // the buffer is too small.
    virtual bool GetBinary(void* buffer, size_t& size) const;
    virtual bool GetString(VUnicodeString& text) const;
    virtual bool GetDword(uint32_t& value) const;
    virtual bool SetMultiString(const VArray<VUnicodeString>& strings);
    virtual bool SetBinary(const void* bytes, size_t length);
    virtual bool SetString(const VUnicodeString& text);
    virtual bool SetDword(uint32_t value);
    virtual VProfileValueKind GetKind() const = 0;
    // Appends the entry's lines under name; false (the thread's last error
    // telling why) when they could not be written.
    virtual bool WriteToFile(VTextFile& file, std::wstring_view name) const = 0;
};

class VIniFileDataDword : public VIniFileData {
public:
    explicit VIniFileDataDword(uint32_t value) : value_(value) {}
    bool GetDword(uint32_t& value) const override;
    bool SetDword(uint32_t value) override;
    VProfileValueKind GetKind() const override { return ProfileDword; }
    bool WriteToFile(VTextFile& file, std::wstring_view name) const override;

private:
    uint32_t value_;
};

class VIniFileDataString : public VIniFileData {
public:
    explicit VIniFileDataString(VUnicodeString text) : text_(std::move(text)) {}
    VIniFileDataString(const wchar_t* text, size_t length) : text_(text, length) {}
    bool GetString(VUnicodeString& text) const override;
    bool SetString(const VUnicodeString& text) override;
    VProfileValueKind GetKind() const override { return ProfileString; }
    bool WriteToFile(VTextFile& file, std::wstring_view name) const override;

private:
    VUnicodeString text_;
};

class VIniFileDataBinary : public VIniFileData {
public:
    VIniFileDataBinary(const void* bytes, size_t length);
    explicit VIniFileDataBinary(std::vector<uint8_t> bytes) : bytes_(std::move(bytes)) {}
    bool GetBinary(void* buffer, size_t& size) const override;
    bool SetBinary(const void* bytes, size_t length) override;
    VProfileValueKind GetKind() const override { return ProfileBinary; }
    bool WriteToFile(VTextFile& file, std::wstring_view name) const override;

private:
    std::vector<uint8_t> bytes_;
};

class VIniFileDataStringSz : public VIniFileData {
public:
    explicit VIniFileDataStringSz(VArray<VUnicodeString> strings) : strings_(std::move(strings)) {}
    bool GetMultiString(VArray<VUnicodeString>& strings) const override;
    bool SetMultiString(const VArray<VUnicodeString>& strings) override;
    VProfileValueKind GetKind() const override { return ProfileMultiString; }
    bool WriteToFile(VTextFile& file, std::wstring_view name) const override;

private:
    VArray<VUnicodeString> strings_;
};

// Owns a value object wherever it lives: on the heap (values that callers
// set) or in the arena of the table that read it from a file, which gives
// its memory back all at once; then only the destructor is run here.
struct VIniFileDataDeleter {
    bool inArena = false;
    void operator()(VIniFileData* data) const noexcept {
        if (inArena) {
            data->~VIniFileData();
        } else {
            delete data;
        }
    }
};
using VIniFileDataPtr = std::unique_ptr<VIniFileData, VIniFileDataDeleter>;

// A value object on the heap.
template <class T, class... Arguments>
VIniFileDataPtr MakeIniFileData(Arguments&&... arguments) {
    return VIniFileDataPtr(new T(std::forward<Arguments>(arguments)...));
}
