#include "featurelines.h"

#include "fileaccessline.h"
#include "registerline.h"

#include <variant>

namespace krserial {

namespace {

std::unique_ptr<IFeatureLine> FindWay(FeatureFinder& aFinder, const FileAccessNames& aNames, const KrString& aEntry) {
  return FileAccessLine::Find(aFinder, aNames, aEntry);
}

std::unique_ptr<IFeatureLine> FindWay(FeatureFinder& aFinder, const RegisterNames& aNames, const KrString& aEntry) {
  return RegisterLine::Find(aFinder, aNames, aEntry);
}

} // namespace

std::unique_ptr<IFeatureLine> FindLine(FeatureFinder& aFinder, const SerialMap& aMap, KrDeviceSerial aPort) {
  const KrString& entry = aMap.entries[static_cast<std::size_t>(aPort)].value();
  return std::visit([&](const auto& aNames) { return FindWay(aFinder, aNames, entry); }, aMap.names);
}

bool IsWithoutFeatures(const KrResult& aAsked) {
  return aAsked == KrResult::Code::BadData || aAsked == KrResult::Code::NotSupported ||
         aAsked == KrResult::Code::NotFound;
}

} // namespace krserial
