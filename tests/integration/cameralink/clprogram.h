#pragma once
// A program of somebody else's that uses the Camera Link serial functions, as a process of its own.

#include <string>

#include <sys/types.h>

class ClProgram {
public:
  /// Starts it. Its library and its own path are the build's.
  ClProgram();
  /// Ends it by the end of its input, unless it was killed.
  ~ClProgram();
  ClProgram(const ClProgram&) = delete;
  ClProgram& operator=(const ClProgram&) = delete;

  /// Asks for one call; see clprogram.c.
  void Send(const std::string& aLine);
  /// The next line of its output; fails the test, and is empty, when none comes within a limit that only a fault can
  /// reach.
  std::string Await();
  /// Both.
  std::string Ask(const std::string& aLine) {
    Send(aLine);
    return Await();
  }
  /// Ends it as a crash does, and waits until it is gone.
  void Kill();

private:
  pid_t mProcess = -1;
  int mInput = -1;
  int mOutput = -1;
  std::string mRest; ///< What came behind the last line.
};
