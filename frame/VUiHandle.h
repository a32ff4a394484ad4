// Owners for the user-interface handles (icons, menus, windows, GDI objects),
// in the form of foundation/Win32Handle.h: each closes its handle exactly once.
#pragma once

#include <windows.h>

#include "Win32Handle.h"

struct IconTraits {
    using Type = HICON;
    static Type Invalid() noexcept { return nullptr; }
    static void Close(Type icon) noexcept { DestroyIcon(icon); }
};

// A menu that is not attached to a window (a popup built for TrackPopupMenu).
struct MenuTraits {
    using Type = HMENU;
    static Type Invalid() noexcept { return nullptr; }
    static void Close(Type menu) noexcept { DestroyMenu(menu); }
};

// A window this thread created; destroy it on the same thread.
struct WindowTraits {
    using Type = HWND;
    static Type Invalid() noexcept { return nullptr; }
    static void Close(Type window) noexcept { DestroyWindow(window); }
};

struct GdiObjectTraits {
    using Type = HGDIOBJ;
    static Type Invalid() noexcept { return nullptr; }
    static void Close(Type object) noexcept { DeleteObject(object); }
};

using IconHandle = VUniqueHandle<IconTraits>;
using MenuHandle = VUniqueHandle<MenuTraits>;
using WindowHandle = VUniqueHandle<WindowTraits>;
using GdiObjectHandle = VUniqueHandle<GdiObjectTraits>;
