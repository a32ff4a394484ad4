// VProfileMultiLineString: a text of several lines (prompts and answers,
// commands to run after logging in), kept as a multi-string value with one
// line per string. In memory the lines are joined with CR LF. A multi-string
// cannot hold an empty string, so blank lines are not kept.
#pragma once

#include "VProfile2.h"
#include "VProfileSz.h"

class VProfileMultiLineSz : public VProfileSz {
public:
    using VProfileSz::VProfileSz;

    // The lines of text, split at CR LF, LF or CR, blank lines left out.
    static VStringArray SplitLines(const VUnicodeString& text);
    // lines joined with CR LF.
    static VUnicodeString JoinLines(const VStringArray& lines);

    // Slots 21 and 22: the multi-string value, joined on reading and split on writing.
    bool ReadValue(VProfileKey& key, const VUnicodeString& name, VUnicodeString& out) override;
    bool WriteValue(VProfileKey& key, const VUnicodeString& name,
                    const VUnicodeString& value) override;
};

using VProfileMultiLineString = VProfile2<VUnicodeString, VProfileMultiLineSz>;
