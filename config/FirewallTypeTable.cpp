#include "FirewallTypeTable.h"

const FirewallTypeRow FirewallTypes[] = {
    {0, 0, 0x6137008E, L"None"},
    {1, 0, 0x6137008F, L"Generic Proxy"},
    {2, 0, 0x61370090, L"SOCKSv4"},
    {3, 0, 0x61370091, L"SOCKSv5"},
    {4, 1, 0x61370092, L"SOCKSv5_USERPASS"},
    {5, 0, 0x61370093, L"HTTP"},
    {6, 1, 0x61370094, L"HTTP_BASICAUTH"},
    {7, 0, 0x61370095, L"OPEN host"},
    {8, 0, 0x61370096, L"USER user@host:port"},
    {9, 0, 0x61370097, L"USER user@host port"},
    {10, 1, 0x61370098, L"USER user@host port (with login)"},
    {11, 1, 0x61370099, L"USER user@host login"},
    {0, 0, 0, nullptr},
};

uint32_t FindFirewallType(const VUnicodeString& name) {
    for (const FirewallTypeRow* row = FirewallTypes; row->name; ++row)
        if (name == row->name) return row->type;
    return 0;
}

const FirewallTypeRow& GetFirewallTypeRow(uint32_t type) {
    for (const FirewallTypeRow* row = FirewallTypes; row->name; ++row)
        if (row->type == type) return *row;
    return FirewallTypes[0];
}
