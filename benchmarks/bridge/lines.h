#pragma once
// Ways for bytes from one descriptor to another one and back, to be measured beside each other: a bridge, socat, and a
// bare pseudo-terminal.

#include "krbase/filedescriptor.h"

#include <memory>
#include <utility>

namespace benchmarks {

/// What is written at one end is read at the other one. What does not work ends the program with its reason.
class Line {
public:
  virtual ~Line() = default;
  Line(const Line&) = delete;
  Line& operator=(const Line&) = delete;

  /// Where a program of the host would be, and where a device's port would be.
  int GetHostEnd() const { return mHostEnd.Get(); }
  int GetDeviceEnd() const { return mDeviceEnd.Get(); }

protected:
  Line(krbase::FileDescriptor aHostEnd, krbase::FileDescriptor aDeviceEnd)
      : mHostEnd(std::move(aHostEnd)), mDeviceEnd(std::move(aDeviceEnd)) {}
  void SetHostEnd(krbase::FileDescriptor aHostEnd) { mHostEnd = std::move(aHostEnd); }

private:
  krbase::FileDescriptor mHostEnd;
  krbase::FileDescriptor mDeviceEnd;
};

/// A pseudo-terminal with nothing between its ends: the physical limit.
std::unique_ptr<Line> MakeBareLine();
/// Two pseudo-terminals with socat between them.
std::unique_ptr<Line> MakeSocatLine();
/// The same with a bridge between them: a port of the host that is there already.
std::unique_ptr<Line> MakeBridgeLine();
/// A bridge that makes the port of the host, of which the program has the end that it opens.
std::unique_ptr<Line> MakeBridgeLineOfMadePort();

} // namespace benchmarks
