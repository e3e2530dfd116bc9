#pragma once
// The registers of a Camera Link camera of the lab, and what values its features take. How they are reached over the
// serial line is left to what the camera speaks, which may add registers of its own.

#include "simulation/camerafeatures.h"
#include "simulation/labclcamera.h"
#include "simulation/registermemory.h"

#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace krtransport {

/// How an access to a camera's registers went.
enum class CLAccess { Done, NoRegister, OnlyRead, OnlyWritten, BadValue };

/// Thread: one at a time. Times are the camera's clock's. Ownership: owns the bytes.
class CLCameraMemory {
public:
  using Bytes = std::vector<std::uint8_t>;

  explicit CLCameraMemory(const LabCLCamera& aCamera);

  /// Adds a register of what the camera speaks; registers do not overlap.
  void Define(std::uint64_t aAddress, RegisterAccess aAccess, Bytes aContent);
  /// Power came: the features have the values that the camera begins with; its name and its sets stay.
  void Restart();

  /// A host's access. Reading may span adjoining registers; nothing is set on failure. Writing begins at a register: a
  /// text takes up to its length, everything else exactly that.
  CLAccess Read(std::uint64_t aAddress, std::span<std::uint8_t> aBytes, std::uint64_t aNowNs);
  CLAccess Write(std::uint64_t aAddress, std::span<const std::uint8_t> aBytes);

  /// The camera's own access, to registers that are there.
  std::uint32_t GetInteger(std::uint64_t aAddress) const { return DecodeInteger(mRegisters.at(aAddress).bytes.data()); }
  double GetFloat(std::uint64_t aAddress) const { return DecodeFloat(mRegisters.at(aAddress).bytes.data()); }
  std::string GetText(std::uint64_t aAddress) const;
  std::uint64_t GetLong(std::uint64_t aAddress) const;
  void SetInteger(std::uint64_t aAddress, std::uint32_t aValue);
  void SetLong(std::uint64_t aAddress, std::uint64_t aValue);

  const CameraFeatures& GetFeatures() const { return mFeatures; }
  /// Whether a register is a feature's, and not one of what the camera speaks.
  bool IsFeature(std::uint64_t aAddress) const { return mByAddress.contains(aAddress); }

private:
  struct Register {
    RegisterAccess access;
    Bytes bytes;
  };
  using Registers = std::map<std::uint64_t, Register>;
  using ValueSet = std::map<std::uint64_t, Bytes>; // By address, of features that can be written.

  Registers::const_iterator FindAt(std::uint64_t aAddress) const;
  void DefineFeature(const Feature& aFeature);
  void SetStart(const LabCLCamera& aCamera);
  bool IsAccepted(const Feature& aFeature, std::span<const std::uint8_t> aBytes) const;
  bool IsInRange(const Feature& aFeature, std::uint32_t aValue) const;
  void Execute(std::uint64_t aCommand);
  ValueSet CopyValues() const;
  void SetValues(const ValueSet& aValues);

  const CameraFeatures mFeatures;
  Registers mRegisters;
  std::map<std::uint64_t, const Feature*> mByAddress;
  ValueSet mDefaults;
  ValueSet mSaved;
};

} // namespace krtransport
