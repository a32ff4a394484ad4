#include "QlsPathVariables.h"

#include <cwchar>
#include <cwctype>
#include <iterator>
#include <mutex>

namespace {

enum Variable { ConfigPath, InstallPath, UserDataPath, SshDataPath, VariableCount };

constexpr const wchar_t* VariableNames[VariableCount] = {
    L"${QLS_CONFIG_PATH}", L"${QLS_INSTALL_PATH}", L"${QLS_USER_DATA_PATH}",
    L"${QLS_SSH_DATA_PATH}"};

// Published once at start-up, read by any thread that uses a path value.
std::mutex g_lock;
VUnicodeString g_folders[VariableCount];

void SetFolder(Variable variable, const wchar_t* folder) {
    const VUnicodeString value(folder);
    std::lock_guard<std::mutex> hold(g_lock);
    g_folders[variable] = value;
}

VUnicodeString GetFolder(Variable variable) {
    std::lock_guard<std::mutex> hold(g_lock);
    return g_folders[variable];
}

void FillFolder(Variable variable, IString& folder) {
    const VUnicodeString value = GetFolder(variable);
    folder.SetWide(value.c_str(), value.GetLength(), Str::NotSensitive);
}

bool IsSeparator(wchar_t character) { return character == L'\\' || character == L'/'; }

// The variable whose name starts text at position, or VariableCount.
Variable VariableAt(const VUnicodeString& text, size_t position) {
    for (int variable = 0; variable < VariableCount; ++variable) {
        const wchar_t* name = VariableNames[variable];
        size_t i = 0;
        while (name[i] && position + i < text.GetLength() &&
               std::towupper(text.GetAt(position + i)) == static_cast<wint_t>(name[i]))
            ++i;
        if (!name[i]) return static_cast<Variable>(variable);
    }
    return VariableCount;
}

}  // namespace

void SetQlsConfigPathSub(const wchar_t* folder) { SetFolder(ConfigPath, folder); }
void SetQlsInstallPathSub(const wchar_t* folder) { SetFolder(InstallPath, folder); }
void SetQlsUserDataPathSub(const wchar_t* folder) { SetFolder(UserDataPath, folder); }
void SetQlsSshDataPathSub(const wchar_t* folder) { SetFolder(SshDataPath, folder); }

void GetQlsConfigPathSub(IString& folder) { FillFolder(ConfigPath, folder); }
void GetQlsInstallPathSub(IString& folder) { FillFolder(InstallPath, folder); }
void GetQlsUserDataPathSub(IString& folder) { FillFolder(UserDataPath, folder); }
void GetQlsSshDataPathSub(IString& folder) { FillFolder(SshDataPath, folder); }

VUnicodeString ExpandQlsPathVariables(const VUnicodeString& value) {
    VUnicodeString expanded = value.Left(0);  // empty, with value's sensitivity
    size_t copied = 0;
    for (size_t position = value.Find(L"${"); position != VUnicodeString::npos;
         position = value.Find(L"${", position)) {
        const Variable variable = VariableAt(value, position);
        if (variable == VariableCount) {
            position += 2;
            continue;
        }
        expanded.Append(value.c_str() + copied, position - copied);
        const VUnicodeString folder = GetFolder(variable);
        expanded.Append(folder);
        position += wcslen(VariableNames[variable]);
        if (!folder.IsEmpty() && IsSeparator(folder.GetAt(folder.GetLength() - 1)) &&
            position < value.GetLength() && IsSeparator(value.GetAt(position)))
            ++position;
        copied = position;
    }
    expanded.Append(value.c_str() + copied, value.GetLength() - copied);
    return expanded;
}
