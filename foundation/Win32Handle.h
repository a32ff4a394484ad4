// One owner for every Win32 handle: a move-only holder that closes its handle
// exactly once. Closing keeps the thread's last-error value, so a failure
// report taken after a scope ends still tells the original error.
#pragma once

#include <windows.h>

#include <wincrypt.h>

#include <utility>

template <class Traits>
class VUniqueHandle {
public:
    using Type = typename Traits::Type;

    VUniqueHandle() noexcept : handle_(Traits::Invalid()) {}
    explicit VUniqueHandle(Type handle) noexcept : handle_(handle) {}
    VUniqueHandle(VUniqueHandle&& other) noexcept : handle_(other.Release()) {}
    VUniqueHandle& operator=(VUniqueHandle&& other) noexcept {
        Reset(other.Release());
        return *this;
    }
    VUniqueHandle(const VUniqueHandle&) = delete;
    VUniqueHandle& operator=(const VUniqueHandle&) = delete;
    ~VUniqueHandle() { Reset(); }

    Type Get() const noexcept { return handle_; }
    bool IsValid() const noexcept { return handle_ != Traits::Invalid(); }
    explicit operator bool() const noexcept { return IsValid(); }

    // Gives up ownership without closing.
    Type Release() noexcept { return std::exchange(handle_, Traits::Invalid()); }

    void Reset(Type handle = Traits::Invalid()) noexcept {
        if (IsValid()) {
            const DWORD lastError = GetLastError();
            Traits::Close(handle_);
            SetLastError(lastError);
        }
        handle_ = handle;
    }

private:
    Type handle_;
};

struct KernelHandleTraits {
    using Type = HANDLE;
    static Type Invalid() noexcept { return nullptr; }
    static void Close(Type handle) noexcept { CloseHandle(handle); }
};

// CreateFileW answers INVALID_HANDLE_VALUE, not null, on failure.
struct FileHandleTraits {
    using Type = HANDLE;
    static Type Invalid() noexcept { return INVALID_HANDLE_VALUE; }
    static void Close(Type handle) noexcept { CloseHandle(handle); }
};

struct LocalMemoryTraits {
    using Type = void*;
    static Type Invalid() noexcept { return nullptr; }
    static void Close(Type memory) noexcept { LocalFree(memory); }
};

struct LibraryTraits {
    using Type = HMODULE;
    static Type Invalid() noexcept { return nullptr; }
    static void Close(Type module) noexcept { FreeLibrary(module); }
};

// A search of FindFirstFileW / FindFirstFileExW, closed with FindClose.
struct FindTraits {
    using Type = HANDLE;
    static Type Invalid() noexcept { return INVALID_HANDLE_VALUE; }
    static void Close(Type search) noexcept { FindClose(search); }
};

// Predefined keys (HKEY_CURRENT_USER ...) are never put in one: only keys this
// process opened are closed.
struct RegistryKeyTraits {
    using Type = HKEY;
    static Type Invalid() noexcept { return nullptr; }
    static void Close(Type key) noexcept { RegCloseKey(key); }
};

// A view of a file mapping, as MapViewOfFile returned it.
struct MappedViewTraits {
    using Type = void*;
    static Type Invalid() noexcept { return nullptr; }
    static void Close(Type view) noexcept { UnmapViewOfFile(view); }
};

// A CryptoAPI provider context (an integer handle, 0 when there is none).
struct CryptProviderTraits {
    using Type = HCRYPTPROV;
    static Type Invalid() noexcept { return 0; }
    static void Close(Type provider) noexcept { CryptReleaseContext(provider, 0); }
};

using KernelHandle = VUniqueHandle<KernelHandleTraits>;
using FileHandle = VUniqueHandle<FileHandleTraits>;
using LocalMemory = VUniqueHandle<LocalMemoryTraits>;
using LibraryHandle = VUniqueHandle<LibraryTraits>;
using FindHandle = VUniqueHandle<FindTraits>;
using CryptProviderHandle = VUniqueHandle<CryptProviderTraits>;
using RegistryKeyHandle = VUniqueHandle<RegistryKeyTraits>;
using MappedView = VUniqueHandle<MappedViewTraits>;
