#pragma once
// A serial port of a simulated camera as the holder of a link has it. It may outlive the link, whose end it knows of.

#include "krsystem/ibytechannel.h"
#include "simulation/serial/serialline.h"

#include <memory>
#include <mutex>
#include <optional>

namespace krtransport {

/// What a link's channels may do: nothing without control, and nothing once the link has ended.
///
/// Thread: any. Ownership: shared by a link and its channels.
class ChannelAccess {
public:
  explicit ChannelAccess(bool aHasControl) : mHasControl(aHasControl) {}

  /// The first reason counts.
  void End(const KrResult& aReason);
  KrResult Check() const;
  bool HasControl() const { return mHasControl; }

private:
  const bool mHasControl;
  mutable std::mutex mMutex; // Guards mEnd.
  std::optional<KrResult> mEnd;
};

/// Threads and ownership as IByteChannel. Each is a holder of its own: a port that one has open is Busy for others.
class SerialChannel final : public krsystem::IByteChannel {
public:
  SerialChannel(std::shared_ptr<SerialLine> aLine, std::shared_ptr<const ChannelAccess> aAccess);
  /// Closes it.
  ~SerialChannel() override;

  KrResult Open() override;
  void Close() override;
  KrResult Read(std::uint8_t* aBytes, std::size_t aSize, std::size_t& aRead, std::uint32_t aTimeoutMs,
                const std::stop_token& aCancel) override;
  KrResult Write(const std::uint8_t* aBytes, std::size_t aSize, std::size_t& aWritten, std::uint32_t aTimeoutMs,
                 const std::stop_token& aCancel) override;

private:
  const std::shared_ptr<SerialLine> mLine;
  const std::shared_ptr<const ChannelAccess> mAccess;
};

} // namespace krtransport
