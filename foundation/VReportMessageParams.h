// A report: one message code with its ordered insertion arguments, turned into
// text on demand from the message tables. Failing operations fill a report
// that the caller passes in; the user interface shows its text.
//
// A report is used by one thread at a time; its reference count and its
// argument strings are atomic, so it may be handed to another thread.
#pragma once

#include <windows.h>

#include <cstdint>

#include "VContainers.h"
#include "VString.h"
#include "VUnknown.h"

// The module that holds the configuration library's texts, beside the program.
inline constexpr wchar_t ConfigMessagesModule[] = L"ConfigMessages.dll";

class IReportMessageParams : public IUnknown {
public:
    virtual DWORD GetMessageCode() const = 0;
    // Sets a new code; the arguments and the cached text are dropped.
    virtual void SetMessageCode(DWORD code) = 0;
    virtual void AddArgument(const VUnicodeString& text) = 0;
    virtual void AddArgument(const VString& text) = 0;
    // Formats number with format (for example "0x%1!08x!") and adds the result.
    virtual void AddArgument(const wchar_t* format, uint32_t number) = 0;
    // The formatted text, cached until the code or the arguments change. Never
    // fails: a code found in no table gives a text that names the code. An
    // insert that no argument was given for stays in the text as written
    // ("%2"). The text belongs to the report.
    virtual const wchar_t* GetText(DWORD flags) = 0;
    // The text with its trailing line end removed: "\r\n" when the low byte of
    // flags is zero, else one trailing blank (a line width ends lines with one).
    virtual VUnicodeString GetTextAsString(DWORD flags) = 0;

protected:
    virtual ~IReportMessageParams() = default;
};

class VReportMessageParams : public VUnknown<IReportMessageParams> {
public:
    static constexpr DWORD CustomerBit = 0x20000000;
    static constexpr int32_t NoLevel = -1;

    // The module defaults to the program's own executable.
    explicit VReportMessageParams(DWORD code = 0, HMODULE module = GetModuleHandleW(nullptr));
    // Copies code, module, level and arguments (the strings are shared), not the text.
    VReportMessageParams(const VReportMessageParams& other);
    VReportMessageParams& operator=(const VReportMessageParams& other);
    ~VReportMessageParams() override = default;

    DWORD GetMessageCode() const override { return code_; }
    void SetMessageCode(DWORD code) override;
    // Clears to code 0 with no arguments, as operations do before they start.
    void Clear() { SetMessageCode(0); }
    // Sets code with the arguments given, in order.
    template <class... Arguments>
    void Set(DWORD code, const Arguments&... arguments) {
        SetMessageCode(code);
        (AddArgument(arguments), ...);
    }
    HMODULE GetModule() const { return module_; }
    void SetModule(HMODULE module);
    int32_t GetLevel() const { return level_; }
    void SetLevel(int32_t level) { level_ = level; }
    const VArray<VUnicodeString>& GetArguments() const { return arguments_; }

    void AddArgument(const VUnicodeString& text) override;
    void AddArgument(const VString& text) override;
    void AddArgument(const wchar_t* format, uint32_t number) override;
    void AddArgument(const wchar_t* text) { AddArgument(VUnicodeString(text)); }

    const wchar_t* GetText(DWORD flags = 0) override;
    VUnicodeString GetTextAsString(DWORD flags = 0) override;

    // The module consulted for codes that neither the system nor the report's
    // own module knows. Set once at start-up; shared by all reports.
    static void SetFallbackModule(HMODULE module);
    static HMODULE GetFallbackModule();
    // Loads fileName from the program's own folder as a data file, keeps it
    // for the life of the process and makes it the fallback module. False,
    // with the system's error as the last error, when it cannot be loaded.
    static bool LoadFallbackModule(const wchar_t* fileName);

private:
    void DropText();
    // Formats the code from one module (or the system tables); false when the
    // code is not there. Throws for formatter errors other than "not found".
    bool FormatFrom(HMODULE module, DWORD flags);
    bool TryFormatFrom(HMODULE module, DWORD flags);

    int32_t level_ = NoLevel;
    DWORD code_;
    HMODULE module_;
    VArray<VUnicodeString> arguments_;
    VUnicodeString text_;
    bool formatted_ = false;
};
