// For tests only: watch, and answer, the boxes that VMessageBox would show,
// so that an in-process test neither blocks on a box nor misses one. The
// program never installs a hook; black-box tests of the real executable find
// the box window (class "#32770") instead.
#pragma once

#include <windows.h>

#include "VString.h"

struct VMessageBoxCall {
    HWND owner;
    VUnicodeString text;
    VUnicodeString caption;
    UINT type;
};

// Called instead of showing the box; its result is what VMessageBox returns.
using VMessageBoxHook = int (*)(const VMessageBoxCall& call);

// Installs hook (null: show real boxes again) and returns the one it replaces.
// Set it while no box is being shown; the hook runs on the caller's thread.
VMessageBoxHook SetMessageBoxHookForTests(VMessageBoxHook hook);
