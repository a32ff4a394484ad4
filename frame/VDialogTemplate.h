// VDialogTemplate: a dialog template built in memory, for dialogs of a static
// library (a template resource in a static library would be dropped by the
// linker, since nothing references it). Sizes are in dialog units; the font
// is "MS Shell Dlg", 8 points.
#pragma once

#include <windows.h>

#include <cstdint>
#include <vector>

class VDialogTemplate {
public:
    // A dialog with caption, width by height dialog units, and style (DS_SETFONT
    // is always added). The default style is a centred modal frame with a caption
    // and a system menu.
    VDialogTemplate(const wchar_t* caption, short width, short height,
                    DWORD style = DS_MODALFRAME | DS_CENTER | WS_POPUP | WS_CAPTION | WS_SYSMENU);

    // Appends a control of window class className ("Button", "Static",
    // WC_LISTVIEWW, ...) with text, identifier id, place and size, and style
    // (WS_CHILD | WS_VISIBLE are always added). Controls keep the order added.
    void AddControl(const wchar_t* className, const wchar_t* text, WORD id, short x, short y,
                    short width, short height, DWORD style, DWORD extendedStyle = 0);

    // The template, valid until the next AddControl or the object's end.
    const DLGTEMPLATE* Get() const { return reinterpret_cast<const DLGTEMPLATE*>(words_.data()); }

private:
    void AppendText(const wchar_t* text);
    void AlignToDword();

    std::vector<uint16_t> words_;  // the template is WORD-based, DWORD-aligned per item
};
