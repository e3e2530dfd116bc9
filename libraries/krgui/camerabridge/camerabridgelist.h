#pragma once
// The camera bridges of a device, one for each of its serial ports, with what the window shows of each: made, saved,
// loaded and read back. What the user does with one is left to the window.

#include "krbase/krresult.h"
#include "krbase/krstringlist.h"
#include "krcamerabridge/krcamerabridge.h"
#include "krcamerabridge/krcamerabridgeset.h"
#include "krgenicam/krgensettings.h"
#include "krserial/krdeviceserial.h"
#include "logic/camerabridge/camerabridgestate.h"

#include <cstdint>
#include <memory>
#include <mutex>
#include <stop_token>
#include <utility>
#include <vector>

class KrConfigurationReader;
class KrConfigurationWriter;
class KrDevice;
class KrGenParameterArray;
class KrStream;

namespace krgui {

/// Asks a camera what the browser will ask it, so that the browser need not wait for it. False where aProgress or
/// aStop, which also ends the access that is under way, ended it. Thread: any but the user interface's.
bool ReadParameters(KrGenParameterArray& aParameters, const KrGenProgress& aProgress, const std::stop_token& aStop);

/// What the window shows of a bridge besides its lists; nothing at first.
struct CameraBridgeTexts {
  KrString driverTemplate;
  KrString xmlID;
  KrString path; ///< Of the camera file.
  KrString probeStatus;
  KrString status;
};

/// A port's bridge.
struct CameraBridgeEntry {
  KrDeviceSerial port = KrDeviceSerial::Invalid;
  std::unique_ptr<KrCameraBridge> bridge;
  CameraBridgeKind kind = CameraBridgeKind::None;
  KrStringList templates = {}; ///< Whole, in the order of the window's list.
  KrStringList xmlIDs = {};    ///< The same, of CL Protocol after a probe, or of GenCP.
  CameraBridgeTexts texts = {};

  /// Of another kind, with nothing to show yet. The bridge is to be disconnected before.
  void Reset(CameraBridgeKind aKind);
  void UpdateStatus();
  /// What the bridge is connected with, whoever connected it; the kind stays where it is not connected.
  void ReadBack();
};

/// Bridges that nobody uses any more, on their way to their end. Thread: any.
class EndingBridges {
public:
  explicit EndingBridges(std::vector<CameraBridgeEntry> aEntries) : mEntries(std::move(aEntries)) {}

  bool AreNone() const;
  /// Disconnects the cameras and ends the bridges; returns when none of them uses its device any more.
  void End();
  /// Ends what of this waits for a camera just now.
  void Hurry();
  /// The same as End where nobody can be shown that it waits: all cameras at once, and those that do not answer are
  /// soon given up as they are. The accesses to the device that run are waited for.
  void EndSoon();

private:
  void Forget();

  mutable std::mutex mMutex; ///< Guards the list; nobody but End and EndSoon takes bridges out of it.
  std::vector<CameraBridgeEntry> mEntries;
};

/// Thread: user interface; Load and Save any other, while nobody else uses the bridges. Ownership: owns the bridges;
/// device and stream are borrowed.
class CameraBridgeList {
public:
  using Entries = std::vector<CameraBridgeEntry>;

  /// Ends the bridges, without asking the user for patience.
  ~CameraBridgeList();
  CameraBridgeList() = default;
  CameraBridgeList(const CameraBridgeList&) = delete;
  CameraBridgeList& operator=(const CameraBridgeList&) = delete;

  void SetStream(KrStream* aStream) { mStream = aStream; }
  /// Another device, whose bridges are to be made; null for none. Gives those of the one before, which are to be ended.
  [[nodiscard]] Entries SetDevice(KrDevice* aDevice);
  KrDevice* GetDevice() const { return mDevice; }
  /// Makes the bridges of the device's ports.
  void MakeEntries(const std::vector<KrDeviceSerial>& aPorts);
  /// Whether there is a device whose bridges have not been made.
  bool IsWithoutPorts() const { return mDevice && !mHasPorts; }

  Entries& GetEntries() { return mEntries; }
  /// Null where the device has no such port.
  CameraBridgeEntry* Find(KrDeviceSerial aPort);
  /// Another one each time that there is another device, or that the entries begin anew.
  std::uint64_t GetGeneration() const { return mGeneration; }
  /// What was under way with the entries is about something else from now on.
  void BeginAnew() { ++mGeneration; }

  /// Stores all bridges that are connected, and their index. The first failure of one of them, or of the index. Aborted
  /// where aProgress ends it.
  KrResult Save(KrConfigurationWriter& aWriter, const KrGenProgress& aProgress);
  /// Loads the bridges of the index; the entries are to be read back afterwards. The first failure; NotFound also for a
  /// port that the device lacks. Aborted where aProgress ends it.
  KrResult Load(const KrConfigurationReader& aReader, KrStringList& aErrors, const KrGenProgress& aProgress);
  void ReadBack();
  /// Ends the calls of all bridges that wait. Thread: any, while no entries are made.
  void Cancel();

private:
  std::vector<KrCameraBridgeAtPort> GetBridges() const;

  KrDevice* mDevice = nullptr;
  KrStream* mStream = nullptr;
  Entries mEntries;
  bool mHasPorts = false; ///< The device's are known.
  std::uint64_t mGeneration = 0;
};

} // namespace krgui
