// TerminalConfig: the terminal block of a session (emulation, screen,
// colours, keyboard, scrolling, window), embedded in SessionConfig and read
// from the session's own key. Its values are those of TerminalOptionTable.h.
//
// A block is used by one thread at a time.
#pragma once

#include <cstddef>

#include "ProfileValueList.h"
#include "TerminalOptionTable.h"

class TerminalConfig : public ProfileValueList {
public:
    // The name of the block among a session's members; nothing is stored under it.
    static constexpr wchar_t Name[] = L"Terminal";

    // Every value with its default and its name.
    TerminalConfig();

    // Reads every value from key, in the table's order; a value the key does
    // not hold, or holds as another kind, takes its default. A null key gives
    // every default.
    void Load(VProfileKey* key);
    void Load(ProfileLoadKey& from);

    size_t GetMemberCount() const override;
    VProfileData& GetMember(size_t index) override;
    using ProfileValueList::GetMember;

    // Every value equal, as its kind compares.
    bool Equals(const TerminalConfig& other) const;

    // The emulation in the spelling of GetEmulationNames(), whatever the case
    // it was stored in ("SCOANSI", an older spelling, reads as "SCO-ANSI");
    // for a name the block does not know, the default emulation.
    VUnicodeString GetEmulationName() const;
    // The emulations the block knows.
    static const VArray<VUnicodeString>& GetEmulationNames();

    TERMINAL_OPTIONS(PROFILE_TABLE_MEMBER)
};
