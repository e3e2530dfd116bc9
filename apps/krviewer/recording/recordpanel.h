#pragma once
// Where a recording is asked for, started and stopped, and where what it comes to is shown. The recording is the
// recorder's, the words RecordingTexts'.

#include "recording/folderroom.h"
#include "recording/recorder.h"
#include "recording/recordsettings.h"

#include <QElapsedTimer>
#include <QPointer>
#include <QTimer>
#include <QWidget>

class QCheckBox;
class QComboBox;
class QFileDialog;
class QFormLayout;
class QLabel;
class QLineEdit;
class QProgressBar;
class QPushButton;
class QSpinBox;

namespace krviewer {

/// A recording goes on whether or not the panel is seen, and when it ends.
///
/// Thread: user interface. Ownership: borrows the recorder.
class RecordPanel : public QWidget {
  Q_OBJECT

public:
  /// aCamera is for proposed names, aDeviceID goes into the recordings.
  RecordPanel(Recorder& aRecorder, const QString& aCamera, const KrString& aDeviceID, QWidget* aParent = nullptr);

  /// Starts a recording as the controls say, or stops the one that runs.
  void StartOrStop();

  /// The camera is known otherwise from now on; a recording that runs goes on under the former name.
  void SetCamera(const QString& aCamera, const KrString& aDeviceID);
  /// Whether there is a camera of which a recording could be started.
  void SetCameraThere(bool aIsThere);

  /// What the controls say, to be kept; bytes that are no such state change nothing.
  QByteArray SaveState() const { return ReadControls().Save(); }
  void RestoreState(const QByteArray& aState);

protected:
  void showEvent(QShowEvent* aEvent) override;
  void hideEvent(QHideEvent* aEvent) override;

private:
  QSpinBox* AddNumber(QFormLayout& aForm, const QString& aLabel, const char* aName, int aMost, const QString& aSuffix,
                      const QString& aZeroText);
  void AddPlace(QFormLayout& aForm);
  void AddLimits(QFormLayout& aForm);
  void AddProgress(QFormLayout& aForm);
  void ProposeName();
  void Browse();
  RecordSettings ReadControls() const;
  void WriteControls(const RecordSettings& aSettings);
  void LookAgain();
  void ShowProgress(const RecordingProgress& aProgress);
  void ShowBars(const RecordingProgress& aProgress);
  void ShowFreeRoom(const RecordingProgress& aProgress);

  Recorder& mRecorder;
  QString mCamera;
  KrString mDeviceID;
  QTimer mTimer; ///< Runs while the panel is seen.
  QElapsedTimer mRoomAge;
  FolderRoom mFolderRoom;
  RecordSettings mStarted; ///< Of the recording that runs, or was the last.
  QString mProposedName;
  bool mWasBusy = false;
  bool mIsCameraThere = true;

  // Owned by Qt.
  QWidget* mSettings = nullptr; ///< All that is not to be changed while it records.
  QLineEdit* mFolder = nullptr;
  QLineEdit* mName = nullptr;
  QComboBox* mFormat = nullptr;
  QSpinBox* mMostFrames = nullptr;
  QSpinBox* mMostSeconds = nullptr;
  QSpinBox* mEveryNth = nullptr;
  QSpinBox* mMostDisk = nullptr;
  QSpinBox* mFreeDisk = nullptr;
  QSpinBox* mQueue = nullptr;
  QCheckBox* mIncomplete = nullptr;
  QPushButton* mButton = nullptr;
  QProgressBar* mDone = nullptr;
  QProgressBar* mFilled = nullptr;
  QLabel* mState = nullptr;
  QLabel* mWritten = nullptr;
  QLabel* mLosses = nullptr;
  QLabel* mRoom = nullptr;
  QPointer<QFileDialog> mDialog;
};

} // namespace krviewer
