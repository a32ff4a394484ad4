#include "VProfileBinary.h"

bool VProfileBinary::ReadValue(VProfileKey& key, const VUnicodeString& name, VBinaryBlock& out) {
    return ReadBlock(key, name, out);
}

bool VProfileBinary::ReadBlock(VProfileKey& key, const VUnicodeString& name, VBinaryBlock& out) {
    // The size first; another process may grow the value in between, so try
    // again while the store answers that the buffer is too small.
    for (;;) {
        uint32_t size = 0;
        if (!key.GetBinary(name, nullptr, size)) return false;
        VBinaryBlock block(size);
        if (key.GetBinary(name, block.data(), size)) {
            block.resize(size);
            out = std::move(block);
            return true;
        }
        if (key.GetLastErrorParams().GetMessageCode() != ERROR_MORE_DATA) return false;
    }
}

bool VProfileBinary::WriteValue(VProfileKey& key, const VUnicodeString& name,
                                const VBinaryBlock& value) {
    return key.SetBinary(name, value.data(), static_cast<uint32_t>(value.size()));
}

bool VProfileBinary::StoredToVariant(const Stored& value, VARIANT& variant,
                                     VReportMessageParams&) const {
    VVariant block;
    block.SetBytes(value);
    block.MoveTo(variant);
    return true;
}

bool VProfileBinary::StoredFromVariant(const VARIANT& variant, Stored& value,
                                       VReportMessageParams& report) const {
    return VVariant::BytesOf(variant, value) || NotConvertible(report);
}
