#include "AgentRandom.h"

#include <cryptopp/osrng.h>

#include <mutex>

namespace {

// Serialises the generator; each request is short (a nonce, a blinding value).
class LockedRandom final : public CryptoPP::RandomNumberGenerator {
public:
    void GenerateBlock(CryptoPP::byte* output, size_t size) override {
        const std::lock_guard<std::mutex> hold(mutex_);
        pool_.GenerateBlock(output, size);
    }

private:
    std::mutex mutex_;
    CryptoPP::AutoSeededRandomPool pool_;
};

}  // namespace

CryptoPP::RandomNumberGenerator& AgentRandom() {
    static LockedRandom random;
    return random;
}
