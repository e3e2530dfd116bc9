#pragma once
// A tty that is open, for this process alone, and gets its former settings back at the end. What is read from it and
// written to it is the user's business.

#include "bridge/ttysettings.h"
#include "krbase/filedescriptor.h"
#include "krbase/krresult.h"
#include "krserial/krhostserialports.h"
#include "krserial/krserialportconfiguration.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

namespace krserial {

/// Thread: any. Ownership: the descriptor.
class OpenTty {
public:
  /// Opens a port, never waiting and never as the controlling terminal, and sets it so. Results as of TtyEnd::Open.
  static KrResult Open(const KrHostSerialPort& aPort, const KrSerialPortConfiguration& aConfiguration,
                       std::shared_ptr<OpenTty>& aTty);
  /// Never waits: what a UART has not sent is dropped.
  ~OpenTty();
  OpenTty(const OpenTty&) = delete;
  OpenTty& operator=(const OpenTty&) = delete;

  int GetDescriptor() const { return mDescriptor.Get(); }
  bool IsPseudoTerminal() const { return mIsPseudoTerminal; }
  /// For texts: the port's name and path.
  const std::string& GetText() const { return mText; }

  /// Sets it; on failure it is as it was.
  KrResult Configure(const KrSerialPortConfiguration& aConfiguration);
  /// Of a pseudo-terminal, whose other end has the same settings. Whether the speed is another than it was set to or
  /// noticed last; then aBaudRate is it. What else was set there is undone where bytes would not come as they are.
  bool NoticeSpeed(std::uint32_t& aBaudRate);
  /// Whether nobody can be at the other end any more. Reading nothing alone does not tell: the other end of a
  /// pseudo-terminal can set ours so that it gives nothing instead of waiting, or ends a line that is empty.
  bool IsHungUp() const;

  /// Drops what came and was not read.
  void DropReceived();

  bool IsLost() const { return mIsLost; }
  /// Marks it as one that has gone, and makes the result that says so.
  KrResult Lose();

private:
  OpenTty(krbase::FileDescriptor aDescriptor, bool aIsPseudoTerminal, std::string aText);

  KrResult Hold() const;
  KrResult Apply(const TtySettings& aSettings, const KrSerialPortConfiguration& aConfiguration);
  KrResult MakeFailure(const std::string& aWhat);

  krbase::FileDescriptor mDescriptor;
  const bool mIsPseudoTerminal;
  const std::string mText;
  std::atomic<bool> mIsLost = false;

  std::mutex mMutex; // Guards how it is set, and the members from here on.
  std::optional<TtySettings> mFormer;
  std::uint32_t mSpeed = 0;
};

} // namespace krserial
