// VIniFileKey: a key of the INI-file store. A key is a folder P; its values
// live in the values file P.ini beside that folder (not inside it), and its
// subkey N is the folder P\N with the values file P\N.ini. A key with a
// private folder Q keeps the values named in PrivateValueNames.h in Q.ini.
//
// Nothing is read until a value is first touched; then both files are read
// into a table once, each whole and under a shared byte-range lock on its
// first 4 bytes (which writers of older programs, rewriting the file in
// place, hold exclusively). Writes and deletions change only that table;
// Flush, and the destructor of a key that is not read-only, write it back
// when it was changed. Changes made by other processes after the table was
// read are seen only after Reload; the last writer wins.
//
// Where saving departs from the family's older steps, so that no failure and
// no killed process loses settings:
// - The whole text is formatted in memory first, and each file is replaced
//   whole by a file written beside it (VFileReplacement), never cut and
//   rewritten in place: a file holds its old or its new content at every
//   moment. The private file is replaced before the main file, so that a
//   value moving into it is in one of them whatever happens between the two.
// - A private file that cannot be written fails the save, and neither file
//   changes (the older steps put the secrets into the main file, where the
//   private file then overrides them at the next load).
// - A file that exists but could not be read (shared with no one, access
//   denied, too large) is not saved over: the key remembers the failure and
//   every save fails with its error until Reload reads the file (the older
//   steps took it for an empty key, so the next save wiped it).
// - A private file that was read is rewritten at every save, with only the
//   private values (the older steps left it alone when no private value was
//   set, and a stale value in it then won over the main file's).
//
// What the key refuses, with ERROR_INVALID_NAME (nothing is changed):
// - value names that are empty or hold a double quote, CR or LF: the format
//   ends a name at the next quote and a header at the line end, and an entry
//   with an empty name is dropped on reading;
// - subkey names that are empty or hold an empty, "." or ".." part, a "/",
//   a character that file names cannot hold (< > : " | ? * and controls), a
//   part ending in a dot or blank, or a device name (CON, NUL, COM1 ...). A
//   name may be a path of parts separated by "\", as registry keys may.
// and with ERROR_INVALID_DATA: strings (and strings of a multi-string) that
// hold CR or LF, since they could not be read back as one value and would
// hide the values after them. Text with an unpaired surrogate cannot be
// written in UTF-8 and is refused with ERROR_NO_UNICODE_TRANSLATION (one read
// from a UTF-16 file has become U+FFFD, VTextFile). Writes, deletions and
// DeleteKey on a read-only key fail with ERROR_ACCESS_DENIED.
//
// Texts read out of private values are sensitive strings, and every buffer
// that held a file's text is wiped before it is freed.
//
// Used by one thread at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

#include "VIniFileValueTable.h"
#include "VProfilePrivate.h"
#include "VSecurityDescriptor.h"
#include "VString.h"

class VIniFileKey : public VProfilePrivateKey {
public:
    class Iterator;

    // folderPath is absolute; trailing separators are dropped. An empty
    // privateFolderPath, or one equal to folderPath without regard to case,
    // means the key has no private file. security (copied; null for default
    // security) is applied to the folders and files that the key creates.
    VIniFileKey(const VUnicodeString& folderPath, const VUnicodeString& privateFolderPath,
                bool readOnly, const VSecurityDescriptor* security);
    // Saves when the key is not read-only; a failure then is lost, so callers
    // that must know call Flush first.
    ~VIniFileKey() override;

    // The security descriptor kept as the value name: read from its
    // multi-string text form, else from a binary value that must be a valid
    // self-relative descriptor. Written in the text form when that gives back
    // exactly the same descriptor, else as the binary value (the text form
    // holds only plain access lists; the per-user descriptor of the
    // shared-memory objects has inheritance flags).
    bool GetSecurity(const VUnicodeString& name, VSecurityDescriptor& descriptor) override;
    bool GetMultiString(const VUnicodeString& name, VArray<VUnicodeString>& strings) override;
    bool GetBinary(const VUnicodeString& name, void* buffer, size_t& size) override;
    bool GetString(const VUnicodeString& name, VUnicodeString& text) override;
    // "Is Session" reads 1 whenever the values file exists as a file.
    bool GetDword(const VUnicodeString& name, uint32_t& value) override;
    bool SetSecurity(const VUnicodeString& name, const VSecurityDescriptor& descriptor) override;
    bool SetMultiString(const VUnicodeString& name, const VArray<VUnicodeString>& strings) override;
    bool SetBinary(const VUnicodeString& name, const void* bytes, size_t length) override;
    bool SetString(const VUnicodeString& name, const VUnicodeString& text) override;
    bool SetDword(const VUnicodeString& name, uint32_t value) override;
    // False with ERROR_FILE_NOT_FOUND when no value of that name is stored.
    bool DeleteValue(const VUnicodeString& name) override;
    // Removes the subkey's folders and values files (main and private) with
    // everything below them. False with ERROR_FILE_NOT_FOUND when there was
    // nothing to remove; on a failure midway, what was removed stays removed.
    bool DeleteKey(const VUnicodeString& name) override;
    // Whether the subkey's folder exists, or else its values file as a file.
    bool KeyExists(const VUnicodeString& name) override;
    // False when the key is read-only or its values file is read-only or a
    // folder; true otherwise, also when the file does not exist yet.
    bool IsWritable() override;
    bool IsVolatile() override { return false; }
    VReportMessageParams& GetLastErrorParams() override { return error_; }
    // Drops the table, unsaved changes included, and reads the files again.
    bool Reload() override;
    // Saves now (see Save).
    bool Flush() override { return Save(); }
    // Without create, null (ERROR_FILE_NOT_FOUND in this key's record) when
    // the subkey does not exist. With create on a key that is not read-only,
    // the subkey's folder and private folder are made with their missing
    // parents; a failure there is recorded in the new key's error record and
    // the key is still returned. A read-only key creates nothing: it opens
    // what exists, as without create. The subkey inherits the read-only flag
    // and is given security (null: none) for what it creates later.
    std::unique_ptr<VProfilePrivateKey> OpenKey(const VUnicodeString& name, bool create,
                                                const VSecurityDescriptor* security) override;
    std::unique_ptr<VProfilePrivateKeyIterator> CreatePrivateKeyIterator(bool values) override;

    // Writes the table to the values files when it was changed since it was
    // read: private values to the private file, the others to the main file;
    // D, S and B entries first, then Z entries. False (with the error
    // recorded) for a read-only key, for a key whose existing file could not
    // be read, or when either file cannot be written or replaced; the table
    // then stays changed, so a later save tries again.
    bool Save();

    // A values file larger than this is not read (ERROR_FILE_TOO_LARGE): a
    // key of 10,000 values takes half a megabyte, so this is far beyond any
    // values file, and a sparse or runaway file would take the memory.
    static constexpr uint64_t MaxValuesFileBytes = 64 * 1024 * 1024;

    const VUnicodeString& GetFolderPath() const { return folderPath_; }
    const VUnicodeString& GetPrivateFolderPath() const { return privateFolderPath_; }
    static constexpr wchar_t ValuesFileExtension[] = L".ini";
    // The values file of a key with folder path folderPath: folderPath + ".ini".
    static VUnicodeString ValuesFilePath(const VUnicodeString& folderPath);

    static bool IsValidValueName(const VUnicodeString& name);
    static bool IsValidSubkeyName(const VUnicodeString& name);

private:
    struct FileInformation {
        bool exists;
        bool isFolder;
        bool readOnly;
    };

    VIniFileValueTable& Table();
    void LoadTable();
    // Reads path into the table; true when the file was there and read. A
    // file that is there but cannot be read sets loadError_.
    bool ReadValuesFile(const VUnicodeString& path);
    const FileInformation& GetFileInformation();

    // Looks name up for a read; records it as absent when it is missing or of
    // another kind.
    const VIniFileData* FindForRead(const VUnicodeString& name, VProfileValueKind kind);
    // Checks a write of name (and of its text, if any) before it is made.
    bool CheckWrite(const VUnicodeString& name);
    bool CheckText(const VUnicodeString& text);
    bool Store(const VUnicodeString& name, VIniFileDataPtr value);
    bool Fail(DWORD error);

    // The text of the main file and, when wanted, of the private file.
    void Format(VIniFileText& mainText, VIniFileText* privateText) const;

    VUnicodeString folderPath_;
    VUnicodeString privateFolderPath_;
    bool readOnly_;
    bool modified_ = false;
    DWORD loadError_ = ERROR_SUCCESS;  // why an existing file could not be read
    bool privateFileRead_ = false;
    std::unique_ptr<VIniFileValueTable> table_;
    std::optional<FileInformation> fileInformation_;
    std::optional<VSecurityDescriptor> security_;
    VReportMessageParams error_;
};
