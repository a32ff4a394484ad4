#include "VIniFileKey.h"

#include <cstring>
#include <cwchar>
#include <iterator>
#include <string_view>
#include <vector>

#include "FileSystem.h"
#include "IniFileFormat.h"
#include "ProfileErrors.h"
#include "VFileReplacement.h"
#include "VIniFileKeyIterator.h"
#include "VTextFile.h"

namespace {

// Readers, writers and deleters of other processes never shut each other out
// of a values file; the byte-range locks order them instead.
constexpr DWORD ValuesFileShareMode = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
// Every reader locks these bytes for the whole read; writers that rewrite the
// file in place (older programs of the family) lock them exclusively.
constexpr uint64_t LockOffset = 0;
constexpr uint64_t LockLength = 4;

constexpr wchar_t IsSessionName[] = L"Is Session";
constexpr size_t IsSessionLength = std::size(IsSessionName) - 1;
// What an entry takes in a file's text, give or take: to size the table before
// reading it.
constexpr size_t TypicalEntryCharacters = 40;

std::wstring_view View(const VUnicodeString& text) {
    return std::wstring_view(text.c_str(), text.GetLength());
}

bool IsSeparator(wchar_t character) { return character == L'\\' || character == L'/'; }

// Drops trailing separators, but not the one of a drive root ("C:\").
VUnicodeString WithoutTrailingSeparators(const VUnicodeString& path) {
    size_t length = path.GetLength();
    while (length > 0 && IsSeparator(path[length - 1]) &&
           !(length >= 2 && path[length - 2] == L':'))
        --length;
    return path.Left(length);
}

VUnicodeString JoinPath(const VUnicodeString& folder, const VUnicodeString& name) {
    if (folder.IsEmpty()) return VUnicodeString();
    VUnicodeString path = folder;
    if (!IsSeparator(path[path.GetLength() - 1])) path += L'\\';
    path += name;
    return path;
}

// Whether UTF-8 can hold text: every surrogate must be half of a pair.
bool HasOnlyPairedSurrogates(const VUnicodeString& text) {
    return VTextFile::FindLoneSurrogate(text.c_str(), text.GetLength()) == text.GetLength();
}

bool HoldsLineBreak(const VUnicodeString& text) {
    return text.Find(L'\r') != VUnicodeString::npos || text.Find(L'\n') != VUnicodeString::npos;
}

// Names that Windows takes for devices, whatever extension follows them.
bool IsDeviceName(const wchar_t* part, size_t length) {
    size_t stem = 0;
    while (stem < length && part[stem] != L'.') ++stem;
    VUnicodeString name(part, stem);
    name.MakeUpper();
    static const wchar_t* const devices[] = {L"CON", L"PRN", L"AUX", L"NUL", L"CONIN$", L"CONOUT$"};
    for (const wchar_t* device : devices)
        if (name == device) return true;
    return name.GetLength() == 4 && (name.StartsWith(L"COM") || name.StartsWith(L"LPT")) &&
           name[3] >= L'1' && name[3] <= L'9';
}

bool IsValidPathPart(const wchar_t* part, size_t length) {
    if (length == 0) return false;
    if ((length == 1 && part[0] == L'.') || (length == 2 && part[0] == L'.' && part[1] == L'.'))
        return false;
    for (size_t i = 0; i < length; ++i) {
        const wchar_t character = part[i];
        if (character < 32 || std::wcschr(L"<>:\"/|?*", character)) return false;
    }
    // Windows drops a trailing dot or blank, so "Work." would be "Work".
    if (part[length - 1] == L'.' || part[length - 1] == L' ') return false;
    return !IsDeviceName(part, length);
}

bool IsFolder(const VUnicodeString& path) {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY);
}

bool Exists(const VUnicodeString& path, bool& isFolder) {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) return false;
    isFolder = (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    return true;
}

// Removes what exists of one key's folder and values file. False with the
// last error set on a failure; removedAny tells whether anything was there.
bool DeleteKeyFiles(const VUnicodeString& folder, bool& removedAny) {
    for (const VUnicodeString& path : {folder, VIniFileKey::ValuesFilePath(folder)}) {
        const DWORD attributes = GetFileAttributesW(path.c_str());
        if (attributes == INVALID_FILE_ATTRIBUTES) continue;
        removedAny = true;
        if (!DeleteTree(path)) return false;
    }
    return true;
}

}  // namespace

VIniFileKey::VIniFileKey(const VUnicodeString& folderPath, const VUnicodeString& privateFolderPath,
                         bool readOnly, const VSecurityDescriptor* security)
    : folderPath_(WithoutTrailingSeparators(folderPath)),
      privateFolderPath_(WithoutTrailingSeparators(privateFolderPath)),
      readOnly_(readOnly) {
    if (privateFolderPath_.EqualsNoCase(folderPath_)) privateFolderPath_.Empty();
    if (security && !security->IsEmpty()) security_ = *security;
}

VIniFileKey::~VIniFileKey() {
    if (!readOnly_) Save();
}

VUnicodeString VIniFileKey::ValuesFilePath(const VUnicodeString& folderPath) {
    return folderPath + ValuesFileExtension;
}

bool VIniFileKey::IsValidValueName(const VUnicodeString& name) {
    return !name.IsEmpty() && name.Find(L'"') == VUnicodeString::npos && !HoldsLineBreak(name);
}

bool VIniFileKey::IsValidSubkeyName(const VUnicodeString& name) {
    const wchar_t* characters = name.c_str();
    const size_t length = name.GetLength();
    size_t start = 0;
    for (size_t i = 0; i <= length; ++i) {
        if (i < length && characters[i] != L'\\') continue;
        if (!IsValidPathPart(characters + start, i - start)) return false;
        start = i + 1;
    }
    return true;
}

bool VIniFileKey::Fail(DWORD error) {
    RecordSystemError(error_, error);
    return false;
}

// ---- the value table ----

VIniFileValueTable& VIniFileKey::Table() {
    if (!table_) LoadTable();
    return *table_;
}

void VIniFileKey::LoadTable() {
    table_ = std::make_unique<VIniFileValueTable>();
    modified_ = false;
    loadError_ = ERROR_SUCCESS;
    ReadValuesFile(ValuesFilePath(folderPath_));
    // Read second, so that its values win over stray copies in the main file.
    privateFileRead_ =
        !privateFolderPath_.IsEmpty() && ReadValuesFile(ValuesFilePath(privateFolderPath_));
}

bool VIniFileKey::ReadValuesFile(const VUnicodeString& path) {
    VTextFile file;
    file.SetShareMode(ValuesFileShareMode);
    const auto failed = [this](DWORD error) {
        if (loadError_ == ERROR_SUCCESS) loadError_ = error;
        return false;
    };
    if (!file.Open(path, GENERIC_READ, OPEN_EXISTING)) {
        const DWORD error = GetLastError();
        // A missing file is an empty key, and a folder is no values file
        // (saving over it fails on its own).
        if (error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND || IsFolder(path))
            return false;
        return failed(error);
    }
    // The lock covers the whole read, so the blocks need none of their own.
    file.SetBlockLocking(false);
    if (!file.Lock(LockOffset, LockLength, false)) return failed(GetLastError());
    VIniFileText text;
    const bool read = file.ReadAll(text, MaxValuesFileBytes);
    const DWORD readError = GetLastError();
    file.Unlock(LockOffset, LockLength);
    if (!read) return failed(readError);

    const VIniFileText& kept = table_->KeepText(std::move(text));
    table_->BeginReading(kept.size() / TypicalEntryCharacters);
    VIniFileEntryReader reader(kept.data(), kept.data() + kept.size(), table_->GetArena());
    std::wstring_view name;
    VIniFileDataPtr value;
    while (reader.Next(name, value)) {
        // A name the writer could not have made cannot be stored or read back.
        if (!name.empty()) table_->Read(name, std::move(value));
    }
    table_->EndReading();
    return true;
}

const VIniFileKey::FileInformation& VIniFileKey::GetFileInformation() {
    if (!fileInformation_) {
        FileInformation information{};
        WIN32_FILE_ATTRIBUTE_DATA data;
        if (GetFileAttributesExW(ValuesFilePath(folderPath_).c_str(), GetFileExInfoStandard,
                                 &data)) {
            information.exists = true;
            information.isFolder = (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
            information.readOnly = (data.dwFileAttributes & FILE_ATTRIBUTE_READONLY) != 0;
        }
        fileInformation_ = information;
    }
    return *fileInformation_;
}

// ---- reads ----

const VIniFileData* VIniFileKey::FindForRead(const VUnicodeString& name, VProfileValueKind kind) {
    const VIniFileData* value = Table().Find(View(name));
    if (value && value->GetKind() == kind) return value;
    // The value may be in the file that could not be read: not "absent".
    if (loadError_ != ERROR_SUCCESS) {
        Fail(loadError_);
        return nullptr;
    }
    RecordValueAbsent(error_, name);
    return nullptr;
}

bool VIniFileKey::GetMultiString(const VUnicodeString& name, VArray<VUnicodeString>& strings) {
    const VIniFileData* value = FindForRead(name, ProfileMultiString);
    return value && value->GetMultiString(strings);
}

bool VIniFileKey::GetBinary(const VUnicodeString& name, void* buffer, size_t& size) {
    const VIniFileData* value = FindForRead(name, ProfileBinary);
    if (!value) return false;
    return value->GetBinary(buffer, size) || Fail(ERROR_MORE_DATA);
}

bool VIniFileKey::GetString(const VUnicodeString& name, VUnicodeString& text) {
    const VIniFileData* value = FindForRead(name, ProfileString);
    return value && value->GetString(text);
}

bool VIniFileKey::GetDword(const VUnicodeString& name, uint32_t& value) {
    // A session is a key whose values file exists; the file answers before
    // any value is read, so listing sessions reads no session's values.
    if (name.GetLength() == IsSessionLength && name == IsSessionName) {
        const FileInformation& information = GetFileInformation();
        if (information.exists && !information.isFolder) {
            value = 1;
            return true;
        }
    }
    const VIniFileData* data = FindForRead(name, ProfileDword);
    return data && data->GetDword(value);
}

bool VIniFileKey::GetSecurity(const VUnicodeString& name, VSecurityDescriptor& descriptor) {
    const VIniFileData* value = Table().Find(View(name));
    if (value && value->GetKind() == ProfileMultiString) {
        VArray<VUnicodeString> entries;
        value->GetMultiString(entries);
        return descriptor.FromText(entries) || Fail(GetLastError());
    }
    size_t size = 0;
    if (!GetBinary(name, nullptr, size)) return false;
    std::vector<BYTE> bytes(size);
    if (!GetBinary(name, bytes.data(), size)) return false;
    // AssignBytes takes only what IsValidSecurityDescriptor accepts, with
    // every part inside the bytes.
    return descriptor.AssignBytes(bytes.data(), size) || Fail(GetLastError());
}

// ---- writes ----

bool VIniFileKey::CheckWrite(const VUnicodeString& name) {
    if (readOnly_) return Fail(ERROR_ACCESS_DENIED);
    if (!IsValidValueName(name)) return Fail(ERROR_INVALID_NAME);
    if (!HasOnlyPairedSurrogates(name)) return Fail(ERROR_NO_UNICODE_TRANSLATION);
    return true;
}

bool VIniFileKey::CheckText(const VUnicodeString& text) {
    if (HoldsLineBreak(text)) return Fail(ERROR_INVALID_DATA);
    if (!HasOnlyPairedSurrogates(text)) return Fail(ERROR_NO_UNICODE_TRANSLATION);
    return true;
}

bool VIniFileKey::Store(const VUnicodeString& name, VIniFileDataPtr value) {
    Table().Store(View(name), std::move(value));
    modified_ = true;
    return true;
}

bool VIniFileKey::SetMultiString(const VUnicodeString& name,
                                 const VArray<VUnicodeString>& strings) {
    if (!CheckWrite(name)) return false;
    for (const VUnicodeString& string : strings)
        if (!CheckText(string)) return false;
    return Store(name, MakeIniFileData<VIniFileDataStringSz>(strings));
}

bool VIniFileKey::SetBinary(const VUnicodeString& name, const void* bytes, size_t length) {
    if (!CheckWrite(name)) return false;
    if (!bytes && length != 0) return Fail(ERROR_INVALID_PARAMETER);
    if (length > UINT32_MAX) return Fail(ERROR_INVALID_DATA);  // the count field holds 32 bits
    return Store(name, MakeIniFileData<VIniFileDataBinary>(bytes, length));
}

bool VIniFileKey::SetString(const VUnicodeString& name, const VUnicodeString& text) {
    return CheckWrite(name) && CheckText(text) &&
           Store(name, MakeIniFileData<VIniFileDataString>(text));
}

bool VIniFileKey::SetDword(const VUnicodeString& name, uint32_t value) {
    return CheckWrite(name) && Store(name, MakeIniFileData<VIniFileDataDword>(value));
}

bool VIniFileKey::SetSecurity(const VUnicodeString& name, const VSecurityDescriptor& descriptor) {
    if (!CheckWrite(name)) return false;
    if (descriptor.IsEmpty()) return Fail(ERROR_INVALID_SECURITY_DESCR);
    // The text form is for people to read and edit; it is used only when it
    // stands for exactly this descriptor.
    VArray<VUnicodeString> entries;
    VSecurityDescriptor fromText;
    if (descriptor.ToText(entries) && fromText.FromText(entries) &&
        fromText.GetLength() == descriptor.GetLength() &&
        std::memcmp(fromText.Get(), descriptor.Get(), descriptor.GetLength()) == 0)
        return Store(name, MakeIniFileData<VIniFileDataStringSz>(std::move(entries)));
    return Store(name,
                 MakeIniFileData<VIniFileDataBinary>(descriptor.Get(), descriptor.GetLength()));
}

bool VIniFileKey::DeleteValue(const VUnicodeString& name) {
    if (readOnly_) return Fail(ERROR_ACCESS_DENIED);
    if (!Table().Remove(View(name))) return Fail(ERROR_FILE_NOT_FOUND);
    modified_ = true;
    return true;
}

bool VIniFileKey::IsWritable() {
    if (readOnly_) return false;
    const FileInformation& information = GetFileInformation();
    // A folder in the values file's place cannot be written either.
    return !information.exists || !(information.readOnly || information.isFolder);
}

bool VIniFileKey::Reload() {
    table_.reset();
    fileInformation_.reset();
    LoadTable();
    return true;
}

// ---- saving ----

void VIniFileKey::Format(VIniFileText& mainText, VIniFileText* privateText) const {
    const auto append = [&](const VIniFileValueTable::Slot& slot) {
        slot.value->AppendTo(slot.isPrivate && privateText ? *privateText : mainText, slot.name);
    };
    // The format lists every multi-string after all other entries.
    table_->ForEach([&](const VIniFileValueTable::Slot& slot) {
        if (slot.value->GetKind() != ProfileMultiString) append(slot);
    });
    table_->ForEach([&](const VIniFileValueTable::Slot& slot) {
        if (slot.value->GetKind() == ProfileMultiString) append(slot);
    });
}

bool VIniFileKey::Save() {
    if (!table_ || !modified_) return true;
    if (readOnly_) return Fail(ERROR_ACCESS_DENIED);
    if (loadError_ != ERROR_SUCCESS) return Fail(loadError_);

    const bool privateWanted =
        !privateFolderPath_.IsEmpty() && (privateFileRead_ || table_->NeedsPrivateFile());
    VIniFileText mainText;
    VIniFileText privateText;
    Format(mainText, privateWanted ? &privateText : nullptr);

    // Both files are written beside their places before either is replaced,
    // so that a file that cannot be written changes neither.
    const VSecurityDescriptor* security = security_ ? &*security_ : nullptr;
    VFileReplacement mainFile;
    VFileReplacement privateFile;
    if (privateWanted && !privateFile.Prepare(ValuesFilePath(privateFolderPath_),
                                              privateText.data(), privateText.size(), security))
        return Fail(GetLastError());
    if (!mainFile.Prepare(ValuesFilePath(folderPath_), mainText.data(), mainText.size(), security))
        return Fail(GetLastError());
    const bool replaced = (!privateWanted || privateFile.Commit()) && mainFile.Commit();
    const DWORD error = GetLastError();
    fileInformation_.reset();
    // Without the main file the save is incomplete even when the private
    // file was replaced. The table stays changed, so the next save tries again.
    if (!replaced) return Fail(error);
    privateFile.RemoveLeftovers();
    mainFile.RemoveLeftovers();
    modified_ = false;
    privateFileRead_ = privateWanted;
    table_->MarkSaved();
    return true;
}

// ---- subkeys ----

bool VIniFileKey::KeyExists(const VUnicodeString& name) {
    if (!IsValidSubkeyName(name)) return Fail(ERROR_INVALID_NAME);
    const VUnicodeString folder = JoinPath(folderPath_, name);
    bool isFolder = false;
    if (Exists(folder, isFolder) && isFolder) return true;
    return Exists(ValuesFilePath(folder), isFolder) && !isFolder;
}

std::unique_ptr<VProfilePrivateKey> VIniFileKey::OpenKey(const VUnicodeString& name, bool create,
                                                         const VSecurityDescriptor* security) {
    if (!IsValidSubkeyName(name)) {
        Fail(ERROR_INVALID_NAME);
        return nullptr;
    }
    // A read-only key opens what exists and creates nothing.
    create = create && !readOnly_;
    if (!create && !KeyExists(name)) {
        Fail(ERROR_FILE_NOT_FOUND);
        return nullptr;
    }
    const VUnicodeString privateFolder = JoinPath(privateFolderPath_, name);
    auto key = std::make_unique<VIniFileKey>(JoinPath(folderPath_, name), privateFolder, readOnly_,
                                             security);
    if (create) {
        if (!CreateFolderChain(key->folderPath_, security) ||
            (!key->privateFolderPath_.IsEmpty() &&
             !CreateFolderChain(key->privateFolderPath_, security)))
            RecordLastSystemError(key->error_);
    }
    return key;
}

bool VIniFileKey::DeleteKey(const VUnicodeString& name) {
    if (readOnly_) return Fail(ERROR_ACCESS_DENIED);
    if (!IsValidSubkeyName(name)) return Fail(ERROR_INVALID_NAME);
    bool removedAny = false;
    if (!DeleteKeyFiles(JoinPath(folderPath_, name), removedAny)) return Fail(GetLastError());
    if (!privateFolderPath_.IsEmpty() &&
        !DeleteKeyFiles(JoinPath(privateFolderPath_, name), removedAny))
        return Fail(GetLastError());
    return removedAny || Fail(ERROR_FILE_NOT_FOUND);
}

std::unique_ptr<VProfilePrivateKeyIterator> VIniFileKey::CreatePrivateKeyIterator(bool values) {
    return std::make_unique<Iterator>(*this, values);
}
