#pragma once
// Where pictures of windows go: a folder, with the theme and the scale in the files' names. What windows show is left
// to the scenes.

#include <QDir>
#include <QImage>
#include <QString>
#include <QStringList>
#include <QWidget>

/// Thread: the user interface's.
class PictureBook {
public:
  /// Throws std::runtime_error where the folder cannot be made.
  PictureBook(const QString& aFolder, const QString& aSuffix);

  /// Writes what a window shows as NAME and the suffix, as a small file, and notes which of its texts cannot be read.
  /// Throws std::runtime_error where it shows nothing, or the file cannot be written.
  void Save(QWidget& aWindow, const QString& aName);
  /// The same of a picture that was taken elsewhere.
  void Save(const QImage& aPicture, const QString& aName);
  int GetCount() const { return mCount; }
  /// What could not be read of the windows, each with the picture's name.
  const QStringList& GetFaults() const { return mFaults; }

private:
  QDir mFolder;
  QString mSuffix;
  QStringList mFaults;
  int mCount = 0;
};
