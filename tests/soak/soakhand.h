#pragma once
// The hand of a soak: does at random what users, applications and cables do with all that is at the station.

#include "randomuser.h"
#include "soakdice.h"

#include <array>
#include <cstdint>

class SoakRecords;
class SoakStation;
class Watchdog;

/// Thread: the user interface's. Ownership: borrows all that it is given. What fails throws std::runtime_error.
class SoakHand {
public:
  SoakHand(SoakStation& aStation, SoakRecords& aRecords, Watchdog& aWatchdog, std::uint32_t aSeed);

  /// Does one deed, and lets what comes of it happen for a few moments.
  void Step();

private:
  struct Deed {
    const char* name;
    int weight;
    void (SoakHand::*act)();
  };
  static const std::array<Deed, 15> kDeeds;

  void ReopenWindow();
  void UseDisplay();
  void UseFinder();
  void UseTerminal();
  void UseBrowser();
  void SearchBrowser();
  void SaveBrowser();
  void ChangeFormat();
  void RestoreSettings();
  void UseCameraBridge();
  void UseManagers();
  void LoseFrames();
  void SaveBridges();
  void LoseCamera();
  void SilenceCamera();
  void Linger(int aMostMs);

  SoakStation& mStation;
  SoakRecords& mRecords;
  Watchdog& mWatchdog;
  SoakDice mDice;
  std::array<RandomUser, 2> mUsers; ///< Of the displays.
};
