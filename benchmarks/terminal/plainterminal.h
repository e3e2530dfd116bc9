#pragma once
// The obvious terminal: a plain text edit that gets each read as it comes.

#include "krserial/krdeviceserialport.h"

#include <QPlainTextEdit>

#include <cstdint>
#include <stop_token>
#include <thread>

class IKrDeviceAdapter;

namespace benchmarks {

/// Thread: user interface.
class PlainTerminal {
public:
  PlainTerminal();
  ~PlainTerminal();

  KrResult Open(IKrDeviceAdapter& aAdapter, KrDeviceSerial aPort);
  std::uint64_t CountShown() const { return mShown; }

private:
  void Receive(const std::stop_token& aStop);

  QPlainTextEdit mView;
  std::uint64_t mShown = 0;
  KrDeviceSerialPort mPort;
  std::jthread mThread;
};

} // namespace benchmarks
