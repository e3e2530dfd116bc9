#pragma once
// The features of a simulated camera by their names, over its registers. Which features there are, and where, is in the
// feature table.

#include "krgenicam/ikrregisterport.h"
#include "krsystem/ifeatureaccess.h"
#include "simulation/featuretable.h"

#include <vector>

namespace krtransport {

/// Thread as IFeatureAccess. Ownership: borrows the port.
class FeatureAccess final : public krsystem::IFeatureAccess {
public:
  FeatureAccess(IKrRegisterPort& aPort, std::vector<KrPixelType> aPixelFormats);

  bool HasFeature(const KrString& aName) override;
  bool IsFeatureAvailable(const KrString& aName) override;
  KrResult GetEnumerationEntries(const KrString& aName, KrStringList& aEntries) override;
  KrResult GetEnumeration(const KrString& aName, KrString& aEntry) override;
  KrResult SetEnumeration(const KrString& aName, const KrString& aEntry) override;
  KrResult GetBoolean(const KrString& aName, bool& aValue) override;
  KrResult SetBoolean(const KrString& aName, bool aValue) override;

private:
  KrResult Find(const KrString& aName, FeatureKind aKind, const Feature*& aFeature);
  KrResult CheckAvailable(const Feature& aFeature);
  KrResult GetValue(const Feature& aFeature, std::uint32_t& aValue);
  KrResult SetValue(const Feature& aFeature, std::uint32_t aValue);
  KrResult FindRegister(const Feature& aFeature, std::uint64_t& aAddress);
  KrResult ReadRegister(std::uint64_t aAddress, std::uint32_t& aValue);

  IKrRegisterPort& mPort;
  const std::vector<KrPixelType> mPixelFormats;
};

} // namespace krtransport
