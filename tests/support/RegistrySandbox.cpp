#include "RegistrySandbox.h"

#include <gtest/gtest.h>

#include <atomic>

namespace {

constexpr wchar_t SandboxRoot[] = L"Software\\TraywellTests";

}  // namespace

RegistrySandbox::RegistrySandbox() {
    static std::atomic<unsigned> counter{0};
    // Process, time and counter: unique across concurrent test runs and reruns.
    path_.FormatPrintf(128, L"%ls\\%lu-%llu-%u", SandboxRoot, GetCurrentProcessId(),
                       static_cast<unsigned long long>(GetTickCount64()), counter.fetch_add(1));
    HKEY key = nullptr;
    const LSTATUS status = RegCreateKeyExW(HKEY_CURRENT_USER, path_.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                                           KEY_ALL_ACCESS, nullptr, &key, nullptr);
    EXPECT_EQ(status, ERROR_SUCCESS) << "cannot create the registry sandbox";
    key_.Reset(key);
}

RegistrySandbox::~RegistrySandbox() {
    key_.Reset();
    const LSTATUS status = RegDeleteTreeW(HKEY_CURRENT_USER, path_.c_str());
    EXPECT_EQ(status, ERROR_SUCCESS) << "cannot remove the registry sandbox";
    RegDeleteKeyW(HKEY_CURRENT_USER, SandboxRoot);  // only goes when no other run uses it
}

VUnicodeString RegistrySandbox::PathOf(const wchar_t* child) const {
    VUnicodeString path = path_;
    path += L"\\";
    path += child;
    return path;
}

PredefinedKeyRedirect::PredefinedKeyRedirect(HKEY predefined, const RegistrySandbox& sandbox, const wchar_t* name)
    : predefined_(predefined) {
    HKEY target = nullptr;
    EXPECT_EQ(RegCreateKeyExW(sandbox.Get(), name, 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_ALL_ACCESS, nullptr,
                              &target, nullptr),
              ERROR_SUCCESS);
    RegistryKeyHandle owned(target);
    // The registry keeps a duplicate of the handle.
    EXPECT_EQ(RegOverridePredefKey(predefined, owned.Get()), ERROR_SUCCESS);
}

PredefinedKeyRedirect::~PredefinedKeyRedirect() { EXPECT_EQ(RegOverridePredefKey(predefined_, nullptr), ERROR_SUCCESS); }

DWORD RawValueType(HKEY key, const wchar_t* name, std::vector<BYTE>* data) {
    DWORD type = REG_NONE;
    DWORD size = 0;
    if (RegQueryValueExW(key, name, nullptr, &type, nullptr, &size) != ERROR_SUCCESS) return REG_NONE;
    if (data) {
        data->resize(size);
        if (RegQueryValueExW(key, name, nullptr, &type, data->data(), &size) != ERROR_SUCCESS) return REG_NONE;
        data->resize(size);
    }
    return type;
}

bool RawKeyExists(HKEY parent, const wchar_t* path) {
    HKEY key = nullptr;
    if (RegOpenKeyExW(parent, path, 0, KEY_READ, &key) != ERROR_SUCCESS) return false;
    RegCloseKey(key);
    return true;
}

void RawSetValue(HKEY key, const wchar_t* name, DWORD type, const void* data, DWORD size) {
    ASSERT_EQ(RegSetValueExW(key, name, 0, type, static_cast<const BYTE*>(data), size), ERROR_SUCCESS);
}
