#pragma once
// The pictures of the browser's controls, drawn by code at the resolution of the screen.

#include <QImage>
#include <QRect>

class QColor;

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
/// 16 x 16: no feature is in error.
inline constexpr int kNoErrorBitmapID = 1171;

/// What a picture is going to lie on.
enum class BitmapGround { Light, Dark };

/// The picture of a number at a device pixel ratio, with alpha, so that edges are smooth on any ground; null for a
/// number that is not there. Where nothing is drawn, there is transparent white. Any thread.
QImage LoadBitmap(int aID, double aDevicePixelRatio = 1.0, BitmapGround aGround = BitmapGround::Light);
/// A part of a picture; aRect in device-independent pixels. Any thread.
QImage CutBitmap(const QImage& aBitmap, const QRect& aRect);
/// The picture without the pixels of a colour. Any thread.
QImage MakeTransparent(const QImage& aBitmap, const QColor& aColour);

} // namespace krgui
