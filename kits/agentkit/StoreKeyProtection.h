// How the key store keeps private key material from being plain in shared
// memory: each key is sealed (AES-256-GCM) under a random store key, and the
// store key itself is protected for the user's logon session with
// CryptProtectMemory(CRYPTPROTECTMEMORY_SAME_LOGON). Where that call leaves
// the bytes as they were (Wine implements it as a no-op), the store key is
// protected for the user with CryptProtectData instead, which the platform
// does implement. Any thread.
#pragma once

#include <cstddef>
#include <cstdint>

#include "AgentBytes.h"

enum class StoreKeyWrap : uint32_t {
    None = 0,
    SameLogon = 1,  // CryptProtectMemory, same logon session
    UserDpapi = 2,  // CryptProtectData, same user
};

inline constexpr size_t StoreKeyBytes = 32;

// A new random store key, protected. False with the system's error as the
// thread's last error.
bool CreateStoreKey(StoreKeyWrap& wrap, AgentBytes& wrapped);

// The plain store key of a protected one; cached per process for the last
// protected form seen, so that a signature does not pay for DPAPI. False
// with the last error set when it cannot be opened.
bool OpenStoreKey(StoreKeyWrap wrap, const AgentBytes& wrapped, AgentBytes& key);

// Seals plain under key; the result is nonce, cipher text and tag. bound is
// authenticated with it (the record's public key), so a sealed key moved to
// another record does not open.
AgentBytes SealWithStoreKey(const AgentBytes& key, const AgentBytes& plain,
                            const AgentBytes& bound);
// False when sealed was not made by SealWithStoreKey with this key and bound.
bool OpenWithStoreKey(const AgentBytes& key, const uint8_t* sealed, size_t count,
                      const AgentBytes& bound, AgentBytes& plain);
