// Menu and control labels take "&" as the mark of the next character's access
// key; a text shown as it is (a session name) must have each "&" doubled.
#pragma once

#include "VString.h"

// text with every "&" doubled. Keeps text's sensitivity.
VUnicodeString EscapeAmpersand(const VUnicodeString& text);
