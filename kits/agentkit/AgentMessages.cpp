#include "AgentMessages.h"

#include "ProgramFolder.h"
#include "Win32Handle.h"

HMODULE AgentMessagesModule() {
    static const LibraryHandle module(LoadLibraryExW(
        GetPathBesideProgram(L"AgentkitMessages.dll").c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE));
    return module.Get();
}

VUnicodeString ErrorCodeText(DWORD code) {
    VUnicodeString text;
    text.FormatPrintf(16, L"0x%08lx", static_cast<unsigned long>(code));
    return text;
}
