#include "VLogFont.h"

#include <cstring>
#include <cwchar>

namespace {

constexpr size_t FaceUnits = LF_FACESIZE;

// The fields before the face name, which hold no padding.
constexpr size_t FixedBytes = offsetof(LOGFONTW, lfFaceName);
static_assert(FixedBytes == 28);

}  // namespace

VLogFont::VLogFont(const wchar_t* face, LONG height, LONG weight) : LOGFONTW{} {
    lfHeight = height;
    lfWeight = weight;
    lfCharSet = DEFAULT_CHARSET;
    SetFaceName(face);
}

void VLogFont::SetFaceName(const wchar_t* face) {
    std::wmemset(lfFaceName, 0, FaceUnits);
    if (face) std::wcsncpy(lfFaceName, face, FaceUnits - 1);
}

bool operator==(const VLogFont& a, const VLogFont& b) {
    return std::memcmp(&a, &b, FixedBytes) == 0 &&
           std::wcsncmp(a.lfFaceName, b.lfFaceName, FaceUnits) == 0;
}

bool VProfileValueTraits<VLogFont>::ToStored(const VLogFont& value, Stored& out) {
    VLogFont clean = value;
    // Cut to 31 units, as SetFaceName does, so that a terminator is written.
    const size_t length = wcsnlen(clean.lfFaceName, FaceUnits - 1);
    std::wmemset(clean.lfFaceName + length, 0, FaceUnits - length);
    return VProfileStructureBlock::ToStored(clean, out);
}

bool VProfileValueTraits<VLogFont>::FromStored(const Stored& in, VLogFont& value) {
    return VProfileStructureBlock::FromStored(in, value, [](const VLogFont& read) {
        return wcsnlen(read.lfFaceName, FaceUnits) < FaceUnits && read.lfWeight >= 0 &&
               read.lfWeight <= 1000;
    });
}
