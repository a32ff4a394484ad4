// The program's version, for the version resource (the About box reads it back
// from there) and the build's fixed texts. Plain macros: the resource compiler
// reads this file too.
#pragma once

#define TRAYWELL_VERSION_MAJOR 8
#define TRAYWELL_VERSION_MINOR 3
#define TRAYWELL_VERSION_PATCH 4
#define TRAYWELL_VERSION_BUILD 1699
#define TRAYWELL_VERSION_STRING "8.3.4.1699"

// The kind of release and its date, shown after the version in the About box.
#define TRAYWELL_RELEASE_LABEL L"General release, November 2026"
#define TRAYWELL_COPYRIGHT "Copyright \251 2026 Quillon Software. All rights reserved."
