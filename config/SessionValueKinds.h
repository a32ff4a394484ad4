// The vocabulary of the session's and the terminal block's value tables
// (SessionOptionTable.h, TerminalOptionTable.h): the storage kinds their rows
// name, most of them those of the global options (GlobalOptionKinds.h), and
// the forms of their value names: Plain, Renamed(former) for a value an
// older version kept under another name, and Generations(...) for a secret
// whose older generations are read when the newest is absent.
#pragma once

#include "GlobalOptionKinds.h"
#include "ProfileLoadKey.h"
#include "SessionSecret.h"
#include "VProfileEncodedString.h"
#include "VProfileMultiLineString.h"
#include "VTriState.h"

// The storage kinds that the session's and the terminal block's rows name.
namespace SessionKind {
using Flag = VProfile<bool>;                // 32-bit number, 0 or not
using Number = GlobalKind::Number;          // 32-bit number
using Signed = GlobalKind::Signed;          // 32-bit number, signed
using Color = GlobalKind::Color;            // COLORREF as a 32-bit number
using TriState = VProfile<VTriState>;       // 32-bit number: 0 no, 1 yes, 2 automatic
using Text = GlobalKind::Text;              // string
using Encoded = VProfileEncodedString;      // string, line breaks escaped
using MultiLine = VProfileMultiLineString;  // multi-string, one line each
using TextList = GlobalKind::TextList;      // multi-string
using Secret = SessionSecret;               // string, "CAPI:" or "02:" form
using Placement = GlobalKind::Placement;    // binary WINDOWPLACEMENT
using Font = GlobalKind::Font;              // binary LOGFONTW
using ColorSet = GlobalKind::ColorSet;      // binary COLORREF[16]
using Pane = GlobalKind::Pane;              // string "shown,position,size"
using ListView = GlobalKind::ListView;      // string "sort,up;widths;order"
using Block = GlobalKind::Block;            // binary, opaque
}  // namespace SessionKind

// Loading one member of a table: under its name, else a former name, else
// the default; Generations rows through their secret's migration.
template <class Kind>
void LoadTableValue(Kind& member, const Kind& defaults, const GlobalOptionForm& form,
                    ProfileLoadKey& keys) {
    VProfileKey& key = keys.For(member.GetName(), form.formerName);
    if (form.formerName)
        member.LoadWithFormerName(key, VUnicodeString(form.formerName), defaults.Get());
    else
        member.Load(key, defaults.Get());
}

inline void LoadTableValue(SessionSecret& member, const SessionSecret& defaults,
                           const SecretGenerations& older, ProfileLoadKey& keys) {
    member.LoadGenerations(keys.For(member.GetName(), older.olderProtected, older.olderPlain),
                           older, defaults.Get());
}

// Whether two members of one kind hold the same value, as the kind compares.
template <class Kind>
bool SameTableValue(const Kind& a, const Kind& b) {
    return VProfileValueTraits<GlobalValueOf<Kind>>::Equal(a.Get(), b.Get());
}

// The parts of a configuration class that a table TABLE(X) of rows
// X(Member, Kind, L"Value Name", Default, Form) gives, each used as
// TABLE(PROFILE_TABLE_...):
// - in the class: one member of its kind per row, holding its default;
#define PROFILE_TABLE_MEMBER(member, kind, name, value, form) \
    SessionKind::kind member = MakeGlobalOption<SessionKind::kind>(name, value);
// - in an array of VProfileData& (*)(Owner&), with Owner the class: the
//   members in the table's order;
#define PROFILE_TABLE_ROW(member, kind, name, value, form) \
    [](Owner& owner) -> VProfileData& { return owner.member; },
// - in a load, with `defaults` an object holding the defaults and `from` the
//   ProfileLoadKey;
#define PROFILE_TABLE_LOAD(member, kind, name, value, form) \
    LoadTableValue(member, defaults.member, form, from);
// - after `true`, every value equal to that of `other`.
#define PROFILE_TABLE_SAME(member, kind, name, value, form) &&SameTableValue(member, other.member)
