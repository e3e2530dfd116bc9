#pragma once
// Runs conversions with each set of vector instructions that this processor has, instead of with its best one.

#include <cstdint>
#include <vector>

/// The sets of instructions that the library was built for and that this processor has.
std::vector<std::int64_t> GetVectorTargets();

/// Has all kernels use one set of instructions until it is destroyed. Conversions that exist keep theirs.
class VectorTargetChoice {
public:
  explicit VectorTargetChoice(std::int64_t aTarget);
  ~VectorTargetChoice();
  VectorTargetChoice(const VectorTargetChoice&) = delete;
  VectorTargetChoice& operator=(const VectorTargetChoice&) = delete;

  /// The set that a kernel is run with, as the kernel itself sees it.
  static std::int64_t AskKernel();
  static const char* GetName(std::int64_t aTarget);
};
