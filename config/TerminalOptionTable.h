// The values of a session's terminal block (TerminalConfig), declared once.
// TERMINAL_OPTIONS(X) calls X(Member, Kind, L"Value Name", Default, Form)
// for each, in the order in which the block loads them; the members,
// loading, saving, copying and comparing of TerminalConfig are derived from
// it. Kinds are those of SessionKind (SessionValueKinds.h); Form is Plain, or
// Renamed(former) for a value an older version kept under another name.
//
// The defaults are ours ("chosen" marks the ones worth a word); they give a
// terminal as most hosts expect one today: xterm emulation, 80 by 24, UTF-8,
// light grey on black. Colours are COLORREFs. Enumerations, by number:
//   Resize Mode   0 the window's size changes rows and columns, 1 the font
//                 size follows the window, 2 the window follows the rows
//   Cursor Style  0 block, 1 underline, 2 vertical bar
//   Default SCS   0 ASCII, 1 DEC special graphics, 2 UK, 3 DEC supplemental
#pragma once

#include "SessionValueKinds.h"

// clang-format off
#define TERMINAL_OPTIONS(X) \
    X(Emulation, Text, L"Emulation", L"Xterm", Plain) /* chosen: one of TerminalConfig's emulation names */ \
    X(TerminalType, Text, L"Terminal Type", L"xterm", Plain) /* chosen: sent only with "Use Terminal Type" */ \
    X(UseTerminalType, Flag, L"Use Terminal Type", false, Plain) \
    X(Answerback, Text, L"Answerback", L"", Plain) \
    X(UseAnswerback, Flag, L"Use Answerback", false, Plain) \
    X(Rows, Number, L"Rows", 24, Plain) \
    X(Cols, Number, L"Cols", 80, Plain) \
    X(Scrollback, Number, L"Scrollback", 500, Plain) /* chosen: lines */ \
    X(SyncViewRows, Flag, L"Sync View Rows", true, Plain) \
    X(SyncViewCols, Flag, L"Sync View Cols", true, Plain) \
    X(ResizeMode, Number, L"Resize Mode", 0, Plain) \
    X(FontFamily, Text, L"Font Family", L"Lucida Console", Plain) \
    X(FontSize, Number, L"Font Size", 10, Plain) /* chosen: points */ \
    X(NormalFontV2, Font, L"Normal Font v2", VLogFont(L"Lucida Console", -13), Plain) \
    X(NarrowFontV2, Font, L"Narrow Font v2", VLogFont(L"Lucida Console", -13), Plain) \
    X(UseNarrowFont, Flag, L"Use Narrow Font", false, Plain) \
    X(UseUnicodeLineDrawing, Flag, L"Use Unicode Line Drawing", true, Plain) \
    X(OutputTransformerName, Text, L"Output Transformer Name", L"UTF-8", Plain) /* chosen: the character encoding */ \
    X(Foreground, Color, L"Foreground", RGB(192, 192, 192), Plain) \
    X(Background, Color, L"Background", RGB(0, 0, 0), Plain) \
    X(Bold, Color, L"Bold", RGB(255, 255, 255), Plain) \
    X(ColorScheme, Text, L"Color Scheme", L"", Plain) /* chosen: empty, the three colours above */ \
    X(ColorSchemeOverridesAnsiColor, Flag, L"Color Scheme Overrides Ansi Color", false, Plain) \
    X(AnsiColor, Flag, L"ANSI Color", true, Plain) \
    X(AnsiColorRgb, ColorSet, L"ANSI Color RGB", ClassicAnsiColors(), Plain) \
    X(UseGlobalAnsiColors, Flag, L"Use Global ANSI Colors", true, Plain) \
    X(SgrZeroResetsAnsiColor, Flag, L"SGR Zero Resets ANSI Color", true, Plain) \
    X(CursorStyle, Number, L"Cursor Style", 0, Plain) \
    X(CursorColor, Color, L"Cursor Color", RGB(0, 255, 0), Plain) /* chosen: green, with "Use Cursor Color" */ \
    X(UseCursorColor, Flag, L"Use Cursor Color", false, Plain) \
    X(BlinkingCursor, Flag, L"Blinking Cursor", true, Plain) \
    X(KeypadMode, Flag, L"Keypad Mode", false, Plain) /* false: numeric keypad */ \
    X(CursorKeyMode, Flag, L"Cursor Key Mode", false, Plain) /* false: normal cursor keys */ \
    X(NewlineMode, Flag, L"Newline Mode", false, Plain) \
    X(LineWrap, Flag, L"Line Wrap", true, Plain) \
    X(ScoLineWrap, Flag, L"SCO Line Wrap", false, Plain) \
    X(LocalEcho, Flag, L"Local Echo", false, Plain) \
    X(Strip8thBit, Flag, L"Strip 8th Bit", false, Plain) \
    X(MapBackspace, Flag, L"Map Backspace", true, Plain) /* chosen: Backspace sends DEL (0x7F), as most hosts expect */ \
    X(MapDelete, Flag, L"Map Delete", false, Plain) /* false: Delete sends the VT220 remove sequence */ \
    X(EmacsMode, Flag, L"Emacs Mode", false, Plain) \
    X(EmacsMode8Bit, Flag, L"Emacs Mode 8 Bit", false, Plain) \
    X(PreserveAltGr, Flag, L"Preserve Alt-Gr", true, Plain) \
    X(UseAlternateKeyboard, Flag, L"Use Alternate Keyboard", false, Plain) \
    X(CuaCopyPaste, Flag, L"CUA Copy Paste", false, Plain) \
    X(DefaultScs, Number, L"Default SCS", 0, Plain) \
    X(DisplayTab, Flag, L"Display Tab", false, Plain) \
    X(DisplayTabString, Text, L"Display Tab String", L"\u00bb", Plain) /* chosen: a right guillemet marks a tab */ \
    X(AudioBell, Flag, L"Audio Bell", true, Plain) \
    X(VisualBell, Flag, L"Visual Bell", false, Plain) \
    X(JumpScroll, Flag, L"Jump Scroll", false, Plain) \
    X(MinimizeDrawingWhileJumpScrolling, Flag, L"Minimize Drawing While Jump Scrolling", false, Plain) \
    X(ScrollToBottomOnKeypress, Flag, L"Scroll To Bottom On Keypress", true, Plain) \
    X(ScrollToBottomOnOutput, Flag, L"Scroll To Bottom On Output", false, Plain) \
    X(ScrollToClear, Flag, L"Scroll To Clear", true, Plain) \
    X(HorizontalScrollbar, Flag, L"Horizontal Scrollbar", false, Plain) \
    X(VerticalScrollbar, Flag, L"Vertical Scrollbar", true, Plain) \
    X(ClearOnDisconnect, Flag, L"Clear On Disconnect", false, Plain) \
    X(CloseOnDisconnect, Flag, L"Close On Disconnect", false, Plain) \
    X(ShowChatWindow, Flag, L"Show Chat Window", false, Plain) \
    X(IsFullScreen, Flag, L"Is Full Screen", false, Plain) \
    X(WindowPlacement, Placement, L"Window Placement", {}, Plain) /* chosen: the window's own size */ \
    X(UsePosition, Flag, L"Use Position", false, Plain) \
    X(XPosition, Signed, L"X Position", 0, Plain) /* pixels */ \
    X(YPosition, Signed, L"Y Position", 0, Plain) \
    X(XPositionRelativeLeft, Flag, L"X Position Relative Left", true, Plain) \
    X(YPositionRelativeTop, Flag, L"Y Position Relative Top", true, Plain) \
    X(Enable80132ColumnSwitching, Flag, L"Enable 80-132 Column Switching", true, Renamed(L"Enable 80/132 Column Switching")) \
    X(Ignore80132ColumnSwitchingWhenMaximized, Flag, L"Ignore 80-132 Column Switching When Maximized or Full Screen", false, Plain) \
    X(EnableAlternateScreenSwitching, Flag, L"Enable Alternate Screen Switching", true, Plain) \
    X(EnableCursorKeyModeSwitching, Flag, L"Enable Cursor Key Mode Switching", true, Plain) \
    X(EnableKeypadModeSwitching, Flag, L"Enable Keypad Mode Switching", true, Plain) \
    X(EnableLineWrapModeSwitching, Flag, L"Enable Line Wrap Mode Switching", true, Plain) \
    X(ShiftForcesLocalMouseOperations, Flag, L"Shift Forces Local Mouse Operations", true, Plain) \
    X(IgnoreWindowTitleChangeRequests, Flag, L"Ignore Window Title Change Requests", false, Plain) \
    X(CopyTranslatesAnsiLineDrawingCharacters, Flag, L"Copy Translates ANSI Line Drawing Characters", false, Plain) \
    X(CopyToClipboardAsRtfAndPlainText, Flag, L"Copy to clipboard as RTF and plain text", false, Plain) \
    X(TranslateIncomingCrToCrlf, Flag, L"Translate Incoming CR To CRLF", false, Plain) \
    X(DumbTerminalIgnoresCrlf, Flag, L"Dumb Terminal Ignores CRLF", false, Plain) \
    X(UseSymbolicNamesForNonPrintableCharacters, Flag, L"Use Symbolic Names For Non-Printable Characters", false, Plain) \
    X(HardResetOnEscC, Flag, L"Hard Reset on ESC c", false, Plain) /* chosen: ESC c resets the modes, not the scrollback */ \
    X(IgnoreShiftOutSequence, Flag, L"Ignore Shift Out Sequence", false, Plain) \
    X(WaitForStringsIgnoresColor, Flag, L"WaitForStrings Ignores Color", false, Plain) \
    X(UserButtonBar, Flag, L"User Button Bar", false, Plain) \
    X(UserButtonBarName, Text, L"User Button Bar Name", L"Default", Plain) /* chosen */ \
    X(UserFontMap, Text, L"User Font Map", L"", Plain) /* chosen: none */ \
    X(UserLineDrawingMap, Text, L"User Line Drawing Map", L"", Plain) /* chosen: none */ \
    X(Keymap, Block, L"Keymap", {}, Plain) /* chosen: each keymap generation kept whole, as the client that wrote it left it */ \
    X(KeymapV2, Block, L"Keymap v2", {}, Plain) \
    X(KeymapV3, Block, L"Keymap v3", {}, Plain) \
    X(KeymapV4, Block, L"Keymap v4", {}, Plain) \
    X(KeymapName, Text, L"Keymap Name", L"", Plain) /* chosen: empty, the emulation's own keys */ \
    X(KeymapFilename, Text, L"Keymap Filename", L"", Plain) /* a file of the configuration folder's "Keymaps" */
// clang-format on
