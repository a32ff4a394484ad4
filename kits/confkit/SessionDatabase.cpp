#include <windows.h>

#include "ISessionDatabase.h"

ISessionDatabase* GetSessionDatabase() {
    static ISessionDatabase* const database = [] {
        const FARPROC entry = GetProcAddress(GetModuleHandleW(nullptr), "GetSessionDatabaseImpl");
        // Through a pointer to a function of no parameters, the one cast
        // between function types that the compiler takes as deliberate.
        const auto function =
            reinterpret_cast<GetSessionDatabaseImplFunction>(reinterpret_cast<void (*)()>(entry));
        return function ? function() : nullptr;
    }();
    return database;
}
