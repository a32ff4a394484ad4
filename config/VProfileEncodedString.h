// VProfileEncodedString: a text that may hold line breaks and tabs, kept in a
// string value of one line. A settings file ends a string value at the line's
// end, so the stored form escapes them: "\r", "\n" and "\t" stand for
// carriage return, line feed and tab, and "\\" for one backslash. A backslash
// before any other character is kept as it stands, so hand-written texts
// with lone backslashes ("C:\Logs") read back unchanged.
#pragma once

#include "VProfile2.h"
#include "VProfileSz.h"

class VProfileEncodedSz : public VProfileSz {
public:
    using VProfileSz::VProfileSz;

    // The stored form of text, and text of a stored form. Both keep the
    // sensitivity of their input.
    static VUnicodeString Encode(const VUnicodeString& text);
    static VUnicodeString Decode(const VUnicodeString& stored);

    // Slots 21 and 22: the string value, decoded on reading and encoded on writing.
    bool ReadValue(VProfileKey& key, const VUnicodeString& name, VUnicodeString& out) override;
    bool WriteValue(VProfileKey& key, const VUnicodeString& name,
                    const VUnicodeString& value) override;
};

using VProfileEncodedString = VProfile2<VUnicodeString, VProfileEncodedSz>;
