#include "VIniFileKeyIterator.h"

#include <string>

#include "ProfileErrors.h"
#include "Win32Handle.h"

namespace {

bool HasValuesFileExtension(const VUnicodeString& fileName) {
    const size_t extensionLength =
        std::char_traits<wchar_t>::length(VIniFileKey::ValuesFileExtension);
    return fileName.GetLength() > extensionLength &&
           fileName.Mid(fileName.GetLength() - extensionLength)
               .EqualsNoCase(VIniFileKey::ValuesFileExtension);
}

}  // namespace

VIniFileKey::Iterator::Iterator(VIniFileKey& key, bool values) : entries_(NameOrder{!values}) {
    if (values) {
        key.Table().ForEach([this](const VIniFileValueTable::Slot& slot) {
            entries_.emplace(VUnicodeString(slot.name.data(), slot.name.size()),
                             slot.value->GetKind());
        });
    } else {
        ListSubkeys(key);
    }
}

void VIniFileKey::Iterator::ListSubkeys(VIniFileKey& key) {
    const VUnicodeString pattern = key.folderPath_ + L"\\*";
    WIN32_FIND_DATAW found;
    const FindHandle search(FindFirstFileExW(pattern.c_str(), FindExInfoBasic, &found,
                                             FindExSearchNameMatch, nullptr, 0));
    if (!search) {
        const DWORD error = GetLastError();
        // A key that never had a subkey has no folder: nothing to list.
        if (error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND) return;
        VUnicodeString trace;
        if (trace.FormatPositional(L"VIniFileKey::Iterator failed to open path %1\n",
                                   key.folderPath_.c_str()))
            OutputDebugStringW(trace.c_str());
        RecordSystemError(key.error_, error);
        return;
    }
    do {
        VUnicodeString name(found.cFileName);
        if (!(found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY)) {
            // Only values files stand for keys; other files are not ours.
            if (!HasValuesFileExtension(name)) continue;
            name = name.Left(name.GetLength() -
                             std::char_traits<wchar_t>::length(ValuesFileExtension));
        }
        // Skips "." and "..", and names that OpenKey would refuse.
        if (VIniFileKey::IsValidSubkeyName(name)) entries_.emplace(name, ProfileSubkey);
    } while (FindNextFileW(search.Get(), &found));
}

bool VIniFileKey::Iterator::Next(VUnicodeString& name, uint32_t& kind) {
    if (entries_.empty()) return false;
    const auto first = entries_.begin();
    name = first->first;
    kind = first->second;
    entries_.erase(first);
    return true;
}

bool VIniFileKey::Iterator::Next(VUnicodeString& name) {
    uint32_t kind = 0;
    return Next(name, kind);
}
