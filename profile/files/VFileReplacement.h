// VFileReplacement: saves a text file by writing its new content to a
// temporary file beside it and then renaming that over the file, so that the
// file holds its old content or its new one at every moment, also when the
// process is killed midway: a rename is one step, where rewriting the file in
// place leaves it cut short when the writer dies after the cut.
//
// The replaced file's access list (its protection, which a private values file
// depends on) and attributes pass to the new one. A reader that has the old
// file open goes on reading it whole. While any other handle holds the file
// open, Wine and older Windows refuse the rename; it is tried again until that
// handle is closed, within a time limit (RenameWaitMilliseconds).
//
// A temporary file left by a killed process is removed by the next save of the
// same file that finds it. One thread at a time.
#pragma once

#include <cstddef>
#include <cstdint>

#include "VSecurityDescriptor.h"
#include "VString.h"
#include "VTextFile.h"

class VFileReplacement {
public:
    // How long Commit waits for other handles of the file to be closed.
    static constexpr DWORD RenameWaitMilliseconds = 5000;

    VFileReplacement() = default;
    // Deletes the temporary file when it was not committed.
    ~VFileReplacement();
    VFileReplacement(const VFileReplacement&) = delete;
    VFileReplacement& operator=(const VFileReplacement&) = delete;

    // Writes the byte-order mark and text, in UTF-8, to a new temporary file
    // "<path>.<n>.tmp" beside path. The temporary takes path's access list and
    // attributes, or, when path does not exist, security (null: the folder's
    // default) and normal attributes; a missing folder is made, with its
    // missing parents, under security. Nothing at path is changed. False,
    // with the system's error as last error, when path is a folder or
    // read-only (ERROR_ACCESS_DENIED), when its access list cannot be read, or
    // when the temporary cannot be made or written (a character UTF-8 cannot
    // hold fails with ERROR_NO_UNICODE_TRANSLATION).
    bool Prepare(const VUnicodeString& path, const wchar_t* text, size_t length,
                 const VSecurityDescriptor* security);
    // Puts the prepared file in path's place (see above). False, leaving path
    // as it was, when the rename fails or the wait runs out.
    bool Commit();
    // After a Commit: removes the temporaries beside path that no live writer
    // holds, what killed writers left behind. Only when this one found its
    // first name taken, so that a save that finds none pays nothing.
    void RemoveLeftovers() const;

private:
    VTextFile file_;
    VUnicodeString path_;
    DWORD counter_ = 0;
    bool committed_ = false;
};
