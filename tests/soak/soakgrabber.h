#pragma once
// The camera behind a frame grabber, in the manager of camera bridges: connected by hand once, then as it was saved.

#include "soakdice.h"
#include "soaklab.h"

#include <cstdint>
#include <string>

class KrCameraBridgeManagerWnd;

/// Thread: the user interface's. Ownership: borrows window and frame grabber. What fails throws std::runtime_error.
class SoakGrabber {
public:
  /// Saves in a file.
  SoakGrabber(KrCameraBridgeManagerWnd& aManager, LabCamera& aGrabber, const std::string& aFile);

  /// Connects the camera by the open window's controls, and has its parameters carried to the frame grabber.
  void ConnectByHand();
  /// Sets values of the camera, reads them back, and waits until the frame grabber has them.
  void Exchange(SoakDice& aDice);
  void SaveAndLoad();
  /// The frame grabber goes: takes it out. It is back: as it was saved.
  void Abandon();
  void Restore();

  /// Values that came back as they were set.
  std::uint64_t GetExchanges() const { return mExchanges; }

private:
  void Save();
  void Load();

  KrCameraBridgeManagerWnd& mManager;
  LabCamera& mGrabber;
  const std::string mFile;
  std::uint64_t mExchanges = 0;
};
