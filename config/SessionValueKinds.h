// The vocabulary of the session's and the terminal block's value tables
// (SessionOptionTable.h, TerminalOptionTable.h): the storage kinds their rows
// name, most of them those of the global options (GlobalOptionKinds.h), and
// the forms of their value names: Plain, Renamed(former) for a value an
// older version kept under another name, and Generations(...) for a secret
// whose older generations are read when the newest is absent.
#pragma once

#include "GlobalOptionKinds.h"
#include "ProfileLoadKey.h"
#include "VContainers.h"
#include "VProfileEncodedString.h"
#include "VProfileMultiLineString.h"
#include "VTriState.h"

// The older generations of a secret's value name, newest first.
struct SecretGenerations {
    const wchar_t* olderProtected;  // an older name of a protected form, or null
    const wchar_t* olderPlain;      // the oldest name, holding plain text, or null
    bool plainEncoded;              // the plain text is kept as VProfileEncodedString keeps it
};

constexpr SecretGenerations Generations(const wchar_t* olderProtected, const wchar_t* olderPlain,
                                        bool plainEncoded = false) {
    return {olderProtected, olderPlain, plainEncoded};
}

// A secret of a session: a protected text whose strings are all sensitive,
// read from the newest generation of its name or migrated from an older one.
class SessionSecret : public VProfileEncryptedString {
public:
    // A secret named name holding value's protected text; its strings are
    // sensitive, so clones share only wiped blocks.
    SessionSecret(const VUnicodeString& name, const VEncryptedString& value);

    // The stored text under the name, else defaultValue's protected text (the
    // provider stays); false then. Not modified either way.
    bool Load(VProfileKey& key, const VEncryptedString& defaultValue);
    using VProfileEncryptedString::Load;

    // Load, but when the name is absent an older generation is taken: the
    // protected one (opened and sealed afresh under this value's provider, or
    // kept as it stands when it cannot be opened now), else the plain one
    // (sealed). The value is then modified, and the next Save writes it under
    // the newest name and blanks every older name that held something. A
    // blank older value counts as absent: an earlier migration left it so.
    // True when a value was found under some generation.
    bool LoadGenerations(VProfileKey& key, const SecretGenerations& older,
                         const VEncryptedString& defaultValue);

    // Slot 2, then blanks the older names a migration took the value from.
    bool Save(VProfileKey& key, bool force) override;

private:
    VArray<VUnicodeString> olderToBlank_;
};

// The storage kinds that the session's and the terminal block's rows name.
namespace SessionKind {
using Flag = VProfile<bool>;               // 32-bit number, 0 or not
using Number = GlobalKind::Number;         // 32-bit number
using Signed = GlobalKind::Signed;          // 32-bit number, signed
using Color = GlobalKind::Color;           // COLORREF as a 32-bit number
using TriState = VProfile<VTriState>;      // 32-bit number: 0 no, 1 yes, 2 automatic
using Text = GlobalKind::Text;             // string
using Encoded = VProfileEncodedString;     // string, line breaks escaped
using MultiLine = VProfileMultiLineString; // multi-string, one line each
using TextList = GlobalKind::TextList;     // multi-string
using Secret = SessionSecret;              // string, "CAPI:" or "02:" form
using Placement = GlobalKind::Placement;   // binary WINDOWPLACEMENT
using Font = GlobalKind::Font;             // binary LOGFONTW
using ColorSet = GlobalKind::ColorSet;     // binary COLORREF[16]
using Pane = GlobalKind::Pane;             // string "shown,position,size"
using ListView = GlobalKind::ListView;     // string "sort,up;widths;order"
using Block = GlobalKind::Block;           // binary, opaque
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
