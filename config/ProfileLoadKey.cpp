#include "ProfileLoadKey.h"

#include <algorithm>
#include <cwctype>

namespace {

// Beyond this many values the listing stops: the key holds most of what
// will be asked, and asking is then cheaper than listing.
constexpr size_t MaximumListed = 64;

uint64_t FoldedHash(const wchar_t* name, size_t length) {
    uint64_t hash = 14695981039346656037ull;  // FNV-1a
    for (size_t i = 0; i < length; ++i) {
        const wchar_t character = name[i];
        const wchar_t upper =
            character < 0x80 ? (character >= L'a' && character <= L'z' ? character - 32 : character)
                             : static_cast<wchar_t>(std::towupper(character));
        hash = (hash ^ static_cast<uint16_t>(upper)) * 1099511628211ull;
    }
    return hash;
}

}  // namespace

ProfileLoadKey::ProfileLoadKey(VProfileKey* key, bool listValues) : key_(key ? *key : none_) {
    if (!listValues || !key_.IsOpen()) return;
    VProfileKeyIterator values(key_, true);
    VUnicodeString name;
    while (values.Next(name)) {
        if (hashes_.size() == MaximumListed) {
            hashes_.clear();
            return;
        }
        hashes_.push_back(FoldedHash(name.c_str(), name.GetLength()));
    }
    std::sort(hashes_.begin(), hashes_.end());
    listed_ = true;
}

std::unique_ptr<VProfileKey> ProfileLoadKey::OpenBelow(VProfileKey& root, const wchar_t* parent,
                                                       const VUnicodeString& name, bool create) {
    VUnicodeString path(parent);
    path += L"\\";
    path += name;
    return std::make_unique<VProfileKey>(root, path, create);
}

bool ProfileLoadKey::MayHold(const wchar_t* name, size_t length) const {
    return std::binary_search(hashes_.begin(), hashes_.end(), FoldedHash(name, length));
}

VProfileKey& ProfileLoadKey::For(const VUnicodeString& name, const wchar_t* older,
                                 const wchar_t* oldest) {
    if (!listed_ || MayHold(name.c_str(), name.GetLength())) return key_;
    for (const wchar_t* other : {older, oldest})
        if (other && MayHold(other, std::char_traits<wchar_t>::length(other))) return key_;
    return none_;
}
