#pragma once
// What a Camera Link camera makes of the bytes that it hears. Speed, power and the way of its answers to the line are
// left to CLCameraEnd.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

namespace krtransport {

/// Bytes of the camera, and the time of its clock at which they are sent.
struct CameraAnswer {
  std::vector<std::uint8_t> bytes;
  std::uint64_t dueNs = 0;
};

/// Thread: one at a time. Times never run back. No call waits.
class ICameraTalk {
public:
  using Speaker = std::function<void(CameraAnswer)>;

  /// The speed at which every camera begins, in bits a second.
  static constexpr std::uint32_t kFirstRate = 9600;

  virtual ~ICameraTalk() = default;

  /// Power came: everything begins anew.
  virtual void Restart() = 0;
  /// The line was opened: what came in part is dropped.
  virtual void ForgetPart() = 0;
  /// A byte that came at the camera's own speed; its answers go to the speaker. Those that are due at one
  /// time are sent in their order.
  virtual void Hear(std::uint8_t aByte, std::uint64_t aNowNs, const Speaker& aSpeak) = 0;
  /// The speed at which the camera hears and speaks now, in bits a second.
  virtual std::uint32_t GetRate(std::uint64_t aNowNs) = 0;
};

} // namespace krtransport
