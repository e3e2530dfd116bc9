#pragma once
// Texts on their way between the libraries and the toolkit. Nothing is formatted or translated here.

#include "krbase/krstring.h"

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

} // namespace krgui
