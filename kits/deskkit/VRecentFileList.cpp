#include "VRecentFileList.h"

#include <cwchar>
#include <stdexcept>

#include "CommonUi.h"
#include "ConfigMessages.h"
#include "VProfileStore.h"

namespace {

constexpr wchar_t Ellipsis[] = L"...";

bool ContainsNoCase(const VArray<VUnicodeString>& entries, const VUnicodeString& name) {
    for (const VUnicodeString& entry : entries)
        if (entry.EqualsNoCase(name)) return true;
    return false;
}

// The root key of a store, or false with the reason in report.
bool RootIsOpen(VProfileKey& root, VReportMessageParams& report) {
    if (root.IsOpen()) return true;
    report = root.GetLastErrorParams();
    if (report.GetMessageCode() == 0) report.Set(ERROR_INVALID_HANDLE);  // no store factory at all
    return false;
}

}  // namespace

VRecentFileList::VRecentFileList(unsigned start, const wchar_t* section, const wchar_t* entryFormat,
                                 size_t size, int maxDisplayLength)
    : start_(start),
      section_(section),
      entryFormat_(entryFormat),
      size_(size),
      maxDisplayLength_(maxDisplayLength) {
    Reload();
}

VRecentFileList::~VRecentFileList() = default;

bool VRecentFileList::Reload() {
    report_.Clear();
    return Read(entries_);
}

VUnicodeString VRecentFileList::GetEntry(size_t index) const {
    CheckedIndex(index);
    return index < entries_.GetCount() ? entries_[index] : VUnicodeString();
}

VUnicodeString VRecentFileList::GetDisplayName(size_t index) const {
    VUnicodeString name = GetEntry(index);
    const size_t limit = static_cast<size_t>(maxDisplayLength_);
    if (maxDisplayLength_ <= 0 || name.GetLength() <= limit) return name;
    const size_t ellipsis = wcslen(Ellipsis);
    if (limit <= ellipsis) return name.Left(limit);
    return name.Left(limit - ellipsis) + Ellipsis;
}

bool VRecentFileList::Add(const VUnicodeString& name) {
    report_.Clear();
    if (name.IsEmpty()) return true;
    // Read again first: a client may have added a session since the list was shown.
    VArray<VUnicodeString> entries;
    if (!Read(entries)) return false;
    VArray<VUnicodeString> reordered;
    reordered.Add(name);
    for (const VUnicodeString& entry : entries)
        if (reordered.GetCount() < size_ && !entry.EqualsNoCase(name)) reordered.Add(entry);
    if (!Write(reordered)) {
        entries_ = entries;
        return false;
    }
    entries_ = reordered;
    return true;
}

bool VRecentFileList::AddToMostRecent(size_t index) { return Add(GetEntry(index)); }

size_t VRecentFileList::CheckedIndex(size_t index) const {
    if (index >= size_) throw std::invalid_argument("VRecentFileList: index outside the list");
    return index;
}

VUnicodeString VRecentFileList::EntryName(size_t index) const {
    VUnicodeString name;
    name.FormatPositional(entryFormat_.c_str(), static_cast<int>(start_ + index));
    return name;
}

bool VRecentFileList::Read(VArray<VUnicodeString>& entries) {
    entries.RemoveAll();
    VProfileStore store(GetCommonUiProfileStoreFactory(), true);
    VProfileKey& root = store.GetRootKey();
    if (!RootIsOpen(root, report_)) return false;
    if (!root.KeyExists(section_)) return true;  // nothing stored yet
    VProfileKey key(root, section_, false);
    if (!key.IsOpen()) {
        report_ = key.GetLastErrorParams();
        return false;
    }
    for (size_t index = 0; index < size_; ++index) {
        VUnicodeString entry;
        if (!key.GetString(EntryName(index), entry)) {
            if (key.GetLastErrorParams().GetMessageCode() == CONFIG_VALUE_ABSENT) continue;
            report_ = key.GetLastErrorParams();
            entries.RemoveAll();
            return false;
        }
        if (!entry.IsEmpty() && !ContainsNoCase(entries, entry)) entries.Add(entry);
    }
    return true;
}

bool VRecentFileList::Write(const VArray<VUnicodeString>& entries) {
    VProfileStore store(GetCommonUiProfileStoreFactory());
    VProfileKey& root = store.GetRootKey();
    if (!RootIsOpen(root, report_)) return false;
    VProfileKey key(root, section_, true);
    bool written = key.IsOpen();
    for (size_t index = 0; written && index < size_; ++index) {
        const VUnicodeString name = EntryName(index);
        if (index < entries.GetCount())
            written = key.SetString(name, entries[index]);
        else if (!key.DeleteValue(name))
            written =
                key.GetLastErrorParams().GetMessageCode() == ERROR_FILE_NOT_FOUND;  // was not there
    }
    written = written && key.Flush();
    if (!written) report_ = key.GetLastErrorParams();
    return written;
}
