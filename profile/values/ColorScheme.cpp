#include "ColorScheme.h"

ColorScheme::ColorScheme()
    : cbSize(sizeof(ColorScheme)),
      foreground(RGB(192, 192, 192)),
      background(RGB(0, 0, 0)),
      boldForeground(RGB(255, 255, 255)),
      boldBackground(RGB(0, 0, 0)),
      ansi{RGB(0, 0, 0),       RGB(128, 0, 0),   RGB(0, 128, 0),   RGB(128, 128, 0),
           RGB(0, 0, 128),     RGB(128, 0, 128), RGB(0, 128, 128), RGB(192, 192, 192),
           RGB(128, 128, 128), RGB(255, 0, 0),   RGB(0, 255, 0),   RGB(255, 255, 0),
           RGB(0, 0, 255),     RGB(255, 0, 255), RGB(0, 255, 255), RGB(255, 255, 255)} {}
