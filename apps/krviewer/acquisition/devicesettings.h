#pragma once
// Saves all settings of a camera to a file, and sets the camera as a file says. The files' shape and the order of the
// settings are the library's; which camera it is, and what becomes of the stream meanwhile, the acquisition's.

#include "acquisition/devicework.h"
#include "krbase/krstringlist.h"

#include <QObject>
#include <QString>

#include <atomic>
#include <functional>
#include <memory>

class QWidget;

namespace krviewer {

/// Thread: user interface. Ownership: borrows the page over which it asks. Nothing waits for the user.
class DeviceSettings : public QObject {
  Q_OBJECT

public:
  using Do = std::function<void(DeviceWork aWork)>;
  /// What came of it, and what of it could not be done.
  using Tell = std::function<void(const QString& aWhat, const KrStringList& aProblems)>;

  DeviceSettings(QWidget& aPage, Do aDo, Tell aTell);
  /// Ends what is under way.
  ~DeviceSettings() override;

  bool IsWorking() const { return mEnd != nullptr; }
  void AskForLoading() { AskForFile(false); }
  void AskForSaving() { AskForFile(true); }
  void Load(const QString& aFile);
  void Save(const QString& aFile);
  /// Ends what is under way; nothing is told of it.
  void End();

private:
  struct Outcome;
  using Work = KrResult (*)(KrGenParameterArray& aParameters, const KrString& aFile, Outcome& aOutcome);

  void AskForFile(bool aIsToSave);
  void Run(const QString& aFile, Work aWork, const QString& aDone, const QString& aNotDone);

  QWidget& mPage;
  const Do mDo;
  const Tell mTell;
  std::shared_ptr<std::atomic<bool>> mEnd; ///< Of what is under way: whether it is to end. Null while nothing is.
};

} // namespace krviewer
