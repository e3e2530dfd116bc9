#pragma once
// Where pictures of windows go: a folder, with the theme and the scale in the files' names. What windows show is left
// to the scenes.

#include <QDir>
#include <QImage>
#include <QString>
#include <QWidget>

/// Thread: the user interface's.
class PictureBook {
public:
  /// Throws std::runtime_error where the folder cannot be made.
  PictureBook(const QString& aFolder, const QString& aSuffix);

  /// Writes what a window shows as NAME and the suffix, as a small file. Throws std::runtime_error where it shows
  /// nothing, or the file cannot be written.
  void Save(QWidget& aWindow, const QString& aName);
  /// The same of a picture that was taken elsewhere.
  void Save(const QImage& aPicture, const QString& aName);
  int GetCount() const { return mCount; }

private:
  QDir mFolder;
  QString mSuffix;
  int mCount = 0;
};
