#include "krgenicam/krgenregister.h"

#include "map/nodemap.h"
#include "nodes/registernode.h"

#include <utility>

using krgenicam::Evaluation;
using krgenicam::RegisterNode;

KrResult KrGenRegister::GetValue(std::vector<std::uint8_t>& aBytes) {
  return mMap.Run([&](Evaluation& aEvaluation) {
    std::vector<std::uint8_t> bytes;
    KrResult result = static_cast<RegisterNode&>(mNode).GetBytes(aEvaluation, bytes);
    if (result.IsOK())
      aBytes = std::move(bytes);
    return result;
  });
}

KrResult KrGenRegister::SetValue(const std::vector<std::uint8_t>& aBytes) {
  return mMap.Run(
      [&](Evaluation& aEvaluation) { return static_cast<RegisterNode&>(mNode).SetBytes(aEvaluation, aBytes); });
}

KrResult KrGenRegister::GetAddress(std::int64_t& aAddress) {
  return mMap.Run(
      [&](Evaluation& aEvaluation) { return static_cast<RegisterNode&>(mNode).GetAddress(aEvaluation, aAddress); });
}

KrResult KrGenRegister::GetLength(std::int64_t& aLength) {
  return mMap.Run(
      [&](Evaluation& aEvaluation) { return static_cast<RegisterNode&>(mNode).GetLength(aEvaluation, aLength); });
}
