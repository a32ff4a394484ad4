// Identifiers of the tray program's resources: its icon and dialog templates
// and their controls. Read by the resource compiler and by the dialogs.
#pragma once

#define IDI_TRAYWELL 101

#define IDD_ABOUT 101
#define IDD_SESSIONS 107
#define IDD_EXIT 108

#define IDC_EXIT_ICON 1002
#define IDC_EXIT_TEXT 1003
#define IDC_SESSIONS_LABEL 1004
#define IDC_SESSIONS_LIST 1005
#define IDC_ABOUT_ICON 1006
#define IDC_ABOUT_NAME 1007
#define IDC_ABOUT_VERSION 1008
#define IDC_ABOUT_COPYRIGHT 1009
