// The "CAPI:" form of a protected text: the UTF-16 text with its terminator,
// protected with the system's per-user data protection (CryptProtectData),
// stored as "CAPI:" followed by two upper-case hexadecimal digits per byte.
// Only the same user on the same computer can read it back.
#pragma once

#include "VReportMessageParams.h"
#include "VString.h"

namespace CapiForm {

inline constexpr wchar_t Prefix[] = L"CAPI:";
inline constexpr size_t PrefixLength = 5;
// The description that CryptProtectData keeps in the blob.
inline constexpr wchar_t Description[] = L"VProfileCapiString";

// Sets text to the "CAPI:" form of plain; an empty plain gives an empty text.
// When the system refuses, text is emptied, and report holds
// CONFIG_PROTECT_FAILED with name and the system's text for the error.
bool Encode(const VUnicodeString& plain, VUnicodeString& text, const VUnicodeString& name,
            VReportMessageParams& report);

// Sets plain (which becomes sensitive) to the text that text protects; the
// prefix "CAPI:" is skipped when present, and an empty remainder is the empty
// text. An odd number of digits, a character that is no hexadecimal digit or
// a blob that the system refuses (damaged, or another user's or computer's)
// empties plain and fills report with CONFIG_PROTECTED_TEXT_DAMAGED and name.
bool Decode(const VUnicodeString& text, VUnicodeString& plain, const VUnicodeString& name,
            VReportMessageParams& report);

}  // namespace CapiForm
