// The vocabulary of the global option table (GlobalOptionTable.h): the
// storage kinds its rows name, the forms of their value names (plain, one per
// product, renamed, read at start-up), and how a row's default becomes a
// member.
#pragma once

#include <algorithm>
#include <stdexcept>
#include <type_traits>
#include <utility>

#include "ColorScheme.h"
#include "CustomColors.h"
#include "VListViewState.h"
#include "VLogFont.h"
#include "VPaneState.h"
#include "VProfile.h"
#include "VProfileEncryptedString.h"
#include "VProfileMultiSz.h"
#include "VProfileTimeSz.h"
#include "VTabStateList.h"
#include "VTreeState.h"
#include "VWindowPlacement.h"

// An opaque block kept whole, as the client that owns it wrote it.
template <>
struct VProfileValueTraits<VBinaryBlock> : VProfileIdentityTraits<VBinaryBlock> {};

// A switch of the global options. Absent from the key, it takes its default
// and is marked modified, so that the first save after an upgrade writes it.
class GlobalSwitch : public VProfile<bool> {
public:
    using VProfile<bool>::VProfile;
    using VProfile<bool>::Load;

    // The number under the name (true for any but 0), else defaultValue and
    // modified; false then.
    bool Load(VProfileKey& key, bool defaultValue) {
        if (VProfile<bool>::Load(key, defaultValue)) return true;
        SetModified(true);
        return false;
    }
};

// A protected text of the global options, built with a default like the
// other kinds (its pass-phrase provider is given later, by the object).
class GlobalProtectedText : public VProfileEncryptedString {
public:
    using VProfileEncryptedString::Load;

    GlobalProtectedText(const VUnicodeString& name, const VEncryptedString& defaultValue)
        : VProfileEncryptedString(name) {
        Reset(defaultValue);
    }

    // LoadOrDefault with defaultValue's protected text: absent, the value is
    // marked modified so that the next save writes it. The provider stays.
    bool Load(VProfileKey& key, const VEncryptedString& defaultValue) {
        return LoadOrDefault(key, defaultValue.GetProtectedText());
    }
};

// The storage kinds that the table's rows name.
namespace GlobalKind {
using Switch = GlobalSwitch;                                // 32-bit number, 0 or not
using Number = VProfile<unsigned long>;                     // 32-bit number
using Color = VProfile<unsigned long>;                      // COLORREF as a 32-bit number
using Signed = VProfile<int>;                               // 32-bit number, signed
using Text = VProfile2<VUnicodeString, VProfileSz>;         // string
using TextList = VProfile2<VStringArray, VProfileMultiSz>;  // multi-string
using Protected = GlobalProtectedText;                      // string, "CAPI:" or "02:" form
using Time = VProfile2<FILETIME, VProfileTimeSz>;           // string "y:m:d:h:m:s:ms"
using Placement = VProfileWindowPlacement;                  // binary WINDOWPLACEMENT
using Font = VProfileLogFont;                               // binary LOGFONTW
using ColorSet = VProfileCustomColors;                      // binary COLORREF[16]
using Scheme = VProfileColorScheme;                         // binary colour scheme
using Pane = VProfile2<VPaneState, VProfileSz>;             // string "shown,position,size"
using TabList = VProfileTabStateList;                       // string "s,p,s;s,p,s;..."
using ListView = VProfileListViewState;                     // string "sort,up;widths;order"
using Tree = VProfileTreeState;                             // string of "0" and "1"
using Block = VProfile2<VBinaryBlock, VProfileBinary>;      // binary, opaque
}  // namespace GlobalKind

// How a row's value name is formed.
struct GlobalOptionForm {
    enum Flags : unsigned {
        // The transfer client reads and writes the name with " FWX" appended.
        PerProductName = 1,
        // Same for the former name.
        PerProductFormer = 2,
        // Read at the tray program's start-up through the lookup by name; a
        // policy value of the same name wins over the key's.
        StartUpOption = 4,
    };
    unsigned flags;
    // The name an older version kept the value under, or null. Found only
    // there, the value is taken (converted by its kind's text form) and the
    // next save writes it under the present name.
    const wchar_t* formerName;
};

inline constexpr GlobalOptionForm Plain{0, nullptr};
inline constexpr GlobalOptionForm PerProduct{GlobalOptionForm::PerProductName, nullptr};
inline constexpr GlobalOptionForm StartUp{GlobalOptionForm::StartUpOption, nullptr};
constexpr GlobalOptionForm Renamed(const wchar_t* formerName) { return {0, formerName}; }
constexpr GlobalOptionForm RenamedPerProduct(const wchar_t* formerName) {
    return {GlobalOptionForm::PerProductFormer, formerName};
}

// The value type that Kind holds.
template <class Kind>
using GlobalValueOf = std::remove_cvref_t<decltype(std::declval<const Kind&>().Get())>;

// A member of kind Kind named name, holding value as current and saved value.
template <class Kind>
Kind MakeGlobalOption(const wchar_t* name, const GlobalValueOf<Kind>& value) {
    return Kind(VUnicodeString(name), value);
}

// The same for the state kinds, whose defaults the table gives in their text
// form. A text that is not of that form is a fault of the table.
template <class Kind>
requires requires(VUnicodeString text, GlobalValueOf<Kind> value) {
    GlobalValueOf<Kind>::Parse(text, value);
}
Kind MakeGlobalOption(const wchar_t* name, const wchar_t* text) {
    GlobalValueOf<Kind> value;
    if (!text || !GlobalValueOf<Kind>::Parse(VUnicodeString(text), value))
        throw std::logic_error("a global option's default is not of its kind's text form");
    return Kind(VUnicodeString(name), value);
}

// The sixteen ANSI colours of the classic console palette, as the default
// colour scheme holds them.
inline CustomColors ClassicAnsiColors() {
    const ColorScheme scheme;
    CustomColors colors;
    std::copy(scheme.ansi, scheme.ansi + ColorScheme::AnsiCount, colors.colors);
    return colors;
}
