#include "StoreKeyProtection.h"

#include <windows.h>

#include <dpapi.h>
#include <wincrypt.h>

#include <cryptopp/aes.h>
#include <cryptopp/gcm.h>

#include <cstring>
#include <mutex>

#include "AgentRandom.h"
#include "Win32Handle.h"

namespace {

constexpr size_t NonceBytes = 12;
constexpr size_t TagBytes = 16;

static_assert(StoreKeyBytes % CRYPTPROTECTMEMORY_BLOCK_SIZE == 0);

bool ProtectData(const AgentBytes& plain, AgentBytes& wrapped) {
    DATA_BLOB in{static_cast<DWORD>(plain.size()), const_cast<BYTE*>(plain.data())};
    DATA_BLOB out{};
    if (!CryptProtectData(&in, L"", nullptr, nullptr, nullptr, CRYPTPROTECT_UI_FORBIDDEN, &out))
        return false;
    const LocalMemory owner(out.pbData);
    wrapped.assign(out.pbData, out.pbData + out.cbData);
    return true;
}

bool UnprotectData(const AgentBytes& wrapped, AgentBytes& plain) {
    DATA_BLOB in{static_cast<DWORD>(wrapped.size()), const_cast<BYTE*>(wrapped.data())};
    DATA_BLOB out{};
    if (!CryptUnprotectData(&in, nullptr, nullptr, nullptr, nullptr, CRYPTPROTECT_UI_FORBIDDEN,
                            &out))
        return false;
    plain.assign(out.pbData, out.pbData + out.cbData);
    SecureZeroMemory(out.pbData, out.cbData);
    LocalFree(out.pbData);
    return true;
}

struct OpenedKeyCache {
    std::mutex mutex;
    StoreKeyWrap wrap = StoreKeyWrap::None;
    AgentBytes wrapped, key;
};

OpenedKeyCache& Cache() {
    static OpenedKeyCache cache;
    return cache;
}

}  // namespace

bool CreateStoreKey(StoreKeyWrap& wrap, AgentBytes& wrapped) {
    AgentBytes key(StoreKeyBytes);
    AgentRandom().GenerateBlock(key.data(), key.size());
    wrapped = key;
    if (CryptProtectMemory(wrapped.data(), static_cast<DWORD>(wrapped.size()),
                           CRYPTPROTECTMEMORY_SAME_LOGON) &&
        wrapped != key) {
        wrap = StoreKeyWrap::SameLogon;
        return true;
    }
    wrap = StoreKeyWrap::UserDpapi;
    return ProtectData(key, wrapped);
}

bool OpenStoreKey(StoreKeyWrap wrap, const AgentBytes& wrapped, AgentBytes& key) {
    OpenedKeyCache& cache = Cache();
    const std::lock_guard<std::mutex> hold(cache.mutex);
    if (cache.wrap == wrap && cache.wrapped == wrapped && !cache.key.empty()) {
        key = cache.key;
        return true;
    }
    AgentBytes plain;
    switch (wrap) {
        case StoreKeyWrap::SameLogon:
            plain = wrapped;
            if (plain.size() != StoreKeyBytes ||
                !CryptUnprotectMemory(plain.data(), static_cast<DWORD>(plain.size()),
                                      CRYPTPROTECTMEMORY_SAME_LOGON))
                return false;
            break;
        case StoreKeyWrap::UserDpapi:
            if (!UnprotectData(wrapped, plain) || plain.size() != StoreKeyBytes) {
                SetLastError(ERROR_INVALID_DATA);
                return false;
            }
            break;
        case StoreKeyWrap::None:
            SetLastError(ERROR_INVALID_DATA);
            return false;
    }
    cache.wrap = wrap;
    cache.wrapped = wrapped;
    cache.key = plain;
    key = plain;
    return true;
}

AgentBytes SealWithStoreKey(const AgentBytes& key, const AgentBytes& plain,
                            const AgentBytes& bound) {
    AgentBytes sealed(NonceBytes + plain.size() + TagBytes);
    AgentRandom().GenerateBlock(sealed.data(), NonceBytes);
    CryptoPP::GCM<CryptoPP::AES>::Encryption cipher;
    cipher.SetKeyWithIV(key.data(), key.size(), sealed.data(), NonceBytes);
    cipher.EncryptAndAuthenticate(
        sealed.data() + NonceBytes, sealed.data() + NonceBytes + plain.size(), TagBytes,
        sealed.data(), NonceBytes, bound.data(), bound.size(), plain.data(), plain.size());
    return sealed;
}

bool OpenWithStoreKey(const AgentBytes& key, const uint8_t* sealed, size_t count,
                      const AgentBytes& bound, AgentBytes& plain) {
    if (count < NonceBytes + TagBytes) return false;
    const size_t length = count - NonceBytes - TagBytes;
    plain.resize(length);
    CryptoPP::GCM<CryptoPP::AES>::Decryption cipher;
    cipher.SetKeyWithIV(key.data(), key.size(), sealed, NonceBytes);
    if (cipher.DecryptAndVerify(plain.data(), sealed + NonceBytes + length, TagBytes, sealed,
                                NonceBytes, bound.data(), bound.size(), sealed + NonceBytes,
                                length))
        return true;
    plain.clear();
    return false;
}
