// The values of an INI-file key: one class per value kind, each answering the
// typed reads of its own kind and appending itself, as the lines of its entry,
// to the text of a values file.
//
// A value read from a file keeps only where its content stands in the file's
// decoded text (which the key's table holds): nothing is copied or converted
// until the value is asked for. A value set by a caller owns its content.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string_view>
#include <utility>

#include "VContainers.h"
#include "VProfilePrivate.h"
#include "VString.h"
#include "WipedVector.h"

// The text of a values file while it is formatted or read.
using VIniFileText = WipedVector<wchar_t>;

// The base answers every read with false; each concrete class answers only its
// own kind. Reads copy out; the object keeps its content.
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
    virtual VProfileValueKind GetKind() const = 0;
    // Appends the entry's lines under name.
    virtual void AppendTo(VIniFileText& text, std::wstring_view name) const = 0;
    // Texts read out of the value from now on are sensitive strings (the value
    // belongs to the user: a password, a user name, a command).
    virtual void MarkSensitive() {}

    // Whether the value lives in a table's arena (VIniFileArena::Make), which
    // gives its memory back, rather than on the heap.
    bool IsInArena() const { return inArena_; }
    void SetInArena() { inArena_ = true; }

private:
    bool inArena_ = false;
};

class VIniFileDataDword : public VIniFileData {
public:
    explicit VIniFileDataDword(uint32_t value) : value_(value) {}
    bool GetDword(uint32_t& value) const override;
    VProfileValueKind GetKind() const override { return ProfileDword; }
    void AppendTo(VIniFileText& text, std::wstring_view name) const override;

private:
    uint32_t value_;
};

class VIniFileDataString : public VIniFileData {
public:
    explicit VIniFileDataString(const VUnicodeString& text);
    // The text as it stands in a file's decoded text, which outlives the value.
    explicit VIniFileDataString(std::wstring_view text) : view_(text) {}
    bool GetString(VUnicodeString& text) const override;
    VProfileValueKind GetKind() const override { return ProfileString; }
    void AppendTo(VIniFileText& text, std::wstring_view name) const override;
    void MarkSensitive() override;

private:
    std::wstring_view view_;  // the text: into owned_, or into the file's text
    // Only a value set by a caller has one: every string holds a reference to
    // a shared block, changed atomically, which reading thousands of values
    // would pay for nothing.
    std::optional<VUnicodeString> owned_;
    bool sensitive_ = false;
};

class VIniFileDataBinary : public VIniFileData {
public:
    // A copy of length bytes.
    VIniFileDataBinary(const void* bytes, size_t length);
    // Bytes kept elsewhere (in the arena of the table that read them).
    explicit VIniFileDataBinary(std::span<const uint8_t> bytes) : bytes_(bytes) {}
    bool GetBinary(void* buffer, size_t& size) const override;
    VProfileValueKind GetKind() const override { return ProfileBinary; }
    void AppendTo(VIniFileText& text, std::wstring_view name) const override;

private:
    WipedVector<uint8_t> owned_;
    std::span<const uint8_t> bytes_;  // into owned_, or where they are kept
};

class VIniFileDataStringSz : public VIniFileData {
public:
    explicit VIniFileDataStringSz(VArray<VUnicodeString> strings)
        : strings_(std::move(strings)), count_(strings_.GetCount()), isOwned_(true) {}
    // count string lines as they stand in a file's decoded text: each begins
    // with a blank and ends at CR, LF or CR LF (the last one maybe at the end
    // of lines).
    VIniFileDataStringSz(std::wstring_view lines, size_t count) : lines_(lines), count_(count) {}
    bool GetMultiString(VArray<VUnicodeString>& strings) const override;
    VProfileValueKind GetKind() const override { return ProfileMultiString; }
    void AppendTo(VIniFileText& text, std::wstring_view name) const override;
    void MarkSensitive() override;

private:
    // Calls visit(std::wstring_view) with each string in order.
    template <class Visit>
    void ForEachString(Visit&& visit) const;

    VArray<VUnicodeString> strings_;
    std::wstring_view lines_;
    size_t count_;
    bool isOwned_ = false;
    bool sensitive_ = false;
};

// Owns a value object wherever it lives: on the heap (values that callers
// set) or in the arena of the table that read it from a file, which gives
// its memory back all at once; then only the destructor is run here.
struct VIniFileDataDeleter {
    void operator()(VIniFileData* data) const noexcept {
        if (data->IsInArena()) {
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
