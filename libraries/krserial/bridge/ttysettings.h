#pragma once
// How a tty of the system is set: the kernel's own structure, which has free speeds, unlike the portable one.

#include "krserial/krserialportconfiguration.h"

#include <asm/termbits.h>

#include <cstdint>
#include <optional>

namespace krserial {

/// Thread: a value.
class TtySettings {
public:
  TtySettings() = default;
  /// How a tty is set; nothing, with errno set, where it cannot be asked or is none.
  static std::optional<TtySettings> Read(int aDescriptor);
  /// Sets a tty without waiting for anything; false, with errno set, where it cannot be. A driver takes what it can.
  bool Apply(int aDescriptor) const;

  /// Bytes as they are, without lines, signals, echo or flow control, whatever modem lines say.
  void MakeRaw();
  /// The part of it that is not the line's: bytes come at once and as they are.
  void PassBytes();
  bool ArePassingBytes() const;
  /// A configuration that is valid.
  void Put(const KrSerialPortConfiguration& aConfiguration);
  /// Any number of bits a second above 0.
  void PutSpeed(std::uint32_t aBaudRate);
  /// 0 for a line that is hung up.
  std::uint32_t GetSpeed() const { return mSettings.c_ospeed; }
  KrSerialPortConfiguration Get() const;
  /// Of a pseudo-terminal: whether its other end, in packet mode, hears of every change of settings. Programs that do
  /// not know of it may switch it off with theirs, which is the last change that is heard.
  void TellChanges();
  bool AreChangesTold() const;

private:
  termios2 mSettings = {};
};

/// Whether a UART set as aTaken can be used where aWanted was asked for: the speed may be 3 % off, as its clock has it;
/// everything else is the same.
bool IsNearEnough(const KrSerialPortConfiguration& aWanted, const KrSerialPortConfiguration& aTaken);

} // namespace krserial
