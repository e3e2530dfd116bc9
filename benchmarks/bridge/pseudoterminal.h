#pragma once
// A raw pseudo-terminal, for the ends of what is measured.

#include "failing.h"
#include "krbase/filedescriptor.h"

#include <fcntl.h>
#include <termios.h>

#include <cerrno>
#include <cstring>
#include <string>

namespace benchmarks {

/// Ends the program, with the system's reason, unless something worked.
inline void CheckSystem(bool aIsOK, const char* aWhat) {
  if (aIsOK)
    return;
  Fail(std::string(aWhat) + ": " + std::strerror(errno));
}

/// Opens a terminal, and sets it to pass bytes as they are.
inline krbase::FileDescriptor OpenRaw(const std::string& aPath) {
  krbase::FileDescriptor terminal(open(aPath.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC));
  CheckSystem(terminal.IsOpen(), aPath.c_str());
  termios settings = {};
  CheckSystem(tcgetattr(terminal.Get(), &settings) == 0, "tcgetattr");
  cfmakeraw(&settings);
  CheckSystem(tcsetattr(terminal.Get(), TCSANOW, &settings) == 0, "tcsetattr");
  return terminal;
}

struct PseudoTerminal {
  krbase::FileDescriptor master; ///< Its end is the terminal's end.
  std::string path;              ///< Of the other end.
  krbase::FileDescriptor other;  ///< The other end, held open.
};

inline PseudoTerminal MakePseudoTerminal() {
  PseudoTerminal terminal;
  terminal.master = krbase::FileDescriptor(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC));
  const int master = terminal.master.Get();
  CheckSystem(master >= 0 && grantpt(master) == 0 && unlockpt(master) == 0, "posix_openpt");
  terminal.path = ptsname(master);
  terminal.other = OpenRaw(terminal.path);
  return terminal;
}

} // namespace benchmarks
