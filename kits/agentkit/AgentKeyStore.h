// AgentKeyStore: the keys the agent holds for the user's session, kept in the
// larger shared-memory cache (the one Traywell keeps open), so that every
// process of the session (the pipe server, the Manage Agent Keys window, a
// second copy) sees the same keys. Each operation takes the cache's lock.
//
// Layout of the data area (little-endian), version 1:
//   0    header, 512 bytes: "TWAK" magic, version, CRC-32 of everything after
//        the checksum field up to the end of the records, a change counter,
//        record count, bytes of records, lock state, the protected store key
//   512  records, back to back, each 8-byte aligned: record size, flags
//        (confirm before use), time added and expiry (Unix seconds, 0 never),
//        lifetime asked for, then the public key blob, the UTF-8 comment and
//        the sealed private key (see StoreKeyProtection.h)
// A block whose header or checksum is wrong is reset to an empty store;
// readers never trust a length they have not checked against the block.
// Any thread, several at once (the block's lock serialises them); only
// SetClock must happen before the object is shared.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <mutex>
#include <vector>

#include "AgentBytes.h"
#include "AgentKey.h"
#include "VReportMessageParams.h"
#include "VSharedMemoryCache.h"

struct AgentKeyInfo {
    AgentBytes publicBlob;
    AgentText comment;      // UTF-8
    uint64_t added = 0;     // Unix seconds
    uint64_t expires = 0;   // Unix seconds; 0 for a key without a lifetime
    uint32_t lifetime = 0;  // seconds, as asked for when added; 0 for none
    bool confirm = false;   // ask the user before each signature
};

class AgentKeyStore {
public:
    static constexpr wchar_t CacheName[] = L"{E16587DE-130C-4D9D-967F-ECEC78047474}";
    static constexpr size_t CacheSize = 582800;
    static constexpr size_t HeaderBytes = 512;

    // The shared block name of size bytes, opened (created when needed) at
    // its first use, so that a store nobody asks for makes no shared memory.
    explicit AgentKeyStore(const wchar_t* name = CacheName, size_t size = CacheSize);
    ~AgentKeyStore();
    AgentKeyStore(const AgentKeyStore&) = delete;
    AgentKeyStore& operator=(const AgentKeyStore&) = delete;

    // Opens the block when it is not open yet; whether it is open now. Safe
    // from several threads at once; a failed opening is tried again.
    bool IsOpen() const;
    // Fills report with AGENT_STORE_UNAVAILABLE when the block cannot be opened.
    bool CheckOpen(VReportMessageParams& report) const;

    // Adds key (which the caller has validated), or updates the comment,
    // lifetime and confirmation of the same key held already. lifetime is in
    // seconds, 0 for none. False with report when the store is locked, full,
    // not open, or the key cannot be protected.
    bool Add(const AgentKey& key, const AgentText& comment, uint32_t lifetime, bool confirm,
             VReportMessageParams& report);
    // False when no such key is held or the store is locked.
    bool Remove(const AgentBytes& publicBlob);
    // False only when the store is locked or not open.
    bool RemoveAll();
    // The keys held, in the order added; empty while locked.
    std::vector<AgentKeyInfo> List();
    // The private key for publicBlob, opened for one use (the caller wipes
    // it by letting it go). False when it is not held, the store is locked,
    // or its sealed form does not open. A key opened before is served again
    // from this object's memory, without the block's lock, for as long as
    // the block's keys and lock state stay as they were.
    bool GetKey(const AgentBytes& publicBlob, AgentKey& key, AgentKeyInfo& info);

    // Locks with a pass phrase (UTF-8): until Unlock with the same one, keys
    // are neither listed, used nor changed. False when already locked.
    bool Lock(const AgentBytes& passphrase);
    // False when not locked or the pass phrase is another.
    bool Unlock(const AgentBytes& passphrase);
    bool IsLocked();

    // Drops keys whose lifetime has ended (every operation does so first),
    // and forgets keys opened before that the block no longer holds as they
    // were. Returns how many keys went.
    size_t RemoveExpired();
    // Changes whenever the keys or the lock state change (any process).
    uint32_t GetGeneration();

    // The clock, in Unix seconds; tests give their own.
    void SetClock(std::function<uint64_t()> clock) { clock_ = std::move(clock); }
    // The data area, for tests that damage it on purpose.
    uint8_t* GetDataForTests();
    size_t GetSize() const noexcept { return size_; }

private:
    class Session;
    struct OpenedKey {
        AgentKey key;
        AgentKeyInfo info;
    };

    // The block's change counter, read without the lock: a value seen is
    // one that the block had (it changes last, under the lock).
    uint32_t PeekGeneration() const noexcept;
    bool FindOpened(uint32_t generation, const AgentBytes& publicBlob, AgentKey& key,
                    AgentKeyInfo& info);
    void KeepOpened(uint32_t generation, const AgentKey& key, const AgentKeyInfo& info);
    void ForgetStaleOpened();

    VUnicodeString name_;
    size_t size_;
    mutable std::mutex openMutex_;
    mutable std::atomic<VSharedMemoryCache*> cache_{nullptr};
    mutable DWORD openError_ = 0;
    std::function<uint64_t()> clock_;
    // Keys opened for signatures, valid while the block's generation is
    // openedGeneration_.
    std::mutex openedMutex_;
    uint32_t openedGeneration_ = 0;
    std::vector<OpenedKey> opened_;
};

// The current time in Unix seconds.
uint64_t UnixSecondsNow();
