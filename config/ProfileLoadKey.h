// ProfileLoadKey: the key a configuration object loads from, and which of
// its values the key may hold. Asking the registry for a value it lacks
// costs a call to the system, as reading one does, and a session key often
// holds a few dozen of a session's three hundred values; so a load may list
// the key's values first and then ask only for those. A key found to hold
// many values is not listed to the end: reading them all costs less.
//
// Used by one thread, for one load.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "VProfileStore.h"

class ProfileLoadKey {
public:
    // key may be null: every value takes its default. With listValues, the
    // key's values are listed at once (see above).
    explicit ProfileLoadKey(VProfileKey* key, bool listValues = false);
    ProfileLoadKey(const ProfileLoadKey&) = delete;
    ProfileLoadKey& operator=(const ProfileLoadKey&) = delete;

    // The key itself (a key that is not open when none was given), for
    // reads that must reach it whatever the listing says.
    VProfileKey& Get() { return key_; }
    // The key when it may hold a value under name or one of the older names
    // (null ones skipped), else a key that is not open, from which the value
    // takes its default without asking. Names compare without regard to case,
    // as the registry compares them.
    VProfileKey& For(const VUnicodeString& name, const wchar_t* older = nullptr,
                     const wchar_t* oldest = nullptr);
    // A key that is not open.
    VProfileKey& None() { return none_; }

    // The key name below root's key parent ("Sessions", "Firewalls"); create
    // makes it and what is missing above it. Not open (IsOpen) when it cannot be.
    static std::unique_ptr<VProfileKey> OpenBelow(VProfileKey& root, const wchar_t* parent,
                                                  const VUnicodeString& name, bool create);

private:
    bool MayHold(const wchar_t* name, size_t length) const;

    VProfileKey none_{std::unique_ptr<VProfilePrivateKey>()};
    VProfileKey& key_;
    bool listed_ = false;
    // Of the names the key holds, folded to upper case; sorted. Two names
    // of one hash only make a value be asked for that is not there.
    std::vector<uint64_t> hashes_;
};
