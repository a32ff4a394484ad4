// The window protocol between Traywell and the client programs' main windows:
// their window classes and marks, the session query, and how the sessions lie
// in the shared buffer. The client side (and the test helper that plays it)
// uses this header too, so both read and write the same layout.
#pragma once

#include <windows.h>

#include <cstdint>

#include "IBuffer.h"
#include "VContainers.h"
#include "VString.h"

namespace ClientProtocol {

inline constexpr wchar_t TerminalWindowClass[] = L"Quillon Software - Termwright";
inline constexpr wchar_t TransferWindowClass[] = L"Filewright_MainFrame";
// A client's stand-alone connect dialog; while one is up the icon only brings it forward.
inline constexpr wchar_t ConnectDialogClass[] = L"Quillon Software Connect Dialog";

inline constexpr wchar_t TerminalName[] = L"Termwright";
inline constexpr wchar_t TransferName[] = L"Filewright";

// A client main window carries this exact value in its first window long
// (GetWindowLongW index 0) and a non-zero GWLP_USERDATA.
inline constexpr uint32_t MainWindowMark = 0x80000000u;

// The session query. With lParam 0 the window answers the size in bytes of its
// session data (0: none). With lParam = that size it opens the shared buffer
// (VMemoryMappedBuffer of that size, the default block), writes its sessions
// from the start and answers how many bytes it wrote. It must let go of the
// block before it answers, since Traywell makes a new one for the next window.
inline constexpr UINT SessionQueryMessage = WM_USER + 32;

// Session buffer layout: one UTF-16 (little-endian) string per session, each
// followed by one NUL character, with nothing between them. A string is
// "<session number>,<caption>". The byte count answered covers the last NUL.
// Reading is lenient: a last string without its NUL still counts, an odd
// trailing byte is ignored, and an empty string ends the list.

// The bytes that sessions take in the buffer.
size_t SessionDataSize(const VArray<VUnicodeString>& sessions);
// Appends sessions to buffer in the layout above. False (the buffer keeping
// what fitted) when the buffer has no room for all of them.
bool WriteSessions(IBuffer& buffer, const VArray<VUnicodeString>& sessions);
// The session strings in the first length bytes at data.
VArray<VUnicodeString> ReadSessions(const void* data, size_t length);

// Splits a session string at its first ",": the text before it is the session
// number when it is a plain decimal number of at most 0xFFFFFFFF (else 0), and
// the text after it, cut to MaxCaptionLength characters, is the caption. A
// string without a comma is all caption, with number 0.
inline constexpr size_t MaxCaptionLength = 30;
void SplitSession(const VUnicodeString& session, uint32_t& number, VUnicodeString& caption);

}  // namespace ClientProtocol
