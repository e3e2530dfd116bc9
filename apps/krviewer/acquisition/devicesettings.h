#pragma once
// Saves all settings of a camera to a file, and sets the camera as a file says. The files' shape and the order of the
// settings are the library's; which camera it is, and what becomes of the stream meanwhile, the acquisition's.

#include "acquisition/devicework.h"
#include "krbase/krstringlist.h"

#include <QObject>
#include <QString>

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

  /// What is begun, to be said until it is told what came of it.
  using Announce = std::function<void(const QString& aWhat)>;

  DeviceSettings(QWidget& aPage, Do aDo, Announce aAnnounce, Tell aTell);
  /// Ends what is under way.
  ~DeviceSettings() override;

  bool IsWorking() const { return mControl != nullptr; }
  /// What is under way, and how far it has come.
  QString GetProgressText() const;
  /// Ends what is under way soon; what came of it is told.
  void Cancel();
  void AskForLoading();
  void AskForSaving();
  void Load(const QString& aFile);
  void Save(const QString& aFile);
  /// Ends what is under way; nothing is told of it.
  void End();

private:
  struct Control;
  struct Outcome;
  using Work = KrResult (*)(KrGenParameterArray& aParameters, const KrString& aFile, Outcome& aOutcome);

  /// What is said of a work.
  struct Words {
    QString doing;
    QString done;
    QString notDone;
  };
  void Run(const QString& aFile, Work aWork, const Words& aWords);

  QWidget& mPage;
  const Do mDo;
  const Announce mAnnounce;
  const Tell mTell;
  QString mDoing;
  std::shared_ptr<Control> mControl; ///< Of what is under way; null while nothing is.
};

} // namespace krviewer
