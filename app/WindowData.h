// One session of a running client program, as the tray menu lists it.
#pragma once

#include <windows.h>

#include <cstdint>

#include "VString.h"

struct WindowData {
    LONG_PTR userData = 0;       // the client main window's GWLP_USERDATA
    uint32_t commandId = 0;      // the menu identifier, unique within one refresh
    VUnicodeString caption;      // at most 30 characters
    HWND window = nullptr;       // the client main window
    uint32_t sessionNumber = 0;  // sent back when the session is selected; 0 when none was given
};
