// SessionSecret: a secret of a session or firewall (a login script, a
// password, a command), and the older generations of its value name that
// are read when the newest is absent.
#pragma once

#include "VContainers.h"
#include "VProfileEncryptedString.h"

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
