// The values that one save of a generation writes, for the processes that
// save and load one key together (profile_probe) and the tests that check
// what they left: every value names its writer and generation, and the texts
// grow and shrink from one generation to the next, so that a file holding
// parts of two generations, or cut short, cannot pass for either.
#pragma once

#include "VProfilePrivate.h"

// The values of the key that "profile_probe save-generations" saves until
// it is killed: a few hundred in the main file, beside the private ones.
inline constexpr unsigned KillValueCount = 300;

struct Generation {
    unsigned writer = 0;
    unsigned number = 0;
};

// Stores generation number of writer in key: count texts ("v000" on) and,
// with withPrivate, one under each private value name.
void StoreGeneration(VProfilePrivateKey& key, Generation generation, unsigned count, bool withPrivate);

// The generations that key's values belong to: main (those StoreGeneration
// stores under "v..." names) and personal (the private ones; withPrivate
// only). False, with what is wrong on stderr, when a value is missing or
// belongs to another generation than its group.
bool ReadGeneration(VProfilePrivateKey& key, unsigned count, bool withPrivate, Generation& main, Generation& personal);
