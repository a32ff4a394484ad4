#include "AgentKeyStore.h"

#include <cryptopp/crc.h>

#include <atomic>
#include <cstddef>
#include <cstring>
#include <string>

#include "AgentMessages.h"
#include "AgentRandom.h"
#include "BcryptPbkdf.h"
#include "StoreKeyProtection.h"

namespace {

constexpr uint32_t Magic = 0x4B415754;  // "TWAK"
constexpr uint32_t Version = 1;
constexpr uint32_t LockedFlag = 1;
constexpr uint32_t ConfirmFlag = 1;
constexpr uint32_t LockRounds = 8;
constexpr size_t ChecksumStart = 12;  // the checksum covers what follows its own field

struct Header {
    uint32_t magic, version, checksum, generation, count, used, flags, wrap, wrappedBytes,
        lockRounds;
    uint8_t lockSalt[16];
    uint8_t lockHash[32];
    uint8_t wrapped[424];
};
static_assert(sizeof(Header) == AgentKeyStore::HeaderBytes);

struct RecordHeader {
    uint32_t size, flags;
    uint64_t added, expires;
    uint32_t blobBytes, commentBytes, sealedBytes, lifetime;
};
static_assert(sizeof(RecordHeader) == 40);

size_t Aligned(size_t count) { return (count + 7) & ~size_t{7}; }

// A record as found in the block, its fields pointing into it.
struct RecordView {
    size_t offset;  // from the block's start
    RecordHeader header;
    const uint8_t* blob;
    const uint8_t* comment;
    const uint8_t* sealed;
};

}  // namespace

uint64_t UnixSecondsNow() {
    FILETIME now;
    GetSystemTimeAsFileTime(&now);
    const uint64_t ticks = (uint64_t{now.dwHighDateTime} << 32) | now.dwLowDateTime;
    return ticks / 10000000 - 11644473600ULL;
}

// One locked visit to the block: checks it (resetting a damaged one) on
// entry, and seals a changed one with a new checksum on exit.
class AgentKeyStore::Session {
public:
    explicit Session(AgentKeyStore& store)
        : store_(store), data_(static_cast<uint8_t*>(store.cache_.load()->GetData())) {
        store.cache_.load()->Lock();
        std::memcpy(&header_, data_, sizeof header_);
        if (!IsSound()) Reset();
        RemoveExpired(store.clock_());
    }
    ~Session() {
        if (changed_) {
            ++header_.generation;
            std::memcpy(data_, &header_, sizeof header_);
            header_.checksum = Checksum();
            std::memcpy(data_, &header_, sizeof header_);
        }
        store_.cache_.load()->Unlock();
    }
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    Header& GetHeader() { return header_; }
    size_t GetExpiredCount() const { return expired_; }
    bool IsChanged() const { return changed_; }
    bool IsLocked() const { return header_.flags & LockedFlag; }
    void MarkChanged() { changed_ = true; }
    size_t GetRoom() const { return store_.size_ - HeaderBytes - header_.used; }
    uint8_t* Records() { return data_ + HeaderBytes; }

    std::vector<RecordView> Views() {
        std::vector<RecordView> views;
        for (size_t offset = 0; offset < header_.used;) {
            RecordView view{};
            view.offset = HeaderBytes + offset;
            std::memcpy(&view.header, data_ + view.offset, sizeof view.header);
            view.blob = data_ + view.offset + sizeof(RecordHeader);
            view.comment = view.blob + view.header.blobBytes;
            view.sealed = view.comment + view.header.commentBytes;
            views.push_back(view);
            offset += view.header.size;
        }
        return views;
    }

    void Erase(const RecordView& view) {
        const size_t end = view.offset + view.header.size;
        std::memmove(data_ + view.offset, data_ + end, HeaderBytes + header_.used - end);
        header_.used -= view.header.size;
        std::memset(data_ + HeaderBytes + header_.used, 0,
                    view.header.size);  // no sealed copy lingers
        --header_.count;
        changed_ = true;
    }

    void Append(const RecordHeader& record, const AgentBytes& blob, const AgentText& comment,
                const AgentBytes& sealed) {
        uint8_t* at = data_ + HeaderBytes + header_.used;
        std::memcpy(at, &record, sizeof record);
        at += sizeof record;
        std::memcpy(at, blob.data(), blob.size());
        std::memcpy(at + blob.size(), comment.data(), comment.size());
        std::memcpy(at + blob.size() + comment.size(), sealed.data(), sealed.size());
        header_.used += record.size;
        ++header_.count;
        changed_ = true;
    }

    bool StoreKey(AgentBytes& key) {
        if (header_.wrap == static_cast<uint32_t>(StoreKeyWrap::None)) {
            StoreKeyWrap wrap;
            AgentBytes wrapped;
            if (!CreateStoreKey(wrap, wrapped) || wrapped.size() > sizeof header_.wrapped)
                return false;
            header_.wrap = static_cast<uint32_t>(wrap);
            header_.wrappedBytes = static_cast<uint32_t>(wrapped.size());
            std::memcpy(header_.wrapped, wrapped.data(), wrapped.size());
            changed_ = true;
        }
        return OpenStoreKey(static_cast<StoreKeyWrap>(header_.wrap),
                            ToBytes(header_.wrapped, header_.wrappedBytes), key);
    }

private:
    uint32_t Checksum() const {
        CryptoPP::CRC32 crc;
        crc.Update(data_ + ChecksumStart, HeaderBytes - ChecksumStart + header_.used);
        uint32_t value;
        crc.Final(reinterpret_cast<uint8_t*>(&value));
        return value;
    }

    // A new block is all zeros and counts as an empty store; anything else
    // must be whole: known magic and version, lengths inside the block, the
    // checksum right, and records that add up.
    bool IsSound() {
        if (header_.magic == 0 && header_.used == 0 && header_.count == 0) {
            header_ = Header{};
            header_.magic = Magic;
            header_.version = Version;
            changed_ = true;
            return true;
        }
        if (header_.magic != Magic || header_.version != Version ||
            header_.used > store_.size_ - HeaderBytes ||
            header_.wrappedBytes > sizeof header_.wrapped || header_.checksum != Checksum())
            return false;
        uint32_t count = 0;
        for (size_t offset = 0; offset < header_.used; ++count) {
            RecordHeader record;
            if (header_.used - offset < sizeof record) return false;
            std::memcpy(&record, data_ + HeaderBytes + offset, sizeof record);
            const uint64_t fields = uint64_t{sizeof record} + record.blobBytes +
                                    record.commentBytes + record.sealedBytes;
            if (record.size % 8 || record.size < fields || record.size > header_.used - offset)
                return false;
            offset += record.size;
        }
        return count == header_.count;
    }

    // The change counter goes on from what the block held, so that a key
    // opened before the damage is not taken for one of the new store.
    void Reset() {
        const uint32_t generation = header_.generation;
        std::memset(data_, 0, store_.size_);
        header_ = Header{};
        header_.magic = Magic;
        header_.version = Version;
        header_.generation = generation;
        changed_ = true;
    }

    // Erasing moves the records after it, so each pass starts again.
    void RemoveExpired(uint64_t now) {
        for (bool found = true; found;) {
            found = false;
            for (const RecordView& view : Views())
                if (view.header.expires && view.header.expires <= now) {
                    Erase(view);
                    ++expired_;
                    found = true;
                    break;
                }
        }
    }

    AgentKeyStore& store_;
    uint8_t* data_;
    Header header_{};
    bool changed_ = false;
    size_t expired_ = 0;
};

AgentKeyStore::AgentKeyStore(const wchar_t* name, size_t size)
    : name_(name), size_(size), clock_(UnixSecondsNow) {}

AgentKeyStore::~AgentKeyStore() {
    if (VSharedMemoryCache* cache = cache_.load()) cache->Release();
}

bool AgentKeyStore::IsOpen() const {
    if (cache_.load(std::memory_order_acquire)) return true;
    const std::lock_guard<std::mutex> guard(openMutex_);
    if (cache_.load(std::memory_order_relaxed)) return true;
    auto* cache = new VSharedMemoryCache(name_, size_);
    openError_ = GetLastError();
    if (openError_ == ERROR_SUCCESS && cache->GetData() && size_ > HeaderBytes) {
        cache_.store(cache, std::memory_order_release);
        return true;
    }
    if (openError_ == ERROR_SUCCESS) openError_ = ERROR_INVALID_PARAMETER;
    cache->Release();
    return false;
}

bool AgentKeyStore::CheckOpen(VReportMessageParams& report) const {
    if (IsOpen()) return true;
    const std::lock_guard<std::mutex> guard(openMutex_);
    SetAgentReport(report, AGENT_STORE_UNAVAILABLE, ErrorCodeText(openError_));
    return false;
}

namespace {

bool SameBlob(const RecordView& view, const AgentBytes& blob) {
    return view.header.blobBytes == blob.size() &&
           std::memcmp(view.blob, blob.data(), blob.size()) == 0;
}

AgentKeyInfo InfoOf(const RecordView& view) {
    AgentKeyInfo info;
    info.publicBlob = ToBytes(view.blob, view.header.blobBytes);
    info.comment.assign(reinterpret_cast<const char*>(view.comment), view.header.commentBytes);
    info.added = view.header.added;
    info.expires = view.header.expires;
    info.lifetime = view.header.lifetime;
    info.confirm = view.header.flags & ConfirmFlag;
    return info;
}

}  // namespace

bool AgentKeyStore::Add(const AgentKey& key, const AgentText& comment, uint32_t lifetime,
                        bool confirm, VReportMessageParams& report) {
    report.Clear();
    if (!CheckOpen(report)) return false;
    Session session(*this);
    if (session.IsLocked()) {
        SetAgentReport(report, AGENT_STORE_LOCKED);
        return false;
    }
    AgentBytes storeKey;
    if (!session.StoreKey(storeKey)) {
        SetAgentReport(report, AGENT_STORE_PROTECT_FAILED, ErrorCodeText(GetLastError()));
        return false;
    }
    const AgentBytes blob = key.GetPublicBlob();
    AgentBytes plain;
    SshWriter writer(plain);
    key.Write(writer);
    const AgentBytes sealed = SealWithStoreKey(storeKey, plain, blob);

    RecordHeader record{};
    record.flags = confirm ? ConfirmFlag : 0;
    record.added = clock_();
    record.lifetime = lifetime;
    record.expires = lifetime ? record.added + lifetime : 0;
    record.blobBytes = static_cast<uint32_t>(blob.size());
    record.commentBytes = static_cast<uint32_t>(comment.size());
    record.sealedBytes = static_cast<uint32_t>(sealed.size());
    record.size = static_cast<uint32_t>(
        Aligned(sizeof record + blob.size() + comment.size() + sealed.size()));

    // The same key again replaces the record it had (the newest settings win).
    size_t freed = 0;
    const RecordView* existing = nullptr;
    const std::vector<RecordView> views = session.Views();
    for (const RecordView& view : views)
        if (SameBlob(view, blob)) {
            existing = &view;
            freed = view.header.size;
        }
    if (record.size > session.GetRoom() + freed) {
        SetAgentReport(report, AGENT_STORE_FULL,
                       VUnicodeString(std::to_wstring(session.GetHeader().count).c_str()),
                       VUnicodeString(std::to_wstring(record.size).c_str()));
        return false;
    }
    if (existing) session.Erase(*existing);
    session.Append(record, blob, comment, sealed);
    return true;
}

bool AgentKeyStore::Remove(const AgentBytes& publicBlob) {
    if (!IsOpen()) return false;
    Session session(*this);
    if (session.IsLocked()) return false;
    for (const RecordView& view : session.Views())
        if (SameBlob(view, publicBlob)) {
            session.Erase(view);
            return true;
        }
    return false;
}

bool AgentKeyStore::RemoveAll() {
    if (!IsOpen()) return false;
    Session session(*this);
    if (session.IsLocked()) return false;
    if (session.GetHeader().used) {
        std::memset(session.Records(), 0, session.GetHeader().used);
        session.GetHeader().used = 0;
        session.GetHeader().count = 0;
        session.MarkChanged();
    }
    return true;
}

std::vector<AgentKeyInfo> AgentKeyStore::List() {
    std::vector<AgentKeyInfo> keys;
    if (!IsOpen()) return keys;
    Session session(*this);
    if (session.IsLocked()) return keys;
    for (const RecordView& view : session.Views()) keys.push_back(InfoOf(view));
    return keys;
}

bool AgentKeyStore::GetKey(const AgentBytes& publicBlob, AgentKey& key, AgentKeyInfo& info) {
    if (!IsOpen()) return false;
    if (FindOpened(PeekGeneration(), publicBlob, key, info)) return true;
    AgentBytes storeKey, plain;
    uint32_t generation;
    bool unchanged;
    {
        Session session(*this);
        if (session.IsLocked()) return false;
        const RecordView* found = nullptr;
        const std::vector<RecordView> views = session.Views();
        for (const RecordView& view : views)
            if (SameBlob(view, publicBlob)) found = &view;
        if (!found || !session.StoreKey(storeKey) ||
            !OpenWithStoreKey(storeKey, found->sealed, found->header.sealedBytes, publicBlob,
                              plain))
            return false;
        info = InfoOf(*found);
        generation = session.GetHeader().generation;
        unchanged = !session.IsChanged();
    }
    SshReader reader(plain);
    if (key.Read(reader) != AgentKeyError::None || key.GetPublicBlob() != publicBlob) return false;
    if (unchanged) KeepOpened(generation, key, info);
    return true;
}

uint32_t AgentKeyStore::PeekGeneration() const noexcept {
    auto* generation = reinterpret_cast<uint32_t*>(static_cast<uint8_t*>(cache_.load()->GetData()) +
                                                   offsetof(Header, generation));
    return std::atomic_ref<uint32_t>(*generation).load(std::memory_order_acquire);
}

bool AgentKeyStore::FindOpened(uint32_t generation, const AgentBytes& publicBlob, AgentKey& key,
                               AgentKeyInfo& info) {
    const std::lock_guard<std::mutex> hold(openedMutex_);
    if (generation != openedGeneration_) return false;
    for (const OpenedKey& opened : opened_)
        if (opened.info.publicBlob == publicBlob) {
            // An ended lifetime goes the long way, which drops the key.
            if (opened.info.expires && opened.info.expires <= clock_()) return false;
            key = opened.key;
            info = opened.info;
            return true;
        }
    return false;
}

void AgentKeyStore::KeepOpened(uint32_t generation, const AgentKey& key, const AgentKeyInfo& info) {
    const std::lock_guard<std::mutex> hold(openedMutex_);
    if (generation != openedGeneration_) {
        opened_.clear();
        openedGeneration_ = generation;
    }
    opened_.push_back({key, info});
}

void AgentKeyStore::ForgetStaleOpened() {
    const uint32_t generation = PeekGeneration();
    const std::lock_guard<std::mutex> hold(openedMutex_);
    if (generation != openedGeneration_) opened_.clear();
}

namespace {

void LockHash(const AgentBytes& passphrase, const uint8_t* salt, uint32_t rounds, uint8_t* hash) {
    static const uint8_t Empty = 0;  // bcrypt-pbkdf takes an empty pass phrase as one of no bytes
    BcryptPbkdf(passphrase.empty() ? &Empty : passphrase.data(), passphrase.size(), salt, 16,
                rounds, hash, 32);
}

}  // namespace

bool AgentKeyStore::Lock(const AgentBytes& passphrase) {
    if (!IsOpen()) return false;
    Session session(*this);
    Header& header = session.GetHeader();
    if (session.IsLocked()) return false;
    AgentRandom().GenerateBlock(header.lockSalt, sizeof header.lockSalt);
    header.lockRounds = LockRounds;
    LockHash(passphrase, header.lockSalt, header.lockRounds, header.lockHash);
    header.flags |= LockedFlag;
    session.MarkChanged();
    return true;
}

bool AgentKeyStore::Unlock(const AgentBytes& passphrase) {
    if (!IsOpen()) return false;
    Session session(*this);
    Header& header = session.GetHeader();
    if (!session.IsLocked() || header.lockRounds == 0) return false;
    uint8_t hash[32];
    LockHash(passphrase, header.lockSalt, header.lockRounds, hash);
    uint8_t difference = 0;  // compared in constant time
    for (size_t index = 0; index < sizeof hash; ++index)
        difference |= hash[index] ^ header.lockHash[index];
    SecureZeroMemory(hash, sizeof hash);
    if (difference) return false;
    header.flags &= ~LockedFlag;
    std::memset(header.lockHash, 0, sizeof header.lockHash);
    session.MarkChanged();
    return true;
}

bool AgentKeyStore::IsLocked() {
    if (!IsOpen()) return false;
    Session session(*this);
    return session.IsLocked();
}

size_t AgentKeyStore::RemoveExpired() {
    if (!IsOpen()) return 0;
    size_t expired;
    {
        Session session(*this);
        expired = session.GetExpiredCount();
    }
    // A key removed or locked away elsewhere leaves no plain copy here for long.
    ForgetStaleOpened();
    return expired;
}

uint32_t AgentKeyStore::GetGeneration() {
    if (!IsOpen()) return 0;
    Session session(*this);
    return session.GetHeader().generation;
}

uint8_t* AgentKeyStore::GetDataForTests() {
    return IsOpen() ? static_cast<uint8_t*>(cache_.load()->GetData()) : nullptr;
}
