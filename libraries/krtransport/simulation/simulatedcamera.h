#pragma once
// One camera of the lab, of whatever kind: its registers, who controls it, and whether it is there at all. What
// discovery sees of it is left to its device, frames to the buffer source of the link that controls it.

#include "krsystem/itransport.h"
#include "simulation/cameraclock.h"
#include "simulation/cameramemory.h"
#include "simulation/orderedfaults.h"
#include "simulation/serial/serialports.h"

#include <memory>
#include <mutex>
#include <vector>

namespace krtransport {

/// Hears of what happens to a camera. The calls come with a lock of the camera's held: they set flags and wake threads.
class ICameraListener {
public:
  virtual ~ICameraListener() = default;
  virtual void OnCameraLost(const KrResult& aReason) = 0;
  virtual void OnCameraBack() = 0;
  /// A register was written.
  virtual void OnCameraChanged() = 0;
};

/// Thread: any. Ownership: shared by the transport and the links to it.
class SimulatedCamera {
public:
  SimulatedCamera(const LabGEVCamera& aCamera, std::shared_ptr<ICameraClock> aClock);
  SimulatedCamera(const LabU3VCamera& aCamera, std::shared_ptr<ICameraClock> aClock);

  /// What messages call it.
  const KrString& GetName() const { return mName; }
  /// Whether the camera answers.
  bool IsPresent() const;
  IPConfiguration GetIPConfiguration() const;
  /// The ways of addressing that are switched on.
  std::uint32_t GetIPConfigCurrent() const;
  KrString GetUserDefinedName() const;
  krsystem::AccessType GetAccessType() const;
  /// Busy while an application controls the camera.
  KrResult ConfigureIP(const IPConfiguration& aConfiguration);

  /// Opens the camera for a listener, which hears of it from then on. AccessDenied while another link controls it
  /// or somebody else does, or openings are ordered to be refused, NotFound for a camera that is not there.
  KrResult Attach(krsystem::DeviceAccess aAccess, ICameraListener& aListener);
  /// Gives back what Attach gave; no call of the listener is running or comes afterwards.
  void Detach(ICameraListener& aListener);
  /// Accesses of an attached link. A monitor may not write, nor read while the control is exclusive.
  KrResult Read(const ICameraListener& aListener, std::uint64_t aAddress, void* aData, std::size_t aLength);
  KrResult Write(const ICameraListener& aListener, std::uint64_t aAddress, const void* aData, std::size_t aLength);

  /// Whether a link controls the camera.
  bool IsControlledBy(const ICameraListener& aListener) const;
  ICameraClock& GetClock() { return *mClock; }
  OrderedFaults& GetFaults() { return mFaults; }
  SerialPorts& GetSerialPorts() { return mSerialPorts; }

  std::uint64_t GetPayloadSize() const;
  /// Starts the controlling link's stream; AccessDenied for any other.
  KrResult BeginStream(const ICameraListener& aListener);
  /// Ends the stream of the controlling link; of any other, nothing.
  void EndStream(const ICameraListener& aListener);
  /// The exposure that is due next; nothing while none is, as of now.
  std::optional<Exposure> GetNextExposure() const;
  /// Takes the frame of an exposure for the controlling link; nothing when acquisition was stopped meanwhile.
  std::optional<FrameSettings> EndExposure(const ICameraListener& aListener, const Exposure& aExposure);

  /// Orders of a test: the camera vanishes, as when its cable is pulled, and comes back. Links to it stay lost.
  void Lose();
  void Restore();
  /// As Lose; what the camera was set to is as at its start.
  void LosePower();
  /// The same as the lab's schedule has it; the camera answers when neither keeps it away. Its power fails where the
  /// lab says so.
  void SetAway(bool aIsAway);

private:
  struct Attached {
    ICameraListener* listener;
    krsystem::DeviceAccess access;
  };

  void SetAbsence(bool& aReason, bool aIsAbsent, bool aIsPowerLost);
  void UpdateSerialPorts();
  void TakeReturnAddress();
  bool IsThere() const { return !mIsPulled && !mIsAway; }
  const Attached* FindAttached(const ICameraListener& aListener) const;
  bool Controls(const ICameraListener& aListener) const;
  krsystem::AccessType GetControl() const;
  void SetControlPrivilege(krsystem::AccessType aControl);
  SimulatedCamera(const LabGEVCamera& aCamera, const KrString& aID, std::shared_ptr<ICameraClock> aClock);

  KrResult Refuse(KrResult::Code aCode, const KrString& aReason) const;

  const KrString mName;                       // For messages.
  const krsystem::AccessType mForeignControl; // What somebody has who is no link.
  const bool mLosesPower;                     // When its schedule has it vanish.
  const std::uint32_t mReturnAddress;         // 0 to return as it went.
  const std::shared_ptr<ICameraClock> mClock;
  OrderedFaults mFaults;
  SerialPorts mSerialPorts;

  std::mutex mEventMutex;    // Keeps losses, returns, attaching and detaching in one order; taken before mMutex.
  mutable std::mutex mMutex; // Guards the members from here on.
  CameraMemory mMemory;
  std::vector<Attached> mAttached;          // Links to the camera since it was there last.
  std::vector<ICameraListener*> mListeners; // All links, lost ones too.
  bool mIsPulled = false;
  bool mIsAway = false;
};

} // namespace krtransport
