#pragma once
// Saves the frame that is shown, by a dialog that says where and how. How files look is krapps::WriteFrame's.

#include "acquisition/newestframe.h"
#include "backgroundcall.h"
#include "framefile.h"

#include <QByteArray>
#include <QObject>
#include <QPointer>
#include <QStringList>
#include <QTimer>

#include <atomic>
#include <cstdint>
#include <deque>
#include <memory>

class QFileDialog;
class QWidget;

namespace krviewer {

/// Thread: user interface; files are written on a thread of its own. What was accepted is written in any case:
/// destruction waits for it.
/// Ownership: borrows the frame's keeper.
class FrameSaver : public QObject {
  Q_OBJECT

public:
  /// aCamera is for proposed names, aDeviceID goes into the files.
  FrameSaver(const NewestFrame& aFrames, const QString& aCamera, const KrString& aDeviceID);
  ~FrameSaver() override;

  /// The camera is known otherwise from now on.
  void SetCamera(const QString& aCamera, const KrString& aDeviceID);
  /// Whether a whole frame has come, so that there is something to save.
  bool HasFrame() const { return mFrames.HasFrame(); }
  /// Opens the dialog for the newest whole frame as it is now, whatever comes while the user thinks about it. One that
  /// is open already comes forward.
  void Ask(QWidget* aParent);
  /// Writes a frame in the format that the name's extension says, else in the one used last.
  void Save(std::shared_ptr<const KrBuffer> aFrame, const QString& aFile, QWidget* aParent);
  bool IsBusy() const { return mCall.IsRunning() || !mJobs.empty(); }
  /// Nothing is asked any more, and failures are kept rather than shown. What was accepted is still written.
  void End();
  /// Sees whether it is; the timer does that where a loop runs.
  void Follow() { mCall.Follow(); }
  /// Returns when it is.
  void AwaitWritten();
  /// Changes as files get on, within a file, too.
  std::uint64_t GetDone() const { return mDone + (mJob ? mJob->bytesDone.load() : 0); }
  /// Does not wait any longer for a disk that does not answer: what is not written yet is a failure. After the end.
  void Leave();
  /// Why frames could not be written after the end.
  const QStringList& GetFailures() const { return mFailures; }

  /// Folder and format used last, to be kept; bytes that are no such state change nothing.
  QByteArray SaveState() const;
  void RestoreState(const QByteArray& aState);

Q_SIGNALS:
  /// In words for a status bar.
  void Saved(const QString& aText);

private:
  struct Job {
    std::shared_ptr<const KrBuffer> frame;
    krapps::FrameFileOptions options;
    QPointer<QWidget> parent; ///< Of a message, should it fail.
    KrResult result;
    std::atomic<std::uint64_t> bytesDone = 0;
  };

  void OpenDialog(const std::shared_ptr<const KrBuffer>& aFrame, const QString& aName, QWidget* aParent);
  void OnAccepted(const std::shared_ptr<const KrBuffer>& aFrame, QWidget* aParent);
  void SetFormat(int aRow);
  void StartNext();
  void Tell(const Job& aJob);

  const NewestFrame& mFrames;
  QString mCamera;
  KrString mDeviceID;
  QPointer<QFileDialog> mDialog;
  QString mFolder;
  krapps::FrameFileFormat mFormat = krapps::FrameFileFormat::TIFF;
  std::deque<std::shared_ptr<Job>> mJobs; ///< Those that wait.
  std::shared_ptr<Job> mJob;              ///< The one that is at work, for its thread, too; null without one.
  BackgroundCall mCall;
  QTimer mTimer; ///< Runs while a file is written.
  QStringList mFailures;
  std::uint64_t mDone = 0; ///< Bytes and files of the jobs before.
  bool mIsEnded = false;
};

} // namespace krviewer
