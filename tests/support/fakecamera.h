#pragma once
// A GigE Vision camera for tests: the program arv-fake-gv-camera-0.8 as a child process. The network namespace around
// it is made by scripts/with-network.sh.

#include <sys/types.h>

#include <string>

/// Runs one camera on an address from construction to destruction.
///
/// Thread: one at a time. Ownership: owns the child process, and ends that alone.
class FakeCamera {
public:
  /// Starts the program and waits until it answers discovery. A program that cannot be started, or does not answer
  /// within twenty seconds, fails the test.
  explicit FakeCamera(const std::string& aSerialNumber = "GV01", const std::string& aAddress = "127.0.0.1");
  ~FakeCamera();
  FakeCamera(const FakeCamera&) = delete;
  FakeCamera& operator=(const FakeCamera&) = delete;

  bool IsAnswering() const { return mIsAnswering; }
  /// Ends the camera at once, as pulling its plug would, and waits for its end.
  void Kill();

private:
  pid_t mProcess = -1;
  bool mIsAnswering = false;
};

/// True when something answers a discovery command that is sent to an address; waits up to a quarter of a second.
bool AnswersDiscovery(const std::string& aAddress);
