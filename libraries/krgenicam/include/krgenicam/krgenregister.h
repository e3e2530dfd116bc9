#pragma once
// A parameter that is a piece of the device's memory.

#include "krgenicam/krgenparameter.h"

#include <cstdint>
#include <vector>

/// Event sinks are told when the bytes are others than before, of a register that cannot be read or is longer than 64
/// KiB each time it is written; polling reads registers up to that length.
///
/// Thread, ownership, results: as KrGenParameter.
class KR_EXPORT KrGenRegister final : public KrGenParameter {
public:
  /// The bytes as the device has them.
  KrResult GetValue(std::vector<std::uint8_t>& aBytes);
  /// Writes the bytes; InvalidInput unless they are as many as GetLength says.
  KrResult SetValue(const std::vector<std::uint8_t>& aBytes);
  /// Where the register begins, in bytes.
  KrResult GetAddress(std::int64_t& aAddress);
  /// How long the register is, in bytes.
  KrResult GetLength(std::int64_t& aLength);

private:
  friend class krgenicam::NodeMap;
  using KrGenParameter::KrGenParameter;
};
