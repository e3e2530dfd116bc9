#pragma once
// The features of one simulated camera: those that all have, and those of its serial ports.

#include "simulation/featuretable.h"
#include "simulation/lab.h"

#include <cstdint>
#include <deque>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace krtransport {

/// Thread: any. Ownership: owns the texts that its features point to.
class CameraFeatures {
public:
  explicit CameraFeatures(const LabCamera& aCamera);
  /// Those of a table alone, which has to stay.
  CameraFeatures(std::span<const Feature> aFeatures, std::vector<KrPixelType> aPixelFormats);
  CameraFeatures(const CameraFeatures&) = delete;
  CameraFeatures& operator=(const CameraFeatures&) = delete;

  /// In the order of the description.
  const std::vector<Feature>& List() const { return mFeatures; }
  /// The feature of a name, or null.
  const Feature* Find(std::string_view aName) const;
  /// The positions of a feature's selector; without a selector, 0 alone.
  std::vector<std::uint32_t> ListPositions(const Feature& aFeature) const;
  /// The entries of an enumeration.
  std::vector<FeatureEntry> ListEntries(const Feature& aFeature) const;
  bool HasSerialPorts() const { return mHasSerialPorts; }

private:
  using Entries = std::vector<FeatureEntry>;

  void WidenTexts();
  std::string_view Keep(std::string aText);
  std::span<const FeatureEntry> Keep(Entries aEntries);
  Entries MakeRates(const LabSerialPort& aPort, std::uint32_t aClock);
  void AddUart(const LabSerialPort& aPort);
  void AddBulkPorts(const LabCamera& aCamera);
  void AddFrameGrabber(const LabFrameGrabber& aGrabber);
  void AddSources(std::uint32_t aSources);

  std::vector<Feature> mFeatures;
  const std::vector<KrPixelType> mPixelFormats;
  const bool mHasSerialPorts;
  std::deque<std::string> mTexts; // Never moved, as features point to them.
  std::deque<Entries> mEntries;   // The same.
  std::deque<std::vector<std::string_view>> mDependencies;
};

} // namespace krtransport
