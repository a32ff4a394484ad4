#include "VDialogTemplate.h"

#include <cwchar>

namespace {

constexpr wchar_t FontName[] = L"MS Shell Dlg";
constexpr uint16_t FontPoints = 8;

// DLGTEMPLATE's cdit: the number of controls, the fifth WORD of the template.
constexpr size_t ControlCountIndex = 4;

}  // namespace

VDialogTemplate::VDialogTemplate(const wchar_t* caption, short width, short height, DWORD style) {
    style |= DS_SETFONT;
    const DWORD extendedStyle = 0;
    words_ = {LOWORD(style),
              HIWORD(style),
              LOWORD(extendedStyle),
              HIWORD(extendedStyle),
              0,  // controls, counted by AddControl
              0,
              0,
              static_cast<uint16_t>(width),
              static_cast<uint16_t>(height),
              0,   // no menu
              0};  // the predefined dialog class
    AppendText(caption);
    words_.push_back(FontPoints);
    AppendText(FontName);
}

void VDialogTemplate::AddControl(const wchar_t* className, const wchar_t* text, WORD id, short x,
                                 short y, short width, short height, DWORD style,
                                 DWORD extendedStyle) {
    style |= WS_CHILD | WS_VISIBLE;
    AlignToDword();  // each DLGITEMTEMPLATE starts on a DWORD boundary
    words_.insert(words_.end(),
                  {LOWORD(style), HIWORD(style), LOWORD(extendedStyle), HIWORD(extendedStyle),
                   static_cast<uint16_t>(x), static_cast<uint16_t>(y), static_cast<uint16_t>(width),
                   static_cast<uint16_t>(height), id});
    AppendText(className);
    AppendText(text);
    words_.push_back(0);  // no creation data
    ++words_[ControlCountIndex];
}

void VDialogTemplate::AppendText(const wchar_t* text) {
    if (text) words_.insert(words_.end(), text, text + wcslen(text));
    words_.push_back(0);
}

void VDialogTemplate::AlignToDword() {
    if (words_.size() % 2 != 0) words_.push_back(0);
}
