// VRecentFileList: a most-recently-used list of session names, kept in the
// profile. The entries are string values named by entryFormat ("File%1!d!"
// gives "File0", "File1", ...) in a key named after the section, directly
// under the root of the store that Deskkit uses at the time
// (GetCommonUiProfileStoreFactory). The client programs add to the same
// lists while Traywell runs, so a reader calls Reload before it shows them.
//
// Reading skips empty entries and later copies of a name (names compare
// without regard to case), so the list is always dense and without repeats.
// One thread at a time.
#pragma once

#include <cstddef>

#include "VContainers.h"
#include "VReportMessageParams.h"
#include "VString.h"

class VRecentFileList {
public:
    // A list of at most size entries, numbered from start, shown with at most
    // maxDisplayLength characters (GetDisplayName). The entries are read at
    // once; a failure leaves the list empty (see GetLastErrorParams).
    VRecentFileList(unsigned start, const wchar_t* section, const wchar_t* entryFormat, size_t size,
                    int maxDisplayLength);
    ~VRecentFileList();
    VRecentFileList(const VRecentFileList&) = delete;
    VRecentFileList& operator=(const VRecentFileList&) = delete;

    // Reads the entries again from the profile. False, with the list emptied and
    // the reason in GetLastErrorParams, when the store cannot be read. A key
    // that does not exist yet is an empty list, not a failure.
    bool Reload();

    // The most entries the list holds.
    size_t GetSize() const { return size_; }
    // The entries held, as last read or written.
    size_t GetCount() const { return entries_.GetCount(); }
    // Entry index (0 is the most recent): empty from GetCount() to GetSize() - 1.
    // An index outside the list (index >= GetSize()) throws std::invalid_argument.
    VUnicodeString GetEntry(size_t index) const;
    VUnicodeString operator[](size_t index) const { return GetEntry(index); }
    // Entry index as shown: longer than maxDisplayLength characters, it is cut
    // and ends with "..."; a maxDisplayLength of 0 or less shows it whole.
    // Same index rule as GetEntry.
    VUnicodeString GetDisplayName(size_t index) const;

    // Puts name at the top: the stored list is read again, name is taken out of
    // it wherever it stands, put first, the list cut to its size and saved. An
    // empty name changes nothing. False, with the reason in GetLastErrorParams,
    // when the store cannot be read or written; the list then holds what was read.
    bool Add(const VUnicodeString& name);
    // Moves entry index (as last read) to the top, as Add does, and saves. An
    // empty entry changes nothing. Same index rule as GetEntry.
    bool AddToMostRecent(size_t index);

    // Why the last Reload, Add or AddToMostRecent failed; code 0 after a success.
    VReportMessageParams& GetLastErrorParams() { return report_; }

private:
    size_t CheckedIndex(size_t index) const;
    VUnicodeString EntryName(size_t index) const;
    bool Read(VArray<VUnicodeString>& entries);
    bool Write(const VArray<VUnicodeString>& entries);

    unsigned start_;
    VUnicodeString section_;
    VUnicodeString entryFormat_;
    size_t size_;
    int maxDisplayLength_;
    VArray<VUnicodeString> entries_;
    VReportMessageParams report_;
};
