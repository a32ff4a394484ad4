#include "VReportMessageParams.h"

#include <atomic>
#include <mutex>
#include <stdexcept>
#include <vector>

#include "ProgramFolder.h"
#include "ReportExceptions.h"
#include "Win32Handle.h"

namespace {

constexpr DWORD ErrorMessageNotFound = 317;  // ERROR_MR_MID_NOT_FOUND
constexpr DWORD ErrorResourceTypeNotFound = 1813;
constexpr DWORD MinimumTextCharacters = 1024;

std::atomic<HMODULE> g_fallbackModule{nullptr};

// Status codes have their texts in NTDLL.DLL's table, not the system's.
HMODULE NtdllModule() {
    static const HMODULE module = GetModuleHandleW(L"NTDLL.DLL");
    return module;
}

// The most inserts a message can name (%1 to %99).
constexpr size_t MaxInserts = 99;

// "%1" to "%99": what stands in for an insert no argument was given for, so
// that the formatter, which reads as many arguments as the text names, finds
// one for each and the insert stays in the text as written.
const std::vector<VUnicodeString>& InsertPlaceholders() {
    static const std::vector<VUnicodeString> placeholders = [] {
        std::vector<VUnicodeString> made;
        for (unsigned number = 1; number <= MaxInserts; ++number) {
            VUnicodeString placeholder;
            placeholder.FormatPrintf(4, L"%%%u", number);
            made.push_back(placeholder);
        }
        return made;
    }();
    return placeholders;
}

}  // namespace

VReportMessageParams::VReportMessageParams(DWORD code, HMODULE module)
    : code_(code), module_(module) {}

VReportMessageParams::VReportMessageParams(const VReportMessageParams& other)
    : VUnknown(other),
      level_(other.level_),
      code_(other.code_),
      module_(other.module_),
      arguments_(other.arguments_) {}

VReportMessageParams& VReportMessageParams::operator=(const VReportMessageParams& other) {
    if (this == &other) return *this;
    level_ = other.level_;
    code_ = other.code_;
    module_ = other.module_;
    arguments_ = other.arguments_;
    DropText();
    return *this;
}

void VReportMessageParams::SetMessageCode(DWORD code) {
    code_ = code;
    arguments_.RemoveAll();
    DropText();
}

void VReportMessageParams::SetModule(HMODULE module) {
    module_ = module;
    DropText();
}

void VReportMessageParams::AddArgument(const VUnicodeString& text) {
    arguments_.Add(text);
    DropText();
}

void VReportMessageParams::AddArgument(const VString& text) { AddArgument(VUnicodeString(text)); }

void VReportMessageParams::AddArgument(const wchar_t* format, uint32_t number) {
    VUnicodeString text;
    text.FormatPositional(format, number);
    AddArgument(text);
}

void VReportMessageParams::DropText() {
    text_.Empty();
    formatted_ = false;
}

bool VReportMessageParams::FormatFrom(HMODULE module, DWORD flags) {
    std::vector<DWORD_PTR> inserts;
    bool sensitive = false;
    for (const VUnicodeString& argument : arguments_) {
        inserts.push_back(reinterpret_cast<DWORD_PTR>(argument.c_str()));
        sensitive = sensitive || argument.IsSensitive();
    }
    // Without arguments the formatter refuses a text with inserts, which is
    // then formatted with inserts ignored (TryFormatFrom); with too few, the
    // rest are padded.
    if (!inserts.empty()) {
        for (size_t missing = inserts.size(); missing < MaxInserts; ++missing)
            inserts.push_back(reinterpret_cast<DWORD_PTR>(InsertPlaceholders()[missing].c_str()));
    }
    DWORD allFlags = flags | FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_ARGUMENT_ARRAY;
    if (module || !(flags & FORMAT_MESSAGE_FROM_SYSTEM)) allFlags |= FORMAT_MESSAGE_FROM_HMODULE;

    wchar_t* buffer = nullptr;
    const DWORD length = FormatMessageW(
        allFlags, module, code_, 0, reinterpret_cast<wchar_t*>(&buffer), MinimumTextCharacters,
        inserts.empty() ? nullptr : reinterpret_cast<va_list*>(inserts.data()));
    const LocalMemory owner(buffer);
    if (length == 0) {
        switch (GetLastError()) {
            case ErrorMessageNotFound:
            case ErrorResourceTypeNotFound:
                throw MessageNotFound();
            case ERROR_INVALID_PARAMETER:
                throw InvalidParameter();
            default:
                throw std::runtime_error("FormatMessage");
        }
    }
    text_ = VUnicodeString(buffer, length, sensitive ? Str::Sensitive : Str::NotSensitive);
    if (sensitive) SecureZeroMemory(buffer, length * sizeof(wchar_t));
    formatted_ = true;
    return true;
}

bool VReportMessageParams::TryFormatFrom(HMODULE module, DWORD flags) {
    try {
        return FormatFrom(module, flags);
    } catch (const MessageNotFound&) {
        return false;
    } catch (const InvalidParameter&) {
        // A text that wants inserts nobody gave keeps its "%1" rather than failing.
        if (flags & FORMAT_MESSAGE_IGNORE_INSERTS) throw;
        return TryFormatFrom(module, flags | FORMAT_MESSAGE_IGNORE_INSERTS);
    }
}

const wchar_t* VReportMessageParams::GetText(DWORD flags) {
    if (formatted_) return text_.c_str();
    try {
        const bool systemCode = (code_ & CustomerBit) == 0;
        if (systemCode && TryFormatFrom(nullptr, flags | FORMAT_MESSAGE_FROM_SYSTEM))
            return text_.c_str();
        if (systemCode && NtdllModule() && TryFormatFrom(NtdllModule(), flags))
            return text_.c_str();
        if (TryFormatFrom(module_, flags)) return text_.c_str();
        if (GetFallbackModule() && TryFormatFrom(GetFallbackModule(), flags)) return text_.c_str();
    } catch (const std::exception&) {
        // Any formatter trouble ends in the text below, never at the caller.
    }
    text_.FormatPositional(L"Could not retrieve the error text for error code 0x%1!08x!.\r\n",
                           code_);
    formatted_ = true;
    return text_.c_str();
}

VUnicodeString VReportMessageParams::GetTextAsString(DWORD flags) {
    GetText(flags);
    VUnicodeString text = text_;
    const wchar_t* ending = (flags & 0xFF) == 0 ? L"\r\n" : L" ";
    if (text.EndsWith(ending)) text.Delete(text.GetLength() - wcslen(ending), wcslen(ending));
    return text;
}

void VReportMessageParams::SetFallbackModule(HMODULE module) { g_fallbackModule.store(module); }

HMODULE VReportMessageParams::GetFallbackModule() { return g_fallbackModule.load(); }

bool VReportMessageParams::LoadFallbackModule(const wchar_t* fileName) {
    // Threads that report at start-up may get here together.
    static std::mutex loading;
    static LibraryHandle loaded;
    const std::lock_guard<std::mutex> guard(loading);
    if (!loaded) {
        const VUnicodeString path = GetPathBesideProgram(fileName);
        if (path.IsEmpty()) return false;
        loaded.Reset(LoadLibraryExW(path.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE));
        if (!loaded) return false;
    }
    SetFallbackModule(loaded.Get());
    return true;
}
