#pragma once
// A palette as dark desktops have it.

#include <QPalette>

namespace krgui {

inline QPalette MakeDarkPalette() {
  QPalette palette(QColor(0x31, 0x36, 0x3B), QColor(0x31, 0x36, 0x3B));
  palette.setColor(QPalette::Base, QColor(0x23, 0x26, 0x29));
  palette.setColor(QPalette::Text, QColor(0xEF, 0xF0, 0xF1));
  palette.setColor(QPalette::WindowText, QColor(0xEF, 0xF0, 0xF1));
  palette.setColor(QPalette::Highlight, QColor(0x3D, 0xAE, 0xE9));
  palette.setColor(QPalette::HighlightedText, QColor(0xFC, 0xFC, 0xFC));
  palette.setColor(QPalette::Disabled, QPalette::Text, QColor(0x65, 0x68, 0x6A));
  return palette;
}

} // namespace krgui
