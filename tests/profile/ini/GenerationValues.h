// The values one save of a generation writes, for profile_probe and the tests
// that check what it left: every value names its writer and generation, and the
// texts change length with the generation, so that no mix or cut passes for one.
#pragma once

#include "VProfilePrivate.h"

// The main values that "profile_probe save-generations" saves, beside the private ones.
inline constexpr unsigned KillValueCount = 300;

struct Generation {
    unsigned writer = 0;
    unsigned number = 0;
};

// Stores generation number of writer in key: count texts ("v000" on) and,
// with withPrivate, one under each private value name.
void StoreGeneration(VProfilePrivateKey& key, Generation generation, unsigned count, bool withPrivate);

// The generations of key's "v..." values (main) and private ones (personal, with
// withPrivate only); false, with what is wrong on stderr, when they are mixed.
bool ReadGeneration(VProfilePrivateKey& key, unsigned count, bool withPrivate, Generation& main, Generation& personal);
