#pragma once
// Texts on their way between the libraries and the toolkit. Nothing is formatted or translated here.

#include "krbase/krstring.h"

#include <QByteArray>
#include <QString>

#include <string>

namespace krgui {

/// Any thread.
inline QString ToQString(const KrString& aText) {
  return QString::fromUtf8(aText.CStr(), static_cast<qsizetype>(aText.GetLength()));
}

/// Any thread.
inline KrString ToKrString(const QString& aText) {
  return KrString(aText.toStdU16String());
}

/// The text byte by byte, as an item of a list keeps it: one that is no text as it should be stays as it is. Any
/// thread.
inline QByteArray ToItemData(const KrString& aText) {
  return QByteArray::fromStdString(aText.ToUtf8());
}

/// Any thread.
inline KrString FromItemData(const QByteArray& aData) {
  return KrString(aData.toStdString());
}

} // namespace krgui
