#pragma once
// The pictures of the browser's controls, drawn by code at the resolution of the screen.

#include <QImage>

namespace krgui {

inline constexpr int kOptionsBitmapID = 1160;
inline constexpr int kExpandBitmapID = 1161;
inline constexpr int kCollapseBitmapID = 1162;
inline constexpr int kRefreshBitmapID = 1163;
/// The same in the same order, for a button that cannot be pressed.
inline constexpr int kDisabledOptionsBitmapID = 1164;
inline constexpr int kDisabledExpandBitmapID = 1165;
inline constexpr int kDisabledCollapseBitmapID = 1166;
inline constexpr int kDisabledRefreshBitmapID = 1167;
/// A strip of the closed and the open category's glyph, 9 x 9 each.
inline constexpr int kGlyphsBitmapID = 1168;
/// 16 x 16, with alpha.
inline constexpr int kErrorBitmapID = 1169;
/// A strip of the four tool pictures, 64 x 16.
inline constexpr int kToolsBitmapID = 1170;

/// The picture of a number at a device pixel ratio, on white but where it has alpha; null for a number that is not
/// there.
QImage LoadBitmap(int aID, double aDevicePixelRatio = 1.0);

} // namespace krgui
