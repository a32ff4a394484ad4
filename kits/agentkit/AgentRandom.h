// The agent's random source: one generator for the process, safe to use from
// any thread. (Per-thread generators are not used: destroying thread-local
// objects when the pipe server's client threads end corrupts the heap in
// statically linked MinGW programs.)
#pragma once

#include <cryptopp/cryptlib.h>

CryptoPP::RandomNumberGenerator& AgentRandom();
