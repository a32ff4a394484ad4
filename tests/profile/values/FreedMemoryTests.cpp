// Freed memory holds no secret; operator new and delete are replaced, hence its own program.
#include <gtest/gtest.h>

#include <windows.h>

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>

#include "TempFolder.h"
#include "VIniFileKey.h"
#include "VProfileEncryptedString.h"

namespace {

constexpr wchar_t Password[] = L"Kx9q-Zw7v-password";
constexpr wchar_t Passphrase[] = L"Pp3u-Vw8x-phrase";
constexpr size_t SizeField = 16;  // in front of every C++ block; keeps it aligned

std::string g_patterns[4];
std::atomic<bool> g_searching{false};
std::atomic<size_t> g_found{0};

bool Holds(const void* memory, size_t size) {
    const std::string_view bytes(static_cast<const char*>(memory), size);
    for (const std::string& pattern : g_patterns)
        if (bytes.find(pattern) != std::string_view::npos) return true;
    return false;
}

void SearchFreed(const void* memory, size_t size) {
    if (g_searching && memory && Holds(memory, size)) ++g_found;
}

void ReleaseStringBlock(void* memory, size_t bytes) {
    SearchFreed(memory, bytes);
    HeapFree(GetProcessHeap(), 0, memory);
}

size_t FreeHeapBlocksHoldingSecrets() {
    HANDLE heaps[64];
    const DWORD count = GetProcessHeaps(64, heaps);
    size_t found = 0;
    for (DWORD i = 0; i < count && i < 64; ++i) {
        PROCESS_HEAP_ENTRY entry{};
        HeapLock(heaps[i]);
        while (HeapWalk(heaps[i], &entry))
            if (!(entry.wFlags & (PROCESS_HEAP_ENTRY_BUSY | PROCESS_HEAP_REGION | PROCESS_HEAP_UNCOMMITTED_RANGE)))
                found += Holds(entry.lpData, entry.cbData);
        HeapUnlock(heaps[i]);
    }
    return found;
}

}  // namespace

void* operator new(size_t size) {
    auto* block = static_cast<unsigned char*>(std::malloc(size + SizeField));
    if (!block) throw std::bad_alloc();
    std::memcpy(block, &size, sizeof size);
    return block + SizeField;
}
void operator delete(void* memory) noexcept {
    if (!memory) return;
    auto* block = static_cast<unsigned char*>(memory) - SizeField;
    size_t size = 0;
    std::memcpy(&size, block, sizeof size);
    SearchFreed(memory, size);
    std::free(block);
}
void operator delete(void* memory, size_t) noexcept { operator delete(memory); }

namespace {

TEST(FreedMemory, HoldsNoPasswordOrPassphraseAfterALoadSaveAndFreeCycle) {
    size_t next = 0;
    for (const std::wstring secret : {Password, Passphrase}) {
        g_patterns[next++].assign(reinterpret_cast<const char*>(secret.data()), secret.size() * sizeof(wchar_t));
        g_patterns[next++].assign(secret.begin(), secret.end());  // ASCII: its UTF-8 bytes
    }
    TempFolder folder;
    const VUnicodeString configuration = folder / L"Config\\Session";
    const VUnicodeString personal = folder / L"Personal\\Session";
    const Str::BlockAllocator previous = Str::ReplaceBlockAllocator(
        {[](size_t bytes) { return HeapAlloc(GetProcessHeap(), 0, bytes); }, ReleaseStringBlock});
    g_searching = true;
    {
        const VUnicodeString password(Password, Str::Sensitive);
        const VRefPtr<IPassphraseProvider> provider = VRefPtr<IPassphraseProvider>::Adopt(
            new VFixedPassphraseProvider(VUnicodeString(Passphrase, Str::Sensitive)));
        VReportMessageParams report;
        for (int pass = 0; pass < 2; ++pass) {
            VProfileKey key(std::make_unique<VIniFileKey>(configuration, personal, false, nullptr));
            VProfileEncryptedString sealed(L"Firewall Password V2", provider.Get());
            if (pass == 0) {
                ASSERT_TRUE(key.SetString(L"Password", password));
                VUnicodeString held;
                ASSERT_TRUE(key.SetString(L"Username", L"me") && key.GetString(L"Username", held));
                EXPECT_TRUE(held.IsSensitive()) << "a private value set from a plain string is held for wiping";
                ASSERT_TRUE(sealed.SetPlainText(password, report));
                ASSERT_TRUE(sealed.Save(key, false));
            } else {
                VUnicodeString read;
                ASSERT_TRUE(key.GetString(L"Password", read));
                EXPECT_TRUE(read == password && read.IsSensitive()) << "a private value reads as a sensitive string";
                VUnicodeString plain;
                ASSERT_TRUE(sealed.LoadEncrypted(key) && sealed.GetPlainText(plain, report));
                EXPECT_EQ(plain, password);
                VUnicodeString message(Str::Sensitive);
                EXPECT_TRUE(message.FormatPositional(L"password %1", plain.c_str()) &&
                            message.FormatPrintf(64, L"password %ls", plain.c_str()));
            }
            ASSERT_TRUE(key.SetString(L"Host", pass ? L"example.net" : L"example.org"));
            ASSERT_TRUE(key.Flush());
        }
    }
    g_searching = false;
    Str::ReplaceBlockAllocator(previous);
    EXPECT_EQ(0u, g_found.load()) << "freed blocks held a secret";
    EXPECT_EQ(0u, FreeHeapBlocksHoldingSecrets());
}

}  // namespace
