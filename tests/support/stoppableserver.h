#pragma once
// An X server that a test starts for itself, so that it can be stopped as a server that hangs is.

#include <string>
#include <sys/types.h>

/// Runs until its end; without a window manager.
class StoppableServer {
public:
  /// Starts the server and waits until it takes connections; fails the test where there is none.
  StoppableServer();
  ~StoppableServer();
  StoppableServer(const StoppableServer&) = delete;
  StoppableServer& operator=(const StoppableServer&) = delete;

  /// The display's name, such as ":7"; empty where the server did not start.
  const std::string& GetDisplay() const { return mDisplay; }
  /// Returns when the server has stopped: it reads nothing from then on.
  void Stop();
  void Continue();

private:
  pid_t mProcess = -1;
  std::string mDisplay;
};
