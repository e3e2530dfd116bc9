#pragma once
// The serial bridges of a soak: one on a COM port, one published for the Camera Link functions, an echo behind both,
// and what comes and goes over them.

#include "bridgehost.h"
#include "cameralinkprogram.h"
#include "pseudoterminal.h"
#include "serialtraffic.h"

#include <memory>

class KrSerialBridgeManagerWnd;

/// Thread: the user interface's. Ownership: borrows the window, which outlives it. What fails throws
/// std::runtime_error.
class SoakBridges {
public:
  /// Saves in a file.
  SoakBridges(KrSerialBridgeManagerWnd& aManager, const std::string& aFile, std::uint32_t aSeed);

  /// Makes both by the open window's controls, and lets the traffic begin.
  void LinkByHand();
  /// Saves them in a file and loads them anew, with nothing under way.
  void SaveAndLoad();
  /// Ends the traffic when all that is under way has come back; begins it again.
  void Finish();
  void Resume();
  /// The device goes: ends the traffic at once, and the programs at the other ends.
  void Abandon();
  /// The device is back: as it was saved.
  void Restore();

  std::uint64_t GetBytes() const { return mPortTraffic.GetBytes() + mPublishedTraffic.GetBytes(); }
  int GetFailures() const { return mPortTraffic.GetFailures() + mPublishedTraffic.GetFailures(); }

private:
  void MakePort();
  void Open();
  void Save();
  void Load();
  std::string Exchange(const std::string& aBlock, const std::stop_token& aStop) const;

  KrSerialBridgeManagerWnd& mManager;
  krtest::BridgeHost mHost;
  std::unique_ptr<krtest::PseudoTerminal> mTerminal;
  CameraLinkProgram mProgram;
  const std::string mFile;
  SerialTraffic mPortTraffic;
  SerialTraffic mPublishedTraffic;
};
