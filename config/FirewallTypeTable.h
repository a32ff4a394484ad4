// The kinds of firewall (proxy) a firewall definition may name in "Firewall
// Type", built into the program. A row's type is its index; a type that
// needs credentials may ask the user for a user name and password. The
// display texts lie in Confkit's message table.
#pragma once

#include <cstddef>
#include <cstdint>

#include "VString.h"

struct FirewallTypeRow {
    uint32_t type;
    uint32_t needsCredentials;  // 0 or 1
    uint32_t displayTextId;     // followed by 32 bits of padding
    const wchar_t* name;        // null in the row that ends the table
};
static_assert(sizeof(void*) != 8 ||
                  (offsetof(FirewallTypeRow, name) == 16 && sizeof(FirewallTypeRow) == 24),
              "the row layout is shared with the other programs of the family");

// The rows, in order, ended by a row whose name is null.
extern const FirewallTypeRow FirewallTypes[];

// The type whose name is name exactly (case-sensitive, same length); 0
// ("None") when no row has it.
uint32_t FindFirewallType(const VUnicodeString& name);
// The row of type; the row of type 0 for a type beyond the table.
const FirewallTypeRow& GetFirewallTypeRow(uint32_t type);
