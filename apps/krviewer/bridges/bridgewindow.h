#pragma once
// A window of bridges on the device's ports, of whichever kind: they run while the device is there, whether the window
// is open or not, are taken up again when a device that was lost is back, and are saved to files and loaded from them.
// The bridges and the window itself are the library's; how each kind is told to the library is left to the classes
// derived from this one.

#include "bridges/devicewindow.h"
#include "bridges/keptbridges.h"
#include "bridges/setupfile.h"
#include "krbase/krresult.h"
#include "krbase/krstringlist.h"

#include <functional>

namespace krviewer {

/// What there is to tell of a setup.
enum class BridgeNews {
  NotTakenUp,   ///< Some bridges could not be taken up when the device came.
  NotLoaded,    ///< The file cannot be used; nothing has changed.
  NotAllLoaded, ///< Some bridges of it did not start.
  NotSaved,     ///< No file was written.
  NotAllSaved,  ///< Some bridges are not in it whole.
};

/// Thread: user interface.
class BridgeWindow : public DeviceWindow {
public:
  /// Told line by line; must not run a loop of its own.
  using Tell = std::function<void(BridgeNews aNews, const KrStringList& aLines)>;

  void SetTell(Tell aTell) { mTell = std::move(aTell); }
  /// To be called often: notices what the user changes, and what has come to its end.
  virtual void LookAgain();
  /// Whether there is anything to show.
  virtual bool IsOffered() { return HasDevice(); }
  /// Why the window would be opened in vain; OK where it would not.
  virtual KrResult CheckShowing() { return {}; }
  /// Whether bridges are asked to load or save at the moment, so that nothing else can be.
  virtual bool IsWorking() const { return false; }
  /// The setup's file, on whose disk nothing waits.
  const SetupFile& GetFile() const { return mFile; }

  /// Reads a setup from a file and starts its bridges in the place of those that are there, as soon as the file is
  /// read; without a device they start when it comes. Neither another file nor the bridges may be at work.
  void LoadSetup(const KrString& aFileName);
  /// Writes the setup to a file: what is set up now, with the bridges that have not started, or what starts when the
  /// device comes. The same rules.
  void SaveSetup(const KrString& aFileName);
  /// Sees whether the file is used up, in any loop.
  void FollowFile();
  /// Waits until what is saved is written.
  void AwaitWritten() { mFile.AwaitWritten(); }
  /// Does not wait any longer for a disk that does not answer: what is not written yet is told as not saved.
  void LeaveFile();

protected:
  explicit BridgeWindow(const KeptBridgeRules& aRules) : mKept(aRules) {}

  /// Gives the library the device. In a window that is open it may run a loop, after which the device may have gone.
  virtual KrResult SetUp(LentDevice& aDevice) = 0;
  /// Takes the device back; returns when no bridge uses it any more, also of a second call from a loop that the first
  /// one runs.
  virtual void TakeOut() = 0;
  /// What is set up, without asking anybody for it; nothing without a device.
  virtual KrPropertyList GetNow() = 0;
  /// The ports of the device; none of one that did not answer.
  virtual KeptBridges::Ports GetPorts() = 0;
  /// Starts these, and calls NoteStart then, at once or later.
  virtual void Start(const KrPropertyList& aWanted, BridgeNews aNews) = 0;
  /// Between a file and the list of bridges that is kept.
  virtual KrResult ReadSetup(const KrConfigurationReader& aReader, KrPropertyList& aBridges) = 0;
  virtual KrResult WriteSetup(const KrPropertyList& aBridges, KrConfigurationWriter& aWriter) = 0;
  /// Writes what is set up now, at once or later; by default as GetNow has it.
  virtual void SaveNow(const KrString& aFileName) { WriteFile(aFileName, GetNow()); }

  /// The bridges were started as far as it was possible; what could not be done is told.
  void NoteStart(BridgeNews aNews, const KrStringList& aErrors);
  /// Writes these, and those that have not started.
  void WriteFile(const KrString& aFileName, const KrPropertyList& aNow);
  void TellLines(BridgeNews aNews, const KrStringList& aLines) const;
  void TellFailure(BridgeNews aNews, const KrResult& aResult) const;

private:
  void TakeDevice(LentDevice& aDevice) override;
  void DropDevice() override;
  void TakeSetup(const KrResult& aResult, const KrConfigurationReader& aContent);
  void StartWanted(BridgeNews aNews);
  void WriteSetupFile(const KrString& aFileName, const KrPropertyList& aBridges);

  KeptBridges mKept;
  bool mIsKept = false; ///< The device is being taken out.
  Tell mTell;
  SetupFile mFile;
};

} // namespace krviewer
