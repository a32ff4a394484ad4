// VBlowfishString: the older fixed-key protected form, hexadecimal digits with
// no prefix, which this program only reads (old profiles hold it). The text's
// UTF-16LE code units, zero-padded to a whole number of 8-byte blocks, are
// enciphered with Blowfish under the first fixed key, then under the second,
// and written as lower-case hexadecimal digits. The form has no integrity
// check: damage shows as a wrong text, or as a failure when the deciphered
// bytes cannot be a text.
#pragma once

#include "VReportMessageParams.h"
#include "VString.h"

class VBlowfishString {
public:
    // Sets plain (which becomes sensitive) to the text that digits hold. A
    // count of digits that is not a whole number of blocks, a character that
    // is no hexadecimal digit, or a zero unit inside the deciphered text
    // leaves plain unchanged and fills report with CONFIG_PROTECTED_TEXT_INVALID
    // and name.
    static bool Decode(const VUnicodeString& digits, VUnicodeString& plain,
                       const VUnicodeString& name, VReportMessageParams& report);

    // The digits of plain in this form. The program never writes it; tests
    // use it to make old texts with the same keys the reader uses.
    static VUnicodeString Encode(const VUnicodeString& plain);
};
