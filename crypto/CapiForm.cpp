#include "CapiForm.h"

#include <windows.h>

#include <dpapi.h>

#include <cwchar>

#include "ConfigMessages.h"
#include "HexDigits.h"
#include "VBasicBuffer.h"
#include "Win32Handle.h"

namespace CapiForm {

namespace {

// The output blob of CryptProtectData or CryptUnprotectData: the system
// allocates it with LocalAlloc; this owner frees it, wiping it first when it
// holds plain text.
class OutputBlob {
public:
    explicit OutputBlob(bool wipe) : wipe_(wipe) {}
    OutputBlob(const OutputBlob&) = delete;
    OutputBlob& operator=(const OutputBlob&) = delete;
    ~OutputBlob() {
        if (wipe_ && blob_.pbData) SecureZeroMemory(blob_.pbData, blob_.cbData);
        memory_.Reset(blob_.pbData);
    }

    DATA_BLOB* Receive() { return &blob_; }
    const BYTE* GetData() const { return blob_.pbData; }
    DWORD GetSize() const { return blob_.cbData; }

private:
    DATA_BLOB blob_{0, nullptr};
    LocalMemory memory_;
    bool wipe_;
};

VUnicodeString SystemErrorText(DWORD error) {
    VReportMessageParams system(error);
    return system.GetTextAsString();
}

}  // namespace

bool Encode(const VUnicodeString& plain, VUnicodeString& text, const VUnicodeString& name,
            VReportMessageParams& report) {
    if (plain.IsEmpty()) {
        text.Empty();
        return true;
    }
    if (plain.GetLength() >= MAXDWORD / sizeof(wchar_t)) {
        report.Set(CONFIG_TEXT_TOO_LONG, name);
        return false;
    }
    // The terminator goes in too, as readers of this form expect.
    DATA_BLOB input{static_cast<DWORD>((plain.GetLength() + 1) * sizeof(wchar_t)),
                    reinterpret_cast<BYTE*>(const_cast<wchar_t*>(plain.c_str()))};
    OutputBlob output(false);
    if (!CryptProtectData(&input, Description, nullptr, nullptr, nullptr, CRYPTPROTECT_UI_FORBIDDEN,
                          output.Receive())) {
        const DWORD error = GetLastError();
        text.Empty();
        report.Set(CONFIG_PROTECT_FAILED, name, SystemErrorText(error));
        return false;
    }
    VUnicodeString stored(Prefix);
    AppendHexDigits(stored, output.GetData(), output.GetSize(), true);
    text.Swap(stored);
    return true;
}

bool Decode(const VUnicodeString& text, VUnicodeString& plain, const VUnicodeString& name,
            VReportMessageParams& report) {
    auto damaged = [&] {
        plain.Empty();
        report.Set(CONFIG_PROTECTED_TEXT_DAMAGED, name);
        return false;
    };
    const size_t start = text.StartsWith(Prefix) ? PrefixLength : 0;
    const size_t digits = text.GetLength() - start;
    VUnicodeString result(Str::Sensitive);
    if (digits > 0) {
        VBasicBuffer blob;
        if (!DecodeHexDigits(text.c_str() + start, digits, blob)) return damaged();
        DATA_BLOB input{static_cast<DWORD>(blob.GetLength()), blob.GetData()};
        OutputBlob output(true);
        if (!CryptUnprotectData(&input, nullptr, nullptr, nullptr, nullptr,
                                CRYPTPROTECT_UI_FORBIDDEN, output.Receive()))
            return damaged();
        // The text ends at its terminator, or at the blob's end if it has none.
        const auto* units = reinterpret_cast<const wchar_t*>(output.GetData());
        result.Assign(units, wcsnlen(units, output.GetSize() / sizeof(wchar_t)));
    }
    plain.Swap(result);
    return true;
}

}  // namespace CapiForm
