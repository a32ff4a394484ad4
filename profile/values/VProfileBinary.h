// The storage kind of a block of bytes kept in a binary value of a profile
// key: the structured values (window placement, font, colours, margins) keep
// their system structures here. Values are exchanged as one-dimensional
// SAFEARRAYs of bytes (VT_ARRAY | VT_UI1); the text exchange of slots 8, 9,
// 12 and 13 is not supported.
//
// VProfileBinary holds no value itself: VProfile2<T, VProfileBinary> holds the
// current and saved T and implements Load.
#pragma once

#include <cstdint>
#include <cstring>
#include <type_traits>
#include <vector>

#include "VProfileData.h"

using VBinaryBlock = std::vector<uint8_t>;

class VProfileBinary : public VProfileData {
public:
    using Stored = VBinaryBlock;
    static constexpr VARTYPE VariantType = VT_ARRAY | VT_UI1;
    // A block has no text form to take as a default.
    static constexpr bool TakesDefaultText = false;

    using VProfileData::VProfileData;

    // Slot 21: reads the binary value name of key into out. False, with out
    // unchanged and the reason in the key's record, when it cannot.
    virtual bool ReadValue(VProfileKey& key, const VUnicodeString& name, VBinaryBlock& out);
    // Slot 22: writes value as the binary value name of key.
    virtual bool WriteValue(VProfileKey& key, const VUnicodeString& name,
                            const VBinaryBlock& value);
    // Slot 23: ReadValue(key, GetName(), current).
    virtual bool Load(VProfileKey& key) = 0;

    // The binary value name of key, whatever its size; what ReadValue does.
    static bool ReadBlock(VProfileKey& key, const VUnicodeString& name, VBinaryBlock& out);

protected:
    bool StoredToVariant(const Stored& value, VARIANT& variant, VReportMessageParams& report) const;
    bool StoredFromVariant(const VARIANT& variant, Stored& value,
                           VReportMessageParams& report) const;
    static Stored BlankStored() { return Stored(); }
    static bool IsBlank(const Stored& value) { return value.empty(); }
};

// The structured values that keep a system structure as their whole block,
// byte for byte, as Windows lays it out. Reading refuses a block of any other
// size, or one that isValid rejects. Structure must be trivially copyable and
// have an operator==.
template <class Structure>
struct VProfileStructureBlock {
    static_assert(std::is_trivially_copyable_v<Structure>);
    using Stored = VBinaryBlock;
    static bool ToStored(const Structure& value, Stored& out) {
        const auto* bytes = reinterpret_cast<const uint8_t*>(&value);
        out.assign(bytes, bytes + sizeof(Structure));
        return true;
    }
    template <class IsValid>
    static bool FromStored(const Stored& in, Structure& value, IsValid isValid) {
        if (in.size() != sizeof(Structure)) return false;
        Structure read;
        std::memcpy(&read, in.data(), sizeof(Structure));
        if (!isValid(read)) return false;
        value = read;
        return true;
    }
    static bool Equal(const Structure& a, const Structure& b) { return a == b; }
};
