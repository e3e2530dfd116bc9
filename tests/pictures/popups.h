#pragma once
// Pictures of what is only there while it is used: menus, lists and tooltips. Apart from scenes' other pieces, which tests
// without pictures use.

#include "picturebook.h"

#include <QPoint>
#include <QString>
#include <QWidget>

#include <functional>

namespace scene {

/// Saves the menu or list that something opens, and closes it again.
void SavePopup(PictureBook& aBook, const QString& aName, const std::function<void()>& aOpen);

/// Saves the tooltip of a place in a widget.
void SaveToolTip(PictureBook& aBook, const QString& aName, QWidget& aWidget, const QPoint& aPoint);

} // namespace scene
