// Freed memory holds no secret. A password and a pass phrase go through a
// save, a load, a second save and the end of every object of the INI-file
// store and of a protected value, and every block the program gives back
// meanwhile is searched for them: each C++ heap block and each string block
// as it is freed, and the free blocks of every heap of the process after.
//
// This program replaces the global operator new and delete (so that a freed
// block can be searched whole), hence an executable of its own.
#include <gtest/gtest.h>

#include <windows.h>

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>

#include "TempFolder.h"
#include "VIniFileKey.h"
#include "VProfileEncryptedString.h"

namespace {

// The secrets, each as UTF-16 and as UTF-8 bytes (the files' encoding). They
// live in static storage, which no search looks at.
constexpr wchar_t Password[] = L"Kx9q-Zw7v-password";
constexpr wchar_t Passphrase[] = L"Pp3u-Vw8x-phrase";

struct Pattern {
    unsigned char bytes[2 * 32];
    size_t length;
};
Pattern g_patterns[4];
size_t g_patternCount = 0;

void AddPatterns(const wchar_t* secret) {
    Pattern& wide = g_patterns[g_patternCount++];
    wide.length = std::wcslen(secret) * sizeof(wchar_t);
    std::memcpy(wide.bytes, secret, wide.length);
    Pattern& narrow = g_patterns[g_patternCount++];
    narrow.length = std::wcslen(secret);
    for (size_t i = 0; i < narrow.length; ++i) narrow.bytes[i] = static_cast<unsigned char>(secret[i]);
}

std::atomic<bool> g_searching{false};
std::atomic<size_t> g_found{0};
std::atomic<size_t> g_lastFoundSize{0};

bool Holds(const void* memory, size_t size) {
    const auto* bytes = static_cast<const unsigned char*>(memory);
    for (size_t p = 0; p < g_patternCount; ++p) {
        const Pattern& pattern = g_patterns[p];
        for (size_t at = 0; at + pattern.length <= size; ++at) {
            const void* first = std::memchr(bytes + at, pattern.bytes[0], size - pattern.length + 1 - at);
            if (!first) break;
            at = static_cast<size_t>(static_cast<const unsigned char*>(first) - bytes);
            if (std::memcmp(bytes + at, pattern.bytes, pattern.length) == 0) return true;
        }
    }
    return false;
}

void SearchFreed(const void* memory, size_t size) {
    if (!g_searching.load() || !memory || !Holds(memory, size)) return;
    ++g_found;
    g_lastFoundSize = size;
}

// String blocks come from the process heap through this pair while searching.
void* AllocateStringBlock(size_t bytes) { return HeapAlloc(GetProcessHeap(), 0, bytes); }
void ReleaseStringBlock(void* memory, size_t bytes) {
    SearchFreed(memory, bytes);
    HeapFree(GetProcessHeap(), 0, memory);
}

// The free blocks of every heap of the process that hold a secret.
size_t FreeHeapBlocksHoldingSecrets() {
    HANDLE heaps[64];
    const DWORD count = GetProcessHeaps(64, heaps);
    size_t found = 0;
    for (DWORD i = 0; i < count && i < 64; ++i) {
        if (!HeapLock(heaps[i])) continue;
        PROCESS_HEAP_ENTRY entry{};
        while (HeapWalk(heaps[i], &entry)) {
            const bool isFree = !(entry.wFlags & (PROCESS_HEAP_ENTRY_BUSY | PROCESS_HEAP_REGION |
                                                  PROCESS_HEAP_UNCOMMITTED_RANGE));
            if (isFree && entry.lpData && Holds(entry.lpData, entry.cbData)) ++found;
        }
        HeapUnlock(heaps[i]);
    }
    return found;
}

constexpr size_t SizeField = 16;  // keeps the blocks aligned for any object

}  // namespace

// Every C++ allocation carries its size in front, so that a freed block can be
// searched whole.
void* operator new(size_t size) {
    auto* block = static_cast<unsigned char*>(std::malloc(size + SizeField));
    if (!block) throw std::bad_alloc();
    std::memcpy(block, &size, sizeof size);
    return block + SizeField;
}
void* operator new[](size_t size) { return operator new(size); }
void* operator new(size_t size, const std::nothrow_t&) noexcept {
    try {
        return operator new(size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}
void* operator new[](size_t size, const std::nothrow_t& tag) noexcept { return operator new(size, tag); }
void operator delete(void* memory) noexcept {
    if (!memory) return;
    auto* block = static_cast<unsigned char*>(memory) - SizeField;
    size_t size = 0;
    std::memcpy(&size, block, sizeof size);
    SearchFreed(memory, size);
    std::free(block);
}
void operator delete[](void* memory) noexcept { operator delete(memory); }
void operator delete(void* memory, size_t) noexcept { operator delete(memory); }
void operator delete[](void* memory, size_t) noexcept { operator delete(memory); }
void operator delete(void* memory, const std::nothrow_t&) noexcept { operator delete(memory); }
void operator delete[](void* memory, const std::nothrow_t&) noexcept { operator delete(memory); }

namespace {

TEST(FreedMemory, HoldsNoPasswordOrPassphraseAfterALoadSaveAndFreeCycle) {
    AddPatterns(Password);
    AddPatterns(Passphrase);
    TempFolder folder;
    const VUnicodeString configuration = folder / L"Config\\Session";
    const VUnicodeString personal = folder / L"Personal\\Session";
    const Str::BlockAllocator previous = Str::ReplaceBlockAllocator({AllocateStringBlock, ReleaseStringBlock});
    g_searching = true;
    {
        const VUnicodeString password(Password, Str::Sensitive);
        const VRefPtr<IPassphraseProvider> provider = VRefPtr<IPassphraseProvider>::Adopt(
            new VFixedPassphraseProvider(VUnicodeString(Passphrase, Str::Sensitive)));
        const auto openKey = [&] {
            return std::make_unique<VProfileKey>(std::make_unique<VIniFileKey>(configuration, personal, false, nullptr));
        };
        VReportMessageParams report;
        {
            const auto key = openKey();
            ASSERT_TRUE(key->SetString(L"Password", password));
            ASSERT_TRUE(key->SetString(L"Host", L"example.org"));
            VProfileEncryptedString sealed(L"Firewall Password V2", provider.Get());
            ASSERT_TRUE(sealed.SetPlainText(password, report));
            ASSERT_TRUE(sealed.Save(*key, false));
            ASSERT_TRUE(key->Flush());
        }
        {
            const auto key = openKey();
            VUnicodeString read;
            ASSERT_TRUE(key->GetString(L"Password", read));
            EXPECT_EQ(read, password);
            EXPECT_TRUE(read.IsSensitive()) << "a private value reads as a sensitive string";
            VProfileEncryptedString loaded(L"Firewall Password V2", provider.Get());
            ASSERT_TRUE(loaded.LoadEncrypted(*key));
            VUnicodeString plain;
            ASSERT_TRUE(loaded.GetPlainText(plain, report));
            EXPECT_EQ(plain, password);
            ASSERT_TRUE(key->SetString(L"Host", L"example.net"));
            ASSERT_TRUE(key->Flush());
            VUnicodeString message(Str::Sensitive);
            ASSERT_TRUE(message.FormatPositional(L"password %1", plain.c_str()));
            ASSERT_TRUE(message.FormatPrintf(64, L"password %ls", plain.c_str()));
        }
    }
    g_searching = false;
    Str::ReplaceBlockAllocator(previous);
    EXPECT_EQ(0u, g_found.load()) << "freed blocks held a secret, the last of " << g_lastFoundSize.load()
                                  << " bytes";
    EXPECT_EQ(0u, FreeHeapBlocksHoldingSecrets());
}

}  // namespace
