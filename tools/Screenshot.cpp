// traywell_screenshot: photographs the desktop it runs on (under Wine, the
// virtual desktop of scripts/run.sh) as a PNG file, optionally after opening
// Traywell's menu and typing into it.
//
//   traywell_screenshot [--menu] [--keys KEYS] [--crop menu|dialog] OUTPUT.png
//                       [PROGRAM [ARGUMENTS...]]
//
//   PROGRAM        start this first (Traywell), on the same desktop: under
//                  Wine a program joins a virtual desktop only by being
//                  started from a program already on it
//   --menu         open Traywell's menu first, exactly as a right click does
//   --keys KEYS    then type KEYS into the menu, one character each; "v" is
//                  the Down arrow, "^" Up, ">" Right, "!" Enter, anything
//                  else the character itself (an item's access key)
//   --crop menu    keep the open menu and the taskbar below and right of it
//   --crop dialog  keep only the dialog that Traywell shows (with a margin)
//
// Exit codes: 0 saved; 1 bad arguments or PROGRAM not started; 2 Traywell's
// icon, its menu or its dialog not found; 3 the picture not taken or saved.
#include <windows.h>

#include <wincodec.h>

#include <cwchar>
#include <vector>

#include "TrayIcon.h"
#include "VString.h"
#include "VUiHandle.h"
#include "Win32Handle.h"

namespace {

constexpr DWORD WaitMilliseconds = 20000;
constexpr DWORD SettleMilliseconds = 700;  // lets menus and dialogs finish drawing
constexpr int DialogMargin = 16;
constexpr int MenuMargin = 60;  // some desktop around the menu, for context

// Polls for a top-level window of className, of process when that is not 0,
// and visible when visible is set (the icon's window never is).
HWND WaitForWindow(const wchar_t* className, DWORD process, bool visible = true) {
    for (DWORD waited = 0; waited < WaitMilliseconds; waited += 50) {
        for (HWND window = FindWindowW(className, nullptr); window;
             window = FindWindowExW(nullptr, window, className, nullptr)) {
            DWORD owner = 0;
            GetWindowThreadProcessId(window, &owner);
            if ((!visible || IsWindowVisible(window)) && (process == 0 || owner == process))
                return window;
        }
        Sleep(50);
    }
    return nullptr;
}

void Type(HWND menuWindow, const wchar_t* keys) {
    for (const wchar_t* key = keys; *key; ++key) {
        const UINT virtualKey = *key == L'v'   ? VK_DOWN
                                : *key == L'^' ? VK_UP
                                : *key == L'>' ? VK_RIGHT
                                : *key == L'!' ? VK_RETURN
                                               : 0;
        if (virtualKey) {
            PostMessageW(menuWindow, WM_KEYDOWN, virtualKey, 0);
        } else {
            PostMessageW(menuWindow, WM_CHAR, *key, 0);
        }
        Sleep(150);
        // A submenu opens in a window of its own, which takes the next keys.
        if (HWND top = FindWindowW(L"#32768", nullptr)) menuWindow = top;
    }
}

// Writes the pixels (top-down BGRA rows) as a PNG file through the Windows
// Imaging Component.
bool SavePng(const wchar_t* path, int width, int height, std::vector<BYTE>& pixels) {
    IWICImagingFactory* factory = nullptr;
    if (FAILED(CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER,
                                IID_PPV_ARGS(&factory))))
        return false;
    IWICStream* stream = nullptr;
    IWICBitmapEncoder* encoder = nullptr;
    IWICBitmapFrameEncode* frame = nullptr;
    WICPixelFormatGUID format = GUID_WICPixelFormat32bppBGRA;
    const UINT stride = static_cast<UINT>(width) * 4;
    const bool saved =
        SUCCEEDED(factory->CreateStream(&stream)) &&
        SUCCEEDED(stream->InitializeFromFilename(path, GENERIC_WRITE)) &&
        SUCCEEDED(factory->CreateEncoder(GUID_ContainerFormatPng, nullptr, &encoder)) &&
        SUCCEEDED(encoder->Initialize(stream, WICBitmapEncoderNoCache)) &&
        SUCCEEDED(encoder->CreateNewFrame(&frame, nullptr)) &&
        SUCCEEDED(frame->Initialize(nullptr)) &&
        SUCCEEDED(frame->SetSize(static_cast<UINT>(width), static_cast<UINT>(height))) &&
        SUCCEEDED(frame->SetPixelFormat(&format)) &&
        IsEqualGUID(format, GUID_WICPixelFormat32bppBGRA) &&
        SUCCEEDED(frame->WritePixels(static_cast<UINT>(height), stride,
                                     stride * static_cast<UINT>(height), pixels.data())) &&
        SUCCEEDED(frame->Commit()) && SUCCEEDED(encoder->Commit());
    if (frame) frame->Release();
    if (encoder) encoder->Release();
    if (stream) stream->Release();
    factory->Release();
    return saved;
}

// Copies area of the screen into top-down BGRA rows, fully opaque.
bool Capture(const RECT& area, std::vector<BYTE>& pixels) {
    const int width = area.right - area.left;
    const int height = area.bottom - area.top;
    const HDC screen = GetDC(nullptr);
    if (!screen) return false;
    const HDC memory = CreateCompatibleDC(screen);
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = -height;  // top-down
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    info.bmiHeader.biCompression = BI_RGB;
    void* bits = nullptr;
    const GdiObjectHandle bitmap(
        CreateDIBSection(screen, &info, DIB_RGB_COLORS, &bits, nullptr, 0));
    bool copied = false;
    if (memory && bitmap) {
        const HGDIOBJ old = SelectObject(memory, bitmap.Get());
        copied = BitBlt(memory, 0, 0, width, height, screen, area.left, area.top, SRCCOPY) != 0;
        GdiFlush();
        SelectObject(memory, old);
    }
    if (copied) {
        const auto* source = static_cast<const BYTE*>(bits);
        pixels.assign(source, source + static_cast<size_t>(width) * height * 4);
        for (size_t i = 3; i < pixels.size(); i += 4)
            pixels[i] = 255;  // BitBlt leaves alpha undefined
    }
    if (memory) DeleteDC(memory);
    ReleaseDC(nullptr, screen);
    return copied;
}

// Starts program with the arguments that follow it; the process runs on.
bool Start(wchar_t** program, int count) {
    VUnicodeString commandLine;
    for (int i = 0; i < count; ++i) {
        if (i > 0) commandLine += L" ";
        commandLine += VUnicodeString(L"\"") + program[i] + L"\"";
    }
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process{};
    wchar_t* buffer = commandLine.GetBuffer(commandLine.GetLength());
    const BOOL started = CreateProcessW(program[0], buffer, nullptr, nullptr, FALSE, 0, nullptr,
                                        nullptr, &startup, &process);
    commandLine.ReleaseBuffer(commandLine.GetLength());
    if (!started) return false;
    const KernelHandle processHandle(process.hProcess);
    const KernelHandle threadHandle(process.hThread);
    return true;
}

RECT Grown(RECT rect, const RECT& bounds, int margin) {
    rect.left = rect.left - margin < bounds.left ? bounds.left : rect.left - margin;
    rect.top = rect.top - margin < bounds.top ? bounds.top : rect.top - margin;
    rect.right = rect.right + margin > bounds.right ? bounds.right : rect.right + margin;
    rect.bottom = rect.bottom + margin > bounds.bottom ? bounds.bottom : rect.bottom + margin;
    return rect;
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
    bool openMenu = false;
    const wchar_t* keys = L"";
    const wchar_t* crop = L"";
    const wchar_t* output = nullptr;
    for (int i = 1; i < argc; ++i) {
        if (std::wcscmp(argv[i], L"--menu") == 0) {
            openMenu = true;
        } else if (std::wcscmp(argv[i], L"--keys") == 0 && i + 1 < argc) {
            keys = argv[++i];
        } else if (std::wcscmp(argv[i], L"--crop") == 0 && i + 1 < argc) {
            crop = argv[++i];
        } else if (!output && argv[i][0] != L'-') {
            output = argv[i];
        } else if (output) {
            if (!Start(argv + i, argc - i)) return 1;
            break;
        } else {
            return 1;
        }
    }
    if (!output) return 1;

    const RECT screen{GetSystemMetrics(SM_XVIRTUALSCREEN), GetSystemMetrics(SM_YVIRTUALSCREEN),
                      GetSystemMetrics(SM_XVIRTUALSCREEN) + GetSystemMetrics(SM_CXVIRTUALSCREEN),
                      GetSystemMetrics(SM_YVIRTUALSCREEN) + GetSystemMetrics(SM_CYVIRTUALSCREEN)};
    RECT area = screen;
    DWORD traywell = 0;
    const HWND icon = WaitForWindow(TrayIcon::WindowClassName, 0, false);
    if (!icon) return 2;
    GetWindowThreadProcessId(icon, &traywell);
    if (openMenu) {
        // The menu opens where the mouse is: just above the icon, as after a
        // click on it, but not on it, where its tool tip would cover the menu.
        NOTIFYICONIDENTIFIER identifier{};
        identifier.cbSize = sizeof identifier;
        identifier.hWnd = icon;
        identifier.uID = TrayIcon::IconId;
        RECT iconRect{screen.right - 20, screen.bottom - 20, screen.right - 4, screen.bottom - 4};
        Shell_NotifyIconGetRect(&identifier, &iconRect);
        SetCursorPos((iconRect.left + iconRect.right) / 2, iconRect.top - 2);
        PostMessageW(icon, TrayIcon::CallbackMessage, TrayIcon::IconId, WM_RBUTTONUP);
        const HWND menu = WaitForWindow(L"#32768", 0);
        if (!menu) return 2;
        Sleep(SettleMilliseconds);
        Type(menu, keys);
    }
    Sleep(SettleMilliseconds);
    if (std::wcscmp(crop, L"menu") == 0) {
        if (!WaitForWindow(L"#32768", 0)) return 2;
        // The menu and any submenu open from it, each a window of its own.
        RECT rect{screen.right, screen.bottom, screen.right, screen.bottom};
        for (HWND menu = FindWindowW(L"#32768", nullptr); menu;
             menu = FindWindowExW(nullptr, menu, L"#32768", nullptr)) {
            RECT part;
            if (IsWindowVisible(menu) && GetWindowRect(menu, &part)) UnionRect(&rect, &rect, &part);
        }
        area = Grown(rect, screen, MenuMargin);
        area.right = screen.right;
        area.bottom = screen.bottom;
    } else if (std::wcscmp(crop, L"dialog") == 0) {
        const HWND dialog = WaitForWindow(L"#32770", traywell);
        if (!dialog) return 2;
        RECT rect;
        GetWindowRect(dialog, &rect);
        area = Grown(rect, screen, DialogMargin);
    }

    std::vector<BYTE> pixels;
    if (FAILED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) return 3;
    const bool saved = Capture(area, pixels) &&
                       SavePng(output, area.right - area.left, area.bottom - area.top, pixels);
    CoUninitialize();
    return saved ? 0 : 3;
}
