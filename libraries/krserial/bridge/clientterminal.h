#pragma once
// A pseudo-terminal that a client opens like a serial port, seen from its other end: bytes, whether a client is there,
// and how it has set its port. What waits for a client is left to ClientEnd.

#include "bridge/ttysettings.h"
#include "krbase/filedescriptor.h"
#include "krbase/krresult.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace krserial {

/// Thread: Read on one, Write on another, the rest on any. Nothing waits. Ownership: the descriptors.
class ClientTerminal {
public:
  /// What reading came to.
  struct Taken {
    std::size_t size = 0;
    bool isSet = false;    ///< The client has set its port, perhaps to what it was.
    bool hasClient = true; ///< False when no client is there and none has left bytes behind.
  };

  /// Makes one, set to 9600 baud. SystemError where the system has none left.
  static KrResult Make(std::unique_ptr<ClientTerminal>& aTerminal);

  /// What a client opens.
  const std::string& GetPath() const { return mPath; }
  bool HasClient() const;
  /// Readable, or of an error, when there may be something to read; writable when a client may take more.
  int GetDescriptor() const { return mMaster.Get(); }
  /// Readable after a client came or went; -1 where the system cannot say.
  int GetComings() const { return mComings.Get(); }
  /// Forgets comings so far; those from here on make GetComings readable again.
  void DropComings();

  Taken Read(std::uint8_t* aBytes, std::size_t aSize);
  /// Gives what the client has room for, 0 bytes without one.
  std::size_t Write(const std::uint8_t* aBytes, std::size_t aSize);

  /// How the client's port is set; nothing where it cannot be asked.
  std::optional<TtySettings> GetSettings() const;
  /// To be called while no client is there: sets its port's speed, and sees to it that changes are told again.
  void Prepare(std::optional<std::uint32_t> aBaudRate);

private:
  ClientTerminal(krbase::FileDescriptor aMaster, krbase::FileDescriptor aComings, std::string aPath);

  krbase::FileDescriptor mMaster;
  krbase::FileDescriptor mComings;
  const std::string mPath;
};

} // namespace krserial
