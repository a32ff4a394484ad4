#include "VersionInfo.h"

#include <vector>

bool ReadModuleVersion(HMODULE module, VersionNumbers& version) {
    const HRSRC resource = FindResourceW(module, MAKEINTRESOURCEW(VS_VERSION_INFO), RT_VERSION);
    if (!resource) return false;
    const HGLOBAL loaded = LoadResource(module, resource);
    const void* bytes = loaded ? LockResource(loaded) : nullptr;
    const DWORD size = SizeofResource(module, resource);
    if (!bytes || size == 0) return false;
    // VerQueryValueW may write into the block it reads, and the resource is read-only.
    std::vector<BYTE> block(static_cast<const BYTE*>(bytes),
                            static_cast<const BYTE*>(bytes) + size);
    void* value = nullptr;
    UINT length = 0;
    if (!VerQueryValueW(block.data(), L"\\", &value, &length) || length < sizeof(VS_FIXEDFILEINFO))
        return false;
    const auto* fixed = static_cast<const VS_FIXEDFILEINFO*>(value);
    if (fixed->dwSignature != VS_FFI_SIGNATURE) return false;
    version.major = HIWORD(fixed->dwFileVersionMS);
    version.minor = LOWORD(fixed->dwFileVersionMS);
    version.patch = HIWORD(fixed->dwFileVersionLS);
    version.build = LOWORD(fixed->dwFileVersionLS);
    return true;
}

VUnicodeString FormatVersionText(const VersionNumbers& version) {
    const wchar_t* const platform = sizeof(void*) == 8 ? L"x64 " : L"";
    VUnicodeString text;
    text.FormatPositional(L"%1!u!.%2!u!.%3!u! (%4!s!build %5!u!)", unsigned{version.major},
                          unsigned{version.minor}, unsigned{version.patch}, platform,
                          unsigned{version.build});
    return text;
}
