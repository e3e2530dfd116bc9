#pragma once
// A GigE Vision camera for tests: the program arv-fake-gv-camera-0.8 as a child process. The network namespace around
// it is made by scripts/with-network.sh, or is that of a host (networkhost.h).

#include <sys/types.h>

#include <cstdint>
#include <string>

/// How the camera is started.
struct FakeCameraOptions {
  std::string serialNumber = "GV01";
  std::string address = "127.0.0.1";
  std::string descriptionFile = {}; ///< A description in place of the program's own; its registers stay.
  int lostPacketsPerMille = 0;      ///< Stream packets, at random, that are never sent.
  std::string namespaceFile = {};   ///< Of the host where it runs (networkhost.h); the test's own when it is empty.
};

/// Runs one camera on an address from construction to destruction.
///
/// Thread: one at a time. Ownership: owns the child process, and ends that alone.
class FakeCamera {
public:
  /// Starts the program and waits until it answers discovery. A program that cannot be started, or does not answer
  /// within a minute, fails the test.
  explicit FakeCamera(const FakeCameraOptions& aOptions = {});
  /// A camera on loopback with a serial number.
  explicit FakeCamera(const std::string& aSerialNumber);
  ~FakeCamera();
  FakeCamera(const FakeCamera&) = delete;
  FakeCamera& operator=(const FakeCamera&) = delete;

  bool IsAnswering() const { return mIsAnswering; }
  /// Makes it send a frame so often, in microseconds; before anybody controls it. One that does not fails the test.
  void SetFramePeriod(std::uint32_t aMicroseconds) const;
  /// Makes its frames smaller than they are, 512 lines of 512 bytes; before anybody controls it.
  void SetFrameHeight(std::uint32_t aLines) const;
  /// Has control taken by an application that is cut off then, once nobody else has it: control lasts until the camera
  /// notices that. It has to be reached from where this is called.
  void TakeControlAndVanish() const;
  /// Ends the camera at once, as pulling its plug would, and waits for its end.
  void Kill();
  /// Has the camera keep silent, as a cable that is pulled would, without forgetting anything; and go on.
  void Pause();
  void Resume();

private:
  void SetUp(std::uint32_t aRegister, std::uint32_t aValue) const;

  const std::string mAddress;
  pid_t mProcess = -1;
  bool mIsAnswering = false;
};

/// True when something answers a discovery command that is sent to an address; waits up to a quarter of a second.
bool AnswersDiscovery(const std::string& aAddress);
