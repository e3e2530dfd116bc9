#pragma once
// The cameras that were shown last, by which a user comes back to them. Where they are kept is the settings'.

#include <QList>
#include <QString>

namespace krviewer {

struct RecentCamera {
  QString id;   ///< Names the device among all.
  QString name; ///< As it was listed when it was shown.
  friend bool operator==(const RecentCamera&, const RecentCamera&) = default;
};

/// The latest first, each once, no more than eight. Thread: one.
class RecentCameras {
public:
  static constexpr qsizetype kMost = 8;
  /// Longer texts are none of a device.
  static constexpr qsizetype kMostLetters = 400;

  /// A camera was shown. One without an ID, or with a text that is too long, is not taken.
  void Add(const RecentCamera& aCamera);
  /// The camera of this ID is known otherwise, and stands where it stood; nothing where it is none of them.
  void Replace(const QString& aFormerID, const RecentCamera& aCamera);
  void Clear() { mCameras.clear(); }
  const QList<RecentCamera>& GetAll() const { return mCameras; }

private:
  QList<RecentCamera> mCameras;
};

} // namespace krviewer
