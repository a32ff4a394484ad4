#include "RegisteredMessages.h"

#include <windows.h>

unsigned GetTraywellCanExitApplicationMessage() {
    static const unsigned message =
        RegisterWindowMessageW(L"Quillon Software Traywell Can Exit Application");
    return message;
}

unsigned GetTraywellShowSelectionMessage() {
    static const unsigned message =
        RegisterWindowMessageW(L"Quillon Software Traywell Show Selection");
    return message;
}
